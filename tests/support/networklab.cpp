#include "networklab.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <unistd.h>

namespace {

// The namespace that a process lives in; empty where that may not be seen, as that of the first process by somebody who
// is root in a user namespace alone.
std::string ReadNamespace(const std::string& aProcess) {
  std::array<char, 64> name{};
  const auto size = ::readlink(("/proc/" + aProcess + "/ns/net").c_str(), name.data(), name.size());
  return std::string(name.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
}

} // namespace

NetworkLab::NetworkLab() {
  if (ReadNamespace("self") == ReadNamespace("1"))
    ADD_FAILURE() << "This is the machine's own network: run the test by scripts/with-network.sh.";
}

NetworkLab::~NetworkLab() {
  while (!mAdapters.empty())
    DeleteAdapter(*mAdapters.begin());
}

NetworkHost& NetworkLab::AddHost(const std::string& aName) {
  return *mHosts.emplace_back(std::make_unique<NetworkHost>(aName));
}

void NetworkLab::Connect(const std::string& aAdapter, const NetworkHost& aHost, const std::string& aHostAdapter) {
  RunIp({"link", "add", aAdapter, "type", "veth", "peer", "name", aHostAdapter, "netns", aHost.GetNamespaceFile()});
  mAdapters.insert(aAdapter);
  mCables[aAdapter] = {&aHost, aHostAdapter};
  aHost.SetUp(aHostAdapter);
  SetUp(aAdapter);
}

void NetworkLab::Unplug(const std::string& aAdapter) const {
  const CableEnd& end = mCables.at(aAdapter);
  end.host->SetDown(end.adapter);
}

void NetworkLab::PlugIn(const std::string& aAdapter) const {
  const CableEnd& end = mCables.at(aAdapter);
  end.host->SetUp(end.adapter);
}

void NetworkLab::SetAddress(const std::string& aAdapter, const std::string& aAddressAndPrefix) const {
  RunIp({"address", "add", aAddressAndPrefix, "broadcast", "+", "dev", aAdapter});
}

void NetworkLab::RemoveAddress(const std::string& aAdapter, const std::string& aAddressAndPrefix) const {
  RunIp({"address", "del", aAddressAndPrefix, "dev", aAdapter});
}

void NetworkLab::SetGateway(const std::string& aAdapter, const std::string& aGateway) const {
  RunIp({"route", "add", "default", "via", aGateway, "dev", aAdapter});
}

void NetworkLab::SetRoute(const std::string& aAdapter, const std::string& aAddress) const {
  RunIp({"route", "add", aAddress + "/32", "dev", aAdapter});
}

void NetworkLab::SetMAC(const std::string& aAdapter, const std::string& aMAC) const {
  RunIp({"link", "set", aAdapter, "address", aMAC});
}

void NetworkLab::SetUp(const std::string& aAdapter) const {
  RunIp({"link", "set", aAdapter, "up"});
}

void NetworkLab::SetDown(const std::string& aAdapter) const {
  RunIp({"link", "set", aAdapter, "down"});
}

void NetworkLab::SetReversePathFilter(const std::string& aAdapter, int aMode) const {
  // The kernel takes the higher of an adapter's number and everybody's.
  for (const std::string& name : {std::string("all"), aAdapter}) {
    std::ofstream file("/proc/sys/net/ipv4/conf/" + name + "/rp_filter");
    file << (name == "all" ? 0 : aMode) << std::flush;
    EXPECT_TRUE(file.good()) << "The reverse-path filter of " << name << " cannot be set.";
  }
}

void NetworkLab::AddBridge(const std::string& aName, const std::vector<std::string>& aPorts) {
  RunIp({"link", "add", aName, "type", "bridge", "forward_delay", "0"});
  mAdapters.insert(aName);
  for (const std::string& port : aPorts)
    RunIp({"link", "set", port, "master", aName});
  SetUp(aName);
}

void NetworkLab::AddMacvlan(const std::string& aName, const std::string& aParent, const std::string& aMode) {
  RunIp({"link", "add", "link", aParent, "name", aName, "type", "macvlan", "mode", aMode});
  mAdapters.insert(aName);
  SetUp(aName);
}

void NetworkLab::DeleteAdapter(const std::string& aAdapter) {
  const std::string name = aAdapter;
  mCables.erase(name);
  // One that stands on another adapter has gone with that.
  if (mAdapters.erase(name) != 0 && ::access(("/proc/sys/net/ipv4/conf/" + name).c_str(), F_OK) == 0)
    RunIp({"link", "delete", name});
}

void NetworkLab::RunIp(const std::vector<std::string>& aArguments) const {
  std::vector<std::string> commandLine = {"ip"};
  commandLine.insert(commandLine.end(), aArguments.begin(), aArguments.end());
  EXPECT_EQ(RunProgram(commandLine), "") << "ip " << testing::PrintToString(aArguments);
}

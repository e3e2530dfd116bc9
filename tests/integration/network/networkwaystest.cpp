// On which adapter something is done: addresses set where the device is, adapters without an address, two adapters on
// one network, and who else uses the addresses of one.

#include "await.h"
#include "fakecamera.h"
#include "krdevice/krdevicegev.h"
#include "krsystem/transportregistry.h"
#include "networkfixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <stop_token>

namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

constexpr const char* kMac = "02:00:00:00:00:42";
constexpr std::uint16_t kForceIPCommand = 0x0004;
constexpr std::uint32_t kAskingMs = 500;

/// The adapters on which a device was found, by name.
std::vector<std::string> GetAdapterNames(const KrSystem& aSystem, const std::string& aSerialNumber) {
  std::vector<std::string> names;
  for (const KrDeviceInfoGEV* device : GetGEVDevices(aSystem))
    if (device->GetSerialNumber() == KrString(aSerialNumber))
      names.push_back(dynamic_cast<const KrNetworkAdapter&>(*device->GetInterface()).GetName().ToUtf8());
  return names;
}

std::shared_ptr<krsystem::ITransport> GetTransport() {
  const auto transports = krsystem::GetTransports();
  const auto found =
      std::ranges::find_if(transports, [](const auto& aOne) { return aOne->GetName() == KrString("GigE Vision"); });
  return found != transports.end() ? *found : nullptr;
}

/// A second adapter "eth1" with 172.16.0.10/16, cabled to "port1" of the host.
class OnTwoNetworks : public OnANetwork {
protected:
  OnTwoNetworks() {
    mLab.Connect("eth1", mHost, "port1");
    mLab.SetAddress("eth1", "172.16.0.10/16");
  }
};

TEST_F(OnTwoNetworks, SetIPConfiguration_TwoDevicesOfOneMac_OnlyTheOneOfTheNewSubnetHearsOfIt) {
  const TestDevice left(mHost, "port0", {.mac = kMac, .address = "192.168.1.20"});
  const TestDevice right(mHost, "port1", {.mac = kMac, .address = "10.0.0.9"});

  const KrResult result = KrDeviceGEV::SetIPConfiguration(kMac, "172.16.5.5", "255.255.0.0", "0.0.0.0");

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(right.GetAddresses().address, 0xAC100505u);
  EXPECT_EQ(left.GetAddresses().address, 0xC0A80114u);
  EXPECT_EQ(left.GetHeard(kForceIPCommand), 0u);
}

TEST_F(OnTwoNetworks, SetIPConfiguration_AddressOfNoSubnet_IsToldWhereTheDeviceAnswersAlone) {
  const TestDevice other(mHost, "port0", {.mac = "02:00:00:00:00:43", .address = "192.168.1.20"});
  const TestDevice device(mHost, "port1", {.mac = kMac, .address = "172.16.0.20", .mask = "255.255.0.0"});

  const KrResult result = KrDeviceGEV::SetIPConfiguration(kMac, "10.0.0.5", "255.0.0.0", "0.0.0.0");

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(device.GetAddresses().address, 0x0A000005u);
  EXPECT_EQ(other.GetHeard(kForceIPCommand), 0u);
}

TEST_F(OnTwoNetworks, SetIPConfiguration_DeviceThatAnswersNoDiscovery_IsToldOnEveryAdapter) {
  TestDevice device(mHost, "port1", {.mac = kMac, .address = "10.0.0.9"});
  device.ChangeDiscoveryAcknowledges([](const TestDevice::Bytes&) { return std::vector<TestDevice::Bytes>(); });
  const TestDevice other(mHost, "port0", {.mac = "02:00:00:00:00:43", .address = "192.168.1.20"});

  const KrResult result = KrDeviceGEV::SetIPConfiguration(kMac, "172.16.5.5", "255.255.0.0", "0.0.0.0");

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(device.GetAddresses().address, 0xAC100505u);
  // It may still be about to hear what another has answered already.
  EXPECT_TRUE(krtest::Await([&] { return other.GetHeard(kForceIPCommand) != 0; }));
}

class OnAnAdapterWithoutAddress : public OnANetwork, public testing::WithParamInterface<bool> {
protected:
  OnAnAdapterWithoutAddress() { mLab.Connect("eth1", mHost, "port1"); }
};

TEST_P(OnAnAdapterWithoutAddress, Find_DeviceThere_IsFoundAndRepaired) {
  // With an address on another adapter the kernel sends from that; without any, from 0.0.0.0.
  if (!GetParam())
    mLab.RemoveAddress("eth0", "192.168.1.10/24");
  const TestDevice device(mHost, "port1", {.mac = kMac, .address = "10.1.2.3", .serialNumber = "lost"});
  KrSystem system;

  FindThese(system, {"lost"}, true);
  const KrResult result = KrDeviceGEV::SetIPConfiguration(kMac, "10.7.7.7", "255.0.0.0", "0.0.0.0");

  EXPECT_THAT(GetAdapterNames(system, "lost"), ElementsAre("eth1"));
  const KrDeviceInfoGEV* found = GetBySerialNumber(system, "lost");
  ASSERT_NE(found, nullptr);
  EXPECT_FALSE(found->IsConfigurationValid());
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(device.GetAddresses().address, 0x0A070707u);
}

INSTANTIATE_TEST_SUITE_P(AddressElsewhere, OnAnAdapterWithoutAddress, testing::Bool(),
                         [](const auto& aInfo) { return aInfo.param ? "There" : "Nowhere"; });

/// A second adapter "eth1" with 192.168.1.11/24, and a switch on the host that both cables lead to.
class OnOneNetworkTwice : public OnANetwork {
protected:
  OnOneNetworkTwice() {
    mLab.Connect("eth1", mHost, "port1");
    mLab.SetAddress("eth1", "192.168.1.11/24");
    mLab.SetReversePathFilter("eth1", 0);
    mHost.RunIp({"link", "add", "switch", "type", "bridge"});
    for (const char* port : {"port0", "port1"})
      mHost.RunIp({"link", "set", port, "master", "switch"});
    mHost.SetUp("switch");
  }
};

TEST_F(OnOneNetworkTwice, Find_DeviceThere_ReportsTheDeviceOnBoth) {
  const TestDevice device(mHost, "switch", {.serialNumber = "shared"});
  KrSystem system;

  FindUntil(
      system, [&] { return GetAdapterNames(system, "shared").size() == 2; }, "the device on both adapters");

  EXPECT_THAT(GetAdapterNames(system, "shared"), UnorderedElementsAre("eth0", "eth1"));
}

TEST_F(OnOneNetworkTwice, Find_AnswersThatComeInOnTheOtherOfTwoAdapters_AreHeardThere) {
  constexpr const char* kFirstMac = "02:00:00:00:01:00";
  constexpr const char* kSecondMac = "02:00:00:00:01:01";
  mLab.SetMAC("eth0", kFirstMac);
  mLab.SetMAC("eth1", kSecondMac);
  mHost.SetAddress("switch", "192.168.1.20/24");
  // As when the wrong one of two adapters on one network answers who has an address.
  mHost.RunIp({"neighbour", "replace", "192.168.1.10", "lladdr", kSecondMac, "dev", "switch"});
  mHost.RunIp({"neighbour", "replace", "192.168.1.11", "lladdr", kFirstMac, "dev", "switch"});
  const FakeCamera camera(
      {.serialNumber = "GV07", .address = "192.168.1.20", .namespaceFile = mHost.GetNamespaceFile()});
  KrSystem system;

  FindUntil(
      system, [&] { return GetAdapterNames(system, "GV07").size() == 2; }, "the camera on both adapters");

  EXPECT_THAT(GetAdapterNames(system, "GV07"), UnorderedElementsAre("eth0", "eth1"));
}

class UsedAddresses : public OnANetwork {
protected:
  void SetUp() override {
    ASSERT_NE(mTransport, nullptr);
    std::vector<krsystem::InterfaceFields> interfaces;
    ASSERT_TRUE(mTransport->ListInterfaces(interfaces).IsOK());
    for (const auto& interface : interfaces)
      if (std::get<krsystem::NetworkAdapterFields>(interface).name == KrString("eth0"))
        mAdapter = interface;
  }

  const std::shared_ptr<krsystem::ITransport> mTransport = GetTransport();
  krsystem::InterfaceFields mAdapter;
};

TEST_F(UsedAddresses, OwnAddressComputerAndCamera_AreUsedAndOthersAreNot) {
  constexpr std::uint32_t kOwn = 0xC0A8010A;
  constexpr std::uint32_t kCamera = 0xC0A80114;
  constexpr std::uint32_t kNobody = 0xC0A8014C;
  constexpr std::uint32_t kComputer = 0xC0A8014D;
  mHost.SetAddress("port0", "192.168.1.77/24");
  const TestDevice camera(mHost, "port0", {.address = "192.168.1.20"});
  std::vector<std::uint32_t> used;

  // Who has to wait for a processor answers too late for one asking, and is heard in another.
  KrResult result;
  EXPECT_TRUE(krtest::Await([&] {
    result = mTransport->FindUsedAddresses(mAdapter, {kOwn, kCamera, kNobody, kComputer}, kAskingMs, {}, used);
    return !result.IsOK() || used.size() >= 3;
  }));

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(used, ElementsAre(kOwn, kCamera, kComputer));
}

TEST_F(UsedAddresses, AskingWithoutEnd_EndsWhenItIsCancelled) {
  std::stop_source cancel;
  cancel.request_stop();
  std::vector<std::uint32_t> used;

  const KrResult result = mTransport->FindUsedAddresses(mAdapter, {0xC0A8014C}, 3600000, cancel.get_token(), used);

  EXPECT_EQ(result, KrResult::Code::Aborted);
}

TEST_F(UsedAddresses, AdapterThatIsDown_CannotTell) {
  mLab.SetDown("eth0");
  std::vector<std::uint32_t> used;

  const KrResult result = mTransport->FindUsedAddresses(mAdapter, {0xC0A8014C}, 1, {}, used);

  EXPECT_EQ(result, KrResult::Code::SystemError);
}

TEST_F(OnANetwork, ReadHost_AdapterOfTheNamespace_IsReadWithItsCarrier) {
  mLab.Unplug("eth0");
  krsystem::HostReadings readings;

  const KrResult result = GetTransport()->ReadHost(readings);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_TRUE(readings.hasNetworkTransport);
  EXPECT_FALSE(readings.hasUSBTransport);
  const auto adapter = std::ranges::find(readings.adapters, KrString("eth0"), &krsystem::AdapterReading::name);
  ASSERT_NE(adapter, readings.adapters.end());
  EXPECT_TRUE(adapter->isUp);
  EXPECT_FALSE(adapter->hasCarrier);
  EXPECT_THAT(adapter->addresses, ElementsAre(krsystem::AdapterAddress{"192.168.1.10", "255.255.255.0"}));
}

} // namespace

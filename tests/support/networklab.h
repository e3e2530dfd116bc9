#pragma once
// A network for tests: the test's own namespace (scripts/with-network.sh makes it) with adapters, and further hosts at
// the other ends of virtual cables. What lives on the hosts is left to others: devices of our own (testdevice.h) and
// independent cameras (fakecamera.h).

#include "networkhost.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

/// Makes and changes the network, and takes it down at its end.
///
/// An operation that the kernel refuses fails the test with the kernel's words.
///
/// Thread: one at a time. Ownership: owns hosts and adapters.
///
///     NetworkLab lab;
///     NetworkHost& host = lab.AddHost("cameras");
///     lab.Connect("eth0", host, "port0");
///     lab.SetAddress("eth0", "192.168.1.10/24");
///     const TestDevice device(host, "port0", {.address = "192.168.1.20"});
class NetworkLab {
public:
  /// Fails the test when the namespace is the machine's own.
  NetworkLab();
  ~NetworkLab();
  NetworkLab(const NetworkLab&) = delete;
  NetworkLab& operator=(const NetworkLab&) = delete;

  NetworkHost& AddHost(const std::string& aName);

  /// A virtual cable from an adapter of the test to one of a host; both are new, and up.
  void Connect(const std::string& aAdapter, const NetworkHost& aHost, const std::string& aHostAdapter);
  /// The cable of an adapter is pulled at the host's end: the adapter stays up and loses its carrier.
  void Unplug(const std::string& aAdapter) const;
  void PlugIn(const std::string& aAdapter) const;

  /// "a.b.c.d/prefix", besides those that the adapter has.
  void SetAddress(const std::string& aAdapter, const std::string& aAddressAndPrefix) const;
  void RemoveAddress(const std::string& aAdapter, const std::string& aAddressAndPrefix) const;
  void SetGateway(const std::string& aAdapter, const std::string& aGateway) const;
  /// What goes to one address goes by this adapter, whatever subnets there are.
  void SetRoute(const std::string& aAdapter, const std::string& aAddress) const;
  /// "aa:bb:cc:dd:ee:ff"
  void SetMAC(const std::string& aAdapter, const std::string& aMAC) const;
  void SetUp(const std::string& aAdapter) const;
  void SetDown(const std::string& aAdapter) const;
  /// How strictly the kernel drops what comes from foreign addresses: 0 not at all, 1 strictly, 2 loosely.
  void SetReversePathFilter(const std::string& aAdapter, int aMode) const;

  /// A bridge over adapters, which then hear and say nothing by themselves; up.
  void AddBridge(const std::string& aName, const std::vector<std::string>& aPorts);
  /// A further adapter on the cable of another, with a MAC of its own ("bridge") or the other's ("passthru"); up.
  void AddMacvlan(const std::string& aName, const std::string& aParent, const std::string& aMode);
  /// The adapter and, where it has a cable, the host's end of that are gone.
  void DeleteAdapter(const std::string& aAdapter);

private:
  struct CableEnd {
    const NetworkHost* host;
    std::string adapter;
  };

  void RunIp(const std::vector<std::string>& aArguments) const;

  std::vector<std::unique_ptr<NetworkHost>> mHosts;
  std::map<std::string, CableEnd> mCables; // By the test's adapter.
  std::set<std::string> mAdapters;
};

#pragma once
// What tests of discovery on made networks share: a cable to a host with devices, and a look at what a round found.

#include "krsystem/krsystem.h"
#include "networklab.h"
#include "testdevice.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// An adapter "eth0" with 192.168.1.10/24, cabled to "port0" of a host.
class OnANetwork : public testing::Test {
protected:
  static constexpr std::uint32_t kRoundMs = 400;

  OnANetwork();

  /// One round of discovery; a failure fails the test.
  void Find(KrSystem& aSystem, bool aSubnetBroadcast = false) const;
  /// Rounds until exactly these devices are found, by their serial numbers: one that has to wait for a processor
  /// answers too late for a round, and is heard in another. Fails the test when a round finds a device that is not
  /// among them.
  void FindThese(KrSystem& aSystem, std::vector<std::string> aSerialNumbers, bool aSubnetBroadcast = false) const;
  /// Rounds to 255.255.255.255 until a condition holds; fails the test when it does not after a generous while.
  void FindUntil(KrSystem& aSystem, const std::function<bool()>& aCondition, const char* aWhat) const;

  NetworkLab mLab;
  NetworkHost& mHost;
};

/// The GigE Vision devices that the last round found.
std::vector<const KrDeviceInfoGEV*> GetGEVDevices(const KrSystem& aSystem);
/// Their serial numbers, sorted.
std::vector<std::string> GetSerialNumbers(const KrSystem& aSystem);
/// The device with a serial number; null where it was not found.
const KrDeviceInfoGEV* GetBySerialNumber(const KrSystem& aSystem, const std::string& aSerialNumber);
/// The adapter of a name; null where it is not listed.
const KrNetworkAdapter* GetAdapter(const KrSystem& aSystem, const std::string& aName);

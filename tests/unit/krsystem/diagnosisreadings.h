#pragma once
// A host on which everything is as it should be, and devices that answer there: tests of the diagnosis spoil one thing.

#include "krsystem/discoverydiagnosis.h"

#include <gmock/gmock.h>

#include <vector>

// A host on which everything is as it should be.
inline krsystem::HostReadings MakeHost() {
  krsystem::HostReadings readings;
  readings.hasNetworkTransport = true;
  readings.hasUSBTransport = true;
  readings.receiveBufferLimitBytes = 33'554'432;
  readings.usbMemoryMegabytes = 1000;
  readings.adapters = {
      {.uniqueID = "lo", .name = "lo", .isLoopback = true, .addresses = {{"127.0.0.1", "255.0.0.0"}}},
      {.uniqueID = "id0", .name = "eth0", .addresses = {{"10.0.0.1", "255.255.255.0"}}},
      {.uniqueID = "id1", .name = "eth1", .addresses = {{"10.0.1.1", "255.255.255.0"}}},
  };
  readings.usbDevices = {{.uniqueID = "usb", .displayID = "USB camera", .speed = 4}};
  return readings;
}

inline krsystem::AdapterReading& GetEth0(krsystem::HostReadings& aReadings) {
  return aReadings.adapters[1];
}

inline krsystem::GEVFields MakeGEV(const KrString& aName, const KrString& aMAC, const KrString& aAddress) {
  krsystem::GEVFields fields;
  fields.uniqueID = aMAC;
  fields.displayID = aName;
  fields.macAddress = aMAC;
  fields.ipAddress = aAddress;
  fields.subnetMask = "255.255.0.0";
  return fields;
}

inline constexpr const char* kMAC = "02:00:00:00:00:01";
inline constexpr const char* kOtherMAC = "02:00:00:00:00:02";

inline krsystem::GEVFields MakeForeign(const KrString& aAddress) {
  krsystem::GEVFields fields = MakeGEV("Camera", kMAC, aAddress);
  fields.configurationValid = false;
  return fields;
}

inline krsystem::U3VFields MakeU3V(std::int32_t aSpeed) {
  krsystem::U3VFields fields;
  fields.uniqueID = "usb";
  fields.displayID = "USB camera";
  fields.speed = aSpeed;
  fields.superSpeedSupported = true;
  return fields;
}

inline std::vector<KrFindingKind> ListKinds(const std::vector<KrFinding>& aFindings) {
  std::vector<KrFindingKind> kinds;
  for (const KrFinding& finding : aFindings)
    kinds.push_back(finding.kind);
  return kinds;
}

#include "networkfixture.h"

#include "await.h"
#include "krtransport/krtransport.h"

#include <algorithm>

OnANetwork::OnANetwork() : mHost(mLab.AddHost("cameras")) {
  mLab.Connect("eth0", mHost, "port0");
  mLab.SetAddress("eth0", "192.168.1.10/24");
  mLab.SetReversePathFilter("eth0", 0);
  const KrResult installed = KrInstallTransports({.gigEVision = true, .usb3Vision = false});
  EXPECT_TRUE(installed.IsOK()) << installed.GetDescription().CStr();
}

void OnANetwork::Find(KrSystem& aSystem, bool aSubnetBroadcast) const {
  aSystem.SetDetectionTimeout(kRoundMs);
  aSystem.SetSubnetBroadcastEnabled(aSubnetBroadcast);
  const KrResult found = aSystem.Find();
  ASSERT_TRUE(found.IsOK()) << found.GetDescription().CStr();
}

void OnANetwork::FindThese(KrSystem& aSystem, std::vector<std::string> aSerialNumbers, bool aSubnetBroadcast) const {
  std::sort(aSerialNumbers.begin(), aSerialNumbers.end());
  std::vector<std::string> found;
  EXPECT_TRUE(krtest::Await([&] {
    Find(aSystem, aSubnetBroadcast);
    found = GetSerialNumbers(aSystem);
    const bool isOtherThere = !std::includes(aSerialNumbers.begin(), aSerialNumbers.end(), found.begin(), found.end());
    return found == aSerialNumbers || isOtherThere;
  }));
  ASSERT_EQ(found, aSerialNumbers);
}

void OnANetwork::FindUntil(KrSystem& aSystem, const std::function<bool()>& aCondition, const char* aWhat) const {
  EXPECT_TRUE(krtest::Await([&] {
    Find(aSystem);
    return aCondition();
  })) << aWhat;
}

std::vector<const KrDeviceInfoGEV*> GetGEVDevices(const KrSystem& aSystem) {
  std::vector<const KrDeviceInfoGEV*> devices;
  for (std::size_t i = 0; i < aSystem.GetDeviceCount(); ++i) {
    if (const auto* device = dynamic_cast<const KrDeviceInfoGEV*>(aSystem.GetDeviceInfo(i)))
      devices.push_back(device);
  }
  return devices;
}

std::vector<std::string> GetSerialNumbers(const KrSystem& aSystem) {
  std::vector<std::string> numbers;
  for (const KrDeviceInfoGEV* device : GetGEVDevices(aSystem))
    numbers.push_back(device->GetSerialNumber().ToUtf8());
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

const KrDeviceInfoGEV* GetBySerialNumber(const KrSystem& aSystem, const std::string& aSerialNumber) {
  for (const KrDeviceInfoGEV* device : GetGEVDevices(aSystem)) {
    if (device->GetSerialNumber() == KrString(aSerialNumber))
      return device;
  }
  return nullptr;
}

const KrNetworkAdapter* GetAdapter(const KrSystem& aSystem, const std::string& aName) {
  for (std::size_t i = 0; i < aSystem.GetInterfaceCount(); ++i) {
    const auto* adapter = dynamic_cast<const KrNetworkAdapter*>(aSystem.GetInterface(i));
    if (adapter != nullptr && adapter->GetName() == KrString(aName))
      return adapter;
  }
  return nullptr;
}

// Which devices a round of discovery finds on a network, and what it says of them.

#include "await.h"
#include "fakecamera.h"
#include "networkfixture.h"

#include <gmock/gmock.h>

#include <vector>

namespace {

using testing::IsEmpty;

/// One device on the network of 192.168.1.10/24, asked in one way.
struct DiscoveryCase {
  const char* name;
  const char* address;
  AnswerWay way = AnswerWay::AsCamerasDo;
  bool subnetBroadcast = false;
  int reversePathFilter = 0;
  bool hasGateway = false; // A default route, which leads to every address.
  bool isFound = true;
  bool isReachable = false;
};

constexpr AnswerWay kToAsker = AnswerWay::ToAsker;
constexpr AnswerWay kAsCameras = AnswerWay::AsCamerasDo;

// A device of a foreign subnet does not hear the subnet's broadcast. Its answer to 255.255.255.255 comes from an
// address that the kernel checks: strictly (1) it drops it, loosely (2) unless some route leads there. 0.0.0.0 is not
// checked.
const DiscoveryCase kDiscoveryCases[] = {
    {"RightSubnetBySubnet", "192.168.1.20", kAsCameras, true, 0, false, true, true},
    {"RightSubnetByLimited", "192.168.1.20", kAsCameras, false, 0, false, true, true},
    {"RightSubnetStrictlyFiltered", "192.168.1.20", kAsCameras, false, 1, false, true, true},
    {"RightSubnetLooselyFiltered", "192.168.1.20", kAsCameras, true, 2, false, true, true},
    {"RightSubnetAnsweringByBroadcast", "192.168.1.20", AnswerWay::ByBroadcast, true, 1, false, true, true},
    {"ForeignBySubnet", "10.1.2.3", kAsCameras, true, 0, false, false, false},
    {"ForeignByLimited", "10.1.2.3", kAsCameras, false, 0, false, true, false},
    {"ForeignByLimitedToAsker", "10.1.2.3", kToAsker, false, 0, false, true, false},
    {"ForeignStrictlyFiltered", "10.1.2.3", kAsCameras, false, 1, false, false, false},
    {"ForeignStrictlyFilteredWithGateway", "10.1.2.3", kAsCameras, false, 1, true, true, false},
    {"ForeignLooselyFiltered", "10.1.2.3", kAsCameras, false, 2, false, false, false},
    {"ForeignLooselyFilteredWithGateway", "10.1.2.3", kAsCameras, false, 2, true, true, false},
    {"WithoutAddressBySubnet", "0.0.0.0", kAsCameras, true, 0, false, false, false},
    {"WithoutAddressByLimited", "0.0.0.0", kAsCameras, false, 0, false, true, false},
    {"WithoutAddressStrictlyFiltered", "0.0.0.0", kAsCameras, false, 1, false, true, false},
    {"ThisHostsOwnAddress", "192.168.1.10", kAsCameras, false, 0, false, false, false},
    {"WithoutAddressLooselyFiltered", "0.0.0.0", kAsCameras, false, 2, false, true, false},
};

class OnANetworkEachDevice : public OnANetwork, public testing::WithParamInterface<DiscoveryCase> {};

TEST_P(OnANetworkEachDevice, Find_OneDevice_IsFoundAndReachableAsTheNetworkAllows) {
  const DiscoveryCase& row = GetParam();
  mLab.SetReversePathFilter("eth0", row.reversePathFilter);
  if (row.hasGateway)
    mLab.SetGateway("eth0", "192.168.1.1");
  TestDevice device(mHost, "port0", {.address = row.address, .serialNumber = "alone"});
  device.SetAnswerWay(row.way);
  KrSystem system;

  if (row.isFound)
    FindThese(system, {"alone"}, row.subnetBroadcast);
  else
    Find(system, row.subnetBroadcast);

  const KrDeviceInfoGEV* found = GetBySerialNumber(system, "alone");
  ASSERT_EQ(found != nullptr, row.isFound);
  if (found != nullptr) {
    EXPECT_EQ(found->GetIPAddress(), KrString(row.address));
    EXPECT_EQ(found->IsConfigurationValid(), row.isReachable);
    EXPECT_EQ(found->GetInterface(), GetAdapter(system, "eth0"));
  }
}

INSTANTIATE_TEST_SUITE_P(Networks, OnANetworkEachDevice, testing::ValuesIn(kDiscoveryCases),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST_F(OnANetwork, Find_DeviceThatTellsEverything_GivesAllOfIt) {
  const TestDevice device(mHost, "port0",
                          {.mac = "02:ab:cd:ef:01:23",
                           .address = "192.168.1.77",
                           .mask = "255.255.255.0",
                           .gateway = "192.168.1.1",
                           .manufacturer = "Maker",
                           .model = "Model",
                           .version = "3.4",
                           .information = "Information",
                           .serialNumber = "S77",
                           .userDefinedName = "Left"});
  KrSystem system;

  FindThese(system, {"S77"});

  const KrDeviceInfoGEV* found = GetBySerialNumber(system, "S77");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->GetMACAddress(), KrString("02:ab:cd:ef:01:23"));
  EXPECT_EQ(found->GetIPAddress(), KrString("192.168.1.77"));
  EXPECT_EQ(found->GetSubnetMask(), KrString("255.255.255.0"));
  EXPECT_EQ(found->GetDefaultGateway(), KrString("192.168.1.1"));
  EXPECT_EQ(found->GetVendorName(), KrString("Maker"));
  EXPECT_EQ(found->GetModelName(), KrString("Model"));
  EXPECT_EQ(found->GetVersion(), KrString("3.4"));
  EXPECT_EQ(found->GetManufacturerInfo(), KrString("Information"));
  EXPECT_EQ(found->GetUserDefinedName(), KrString("Left"));
  EXPECT_EQ(found->GetFields().gevVersion, 0x00020000u);
  EXPECT_EQ(found->GetFields().ipConfigOptions, 7u);
  EXPECT_EQ(found->GetFields().ipConfigCurrent, 6u);
}

// One without an address cannot be had: the program lives on its host's sockets, and wants an address of its host.
TEST_F(OnANetwork, Find_IndependentCameraOfAForeignSubnet_IsFoundByLimitedBroadcastAndNotReachable) {
  mHost.SetAddress("port0", "10.1.2.3/24");
  mHost.RunIp({"route", "add", "default", "dev", "port0"});
  // Whether the camera has started is asked from its own subnet, which this host then leaves.
  mLab.SetAddress("eth0", "10.1.2.10/24");
  const FakeCamera camera({.serialNumber = "GV31", .address = "10.1.2.3", .namespaceFile = mHost.GetNamespaceFile()});
  mLab.RemoveAddress("eth0", "10.1.2.10/24");
  KrSystem system;

  Find(system, true);
  const auto bySubnet = GetSerialNumbers(system);
  FindThese(system, {"GV31"}, false);

  EXPECT_THAT(bySubnet, IsEmpty());
  const KrDeviceInfoGEV* found = GetBySerialNumber(system, "GV31");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->GetIPAddress(), KrString("10.1.2.3"));
  EXPECT_FALSE(found->IsConfigurationValid());
}

TEST_F(OnANetwork, Find_IndependentCameraOnAHost_IsFoundAndReachable) {
  mHost.SetAddress("port0", "192.168.1.30/24");
  const FakeCamera camera(
      {.serialNumber = "GV30", .address = "192.168.1.30", .namespaceFile = mHost.GetNamespaceFile()});
  KrSystem system;

  FindThese(system, {"GV30"}, true);
  ASSERT_NO_FATAL_FAILURE(FindThese(system, {"GV30"}, false));

  EXPECT_TRUE(GetBySerialNumber(system, "GV30")->IsConfigurationValid());
}

TEST_F(OnANetwork, Find_DeviceThatKeepsSilentAndSpeaksAgain_GoesAndComesBack) {
  TestDevice device(mHost, "port0", {.serialNumber = "mute"});
  KrSystem system;

  FindThese(system, {"mute"});
  device.SetSilent(true);
  Find(system);
  const auto silent = GetSerialNumbers(system);
  device.SetSilent(false);

  EXPECT_THAT(silent, IsEmpty());
  FindThese(system, {"mute"});
}

TEST_F(OnANetwork, Find_EveryRound_AsksTwice) {
  const TestDevice device(mHost, "port0");
  KrSystem system;

  Find(system);

  // The device may hear of the second question after the round.
  EXPECT_TRUE(krtest::Await([&] { return device.GetHeard(0x0002) >= 2; }));
  EXPECT_EQ(device.GetHeard(0x0002), 2u);
}

TEST_F(OnANetwork, FindDevice_AddressOfADevice_GivesItWithItsAdapter) {
  const TestDevice device(mHost, "port0", {.address = "192.168.1.40", .serialNumber = "S40"});
  KrSystem system;
  system.SetDetectionTimeout(krtest::GetGenerousMs()); // The answer ends it.
  const KrDeviceInfo* found = nullptr;

  const KrResult result = system.FindDevice("192.168.1.40", &found);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->GetSerialNumber(), KrString("S40"));
  EXPECT_EQ(found->GetInterface(), GetAdapter(system, "eth0"));
  EXPECT_TRUE(found->IsConfigurationValid());
}

TEST_F(OnANetwork, FindDevice_AddressThatNobodyHas_IsNotFound) {
  const TestDevice device(mHost, "port0", {.address = "192.168.1.40"});
  KrSystem system;
  system.SetDetectionTimeout(300);
  const KrDeviceInfo* found = nullptr;

  EXPECT_EQ(system.FindDevice("192.168.1.41", &found), KrResult::Code::NotFound);
  EXPECT_EQ(system.FindDevice("10.9.8.7", &found), KrResult::Code::NotFound);
  EXPECT_EQ(found, nullptr);
}

} // namespace

// Giving a device another address on a network: it is found as reachable afterwards, or a result says why not.

#include "krdevice/krdevicegev.h"
#include "networkfixture.h"

#include <gmock/gmock.h>

#include <utility>

namespace {

constexpr const char* kMac = "02:00:00:00:00:42";

/// A device that needs an address of 192.168.1/24, and the kernel's filter of foreign addresses.
struct RepairCase {
  const char* name;
  const char* address;
  int reversePathFilter;
};

const RepairCase kRepairCases[] = {
    {"ForeignSubnet", "10.1.2.3", 0},
    {"ForeignSubnetStrictlyFiltered", "10.1.2.3", 1},
    {"ForeignSubnetLooselyFiltered", "10.1.2.3", 2},
    {"WithoutAddress", "0.0.0.0", 0},
    {"WithoutAddressStrictlyFiltered", "0.0.0.0", 1},
    {"LinkLocal", "169.254.7.7", 0},
    {"SameSubnet", "192.168.1.99", 0},
};

class OnANetworkRepair : public OnANetwork, public testing::WithParamInterface<RepairCase> {};

TEST_P(OnANetworkRepair, SetIPConfiguration_DeviceThatObeys_IsFoundReachableAtItsNewAddress) {
  mLab.SetReversePathFilter("eth0", GetParam().reversePathFilter);
  const TestDevice device(mHost, "port0", {.mac = kMac, .address = GetParam().address, .serialNumber = "lost"});

  const KrResult result = KrDeviceGEV::SetIPConfiguration(kMac, "192.168.1.50", "255.255.255.0", "192.168.1.1");

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(device.GetAddresses(), (DeviceAddresses{0xC0A80132, 0xFFFFFF00, 0xC0A80101}));
  KrSystem system;
  FindThese(system, {"lost"}, true);
  const KrDeviceInfoGEV* found = GetBySerialNumber(system, "lost");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->GetIPAddress(), KrString("192.168.1.50"));
  EXPECT_TRUE(found->IsConfigurationValid());
}

INSTANTIATE_TEST_SUITE_P(LostDevices, OnANetworkRepair, testing::ValuesIn(kRepairCases),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST_F(OnANetwork, SetIPConfiguration_AcknowledgedFromTheOldAddress_Succeeds) {
  TestDevice device(mHost, "port0", {.mac = kMac, .address = "10.1.2.3"});
  device.SetForceIPManner(ForceIPManner::ObeyFromOldAddress);

  const KrResult result = KrDeviceGEV::SetIPConfiguration(kMac, "192.168.1.50", "255.255.255.0", "0.0.0.0");

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
}

TEST_F(OnANetwork, SetIPConfiguration_MacThatNobodyHas_IsNotFoundAndChangesNothing) {
  const TestDevice device(mHost, "port0", {.mac = kMac, .address = "10.1.2.3", .mask = "255.0.0.0"});

  const KrResult result =
      KrDeviceGEV::SetIPConfiguration("02:00:00:00:00:43", "192.168.1.50", "255.255.255.0", "0.0.0.0");

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::HasSubstr("did not answer on any network adapter"));
  EXPECT_GE(device.GetHeard(0x0004), 1u);
  EXPECT_EQ(device.GetAddresses(), (DeviceAddresses{0x0A010203, 0xFF000000, 0}));
}

TEST_F(OnANetwork, SetIPConfiguration_DeviceThatRefuses_IsAccessDenied) {
  TestDevice device(mHost, "port0", {.mac = kMac, .address = "192.168.1.99"});
  device.SetForceIPManner(ForceIPManner::Refuse);

  const KrResult result = KrDeviceGEV::SetIPConfiguration(kMac, "192.168.1.50", "255.255.255.0", "0.0.0.0");

  EXPECT_EQ(result, KrResult::Code::AccessDenied);
  EXPECT_EQ(device.GetAddresses().address, 0xC0A80163u);
}

TEST_F(OnANetwork, SetIPConfiguration_DeviceThatAnswersAndIgnoresIt_IsNotFoundWithWhatToDo) {
  TestDevice device(mHost, "port0", {.mac = kMac, .address = "192.168.1.99"});
  device.SetForceIPManner(ForceIPManner::Ignore);

  const KrResult result = KrDeviceGEV::SetIPConfiguration(kMac, "192.168.1.50", "255.255.255.0", "0.0.0.0");

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::HasSubstr("It answers on the network adapter eth0"));
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::HasSubstr("close that application"));
  EXPECT_EQ(device.GetAddresses().address, 0xC0A80163u);
}

TEST_F(OnANetwork, SetIPConfiguration_DeviceBehindTheSecondOfTwoAdapters_IsReachedThere) {
  mLab.Connect("eth1", mHost, "port1");
  mLab.SetAddress("eth1", "172.16.0.10/16");
  const TestDevice device(mHost, "port1", {.mac = kMac, .address = "10.1.2.3", .serialNumber = "second"});

  const KrResult result = KrDeviceGEV::SetIPConfiguration(kMac, "172.16.5.5", "255.255.0.0", "0.0.0.0");

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  KrSystem system;
  FindThese(system, {"second"}, true);
  const KrDeviceInfoGEV* found = GetBySerialNumber(system, "second");
  ASSERT_NE(found, nullptr);
  EXPECT_TRUE(found->IsConfigurationValid());
  EXPECT_EQ(found->GetInterface(), GetAdapter(system, "eth1"));
}

} // namespace

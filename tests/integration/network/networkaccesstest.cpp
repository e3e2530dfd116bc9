// Who controls a device, asked over a network, and how it gets its address at its next start.

#include "krdevice/krdevicegev.h"
#include "networkfixture.h"

#include <memory>

namespace {

constexpr std::uint16_t kReadRegister = 0x0080;

/// What a device's privilege register holds for a foreign application.
struct AccessCase {
  const char* name;
  std::uint32_t privilege;
  KrAccessType type;
};

const AccessCase kAccessCases[] = {
    {"Nobody", 0, KrAccessType::Open},
    {"Control", 2, KrAccessType::Control},
    {"ControlWithSwitchover", 6, KrAccessType::Control},
    {"Exclusive", 1, KrAccessType::Exclusive},
    {"ExclusiveAndControl", 3, KrAccessType::Exclusive},
};

class OnANetworkAccess : public OnANetwork, public testing::WithParamInterface<AccessCase> {};

TEST_P(OnANetworkAccess, GetAccessType_ForeignApplication_IsToldFromOneRead) {
  TestDevice device(mHost, "port0", {.address = "192.168.1.20"});
  device.SetForeignControl(GetParam().privilege);
  KrAccessType type = KrAccessType::Unknown;

  const KrResult result = KrDeviceGEV::GetAccessType("192.168.1.20", type);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(type, GetParam().type);
  EXPECT_EQ(device.GetHeard(kReadRegister), 1u);
}

INSTANTIATE_TEST_SUITE_P(Privileges, OnANetworkAccess, testing::ValuesIn(kAccessCases),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST_F(OnANetwork, GetAccessType_DeviceThatKeepsSilent_IsUnknownAndAskedOnce) {
  TestDevice device(mHost, "port0", {.address = "192.168.1.20"});
  KrAccessType before = KrAccessType::Unknown;
  // The device's MAC becomes known to this host, as it does in discovery, so that the question does go out.
  ASSERT_TRUE(KrDeviceGEV::GetAccessType("192.168.1.20", before).IsOK());
  const std::uint32_t heardBefore = device.GetHeard(kReadRegister);
  device.SetSilent(true);
  KrAccessType type = KrAccessType::Unknown;

  const KrResult result = KrDeviceGEV::GetAccessType("192.168.1.20", type);

  EXPECT_FALSE(result.IsOK());
  EXPECT_EQ(type, KrAccessType::Unknown);
  EXPECT_EQ(device.GetHeard(kReadRegister), heardBefore + 1);
}

TEST_F(OnANetwork, GetAccessType_AddressThatNobodyHas_Fails) {
  KrAccessType type = KrAccessType::Unknown;

  EXPECT_FALSE(KrDeviceGEV::GetAccessType("192.168.1.21", type).IsOK());
  EXPECT_FALSE(KrDeviceGEV::GetAccessType("10.7.7.7", type).IsOK());
  EXPECT_EQ(type, KrAccessType::Unknown);
}

/// A device of the network, open with control.
class OnANetworkLasting : public OnANetwork {
protected:
  static constexpr std::uint32_t kSupported = 0x0010;
  static constexpr std::uint32_t kCurrent = 0x0014;
  static constexpr std::uint32_t kPersistentAddress = 0x064C;
  static constexpr std::uint32_t kPersistentMask = 0x065C;
  static constexpr std::uint32_t kPersistentGateway = 0x066C;

  void Open(KrDeviceAccess aAccess = KrDeviceAccess::Control) {
    FindThese(mSystem, {"kept"});
    const KrDeviceInfoGEV* info = GetBySerialNumber(mSystem, "kept");
    ASSERT_NE(info, nullptr);
    const KrResult opened = KrDevice::Open(*info, aAccess, mOpened);
    ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
    mDevice = dynamic_cast<KrDeviceGEV*>(mOpened.get());
    ASSERT_NE(mDevice, nullptr);
  }

  TestDevice mCamera{mHost, "port0", {.address = "192.168.1.20", .serialNumber = "kept"}};
  KrSystem mSystem;
  std::unique_ptr<KrDevice> mOpened;
  KrDeviceGEV* mDevice = nullptr;
};

TEST_F(OnANetworkLasting, GetLastingIPConfiguration_WhatTheRegistersHold_IsTold) {
  mCamera.Write(kCurrent, 5);
  mCamera.Write(kPersistentAddress, 0xC0A80155);
  mCamera.Write(kPersistentMask, 0xFFFFFF00);
  mCamera.Write(kPersistentGateway, 0xC0A80101);
  ASSERT_NO_FATAL_FAILURE(Open());
  KrLastingIPConfiguration configuration;

  const KrResult result = mDevice->GetLastingIPConfiguration(configuration);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(configuration, (KrLastingIPConfiguration{.persistent = true,
                                                     .dhcp = false,
                                                     .linkLocal = true,
                                                     .address = "192.168.1.85",
                                                     .subnetMask = "255.255.255.0",
                                                     .gateway = "192.168.1.1"}));
}

TEST_F(OnANetworkLasting, SetLastingIPConfiguration_WithControl_StandsInTheRegisters) {
  ASSERT_NO_FATAL_FAILURE(Open());

  const KrResult result = mDevice->SetLastingIPConfiguration({.persistent = true,
                                                              .dhcp = false,
                                                              .linkLocal = true,
                                                              .address = "192.168.1.90",
                                                              .subnetMask = "255.255.255.0",
                                                              .gateway = "192.168.1.1"});

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(mCamera.Read(kCurrent) & 7u, 5u);
  EXPECT_EQ(mCamera.Read(kPersistentAddress), 0xC0A8015Au);
  EXPECT_EQ(mCamera.Read(kPersistentMask), 0xFFFFFF00u);
  EXPECT_EQ(mCamera.Read(kPersistentGateway), 0xC0A80101u);
}

TEST_F(OnANetworkLasting, SetLastingIPConfiguration_WayThatTheDeviceLacks_IsRefusedBeforeAnythingIsWritten) {
  mCamera.Write(kSupported, 6);
  ASSERT_NO_FATAL_FAILURE(Open());

  const KrResult result = mDevice->SetLastingIPConfiguration(
      {.persistent = true, .address = "192.168.1.90", .subnetMask = "255.255.255.0"});

  EXPECT_EQ(result, KrResult::Code::NotSupported);
  EXPECT_EQ(mCamera.Read(kCurrent), 6u);
  EXPECT_EQ(mCamera.Read(kPersistentAddress), 0u);
}

TEST_F(OnANetworkLasting, SetLastingIPConfiguration_WithoutControl_FailsAndChangesNothing) {
  ASSERT_NO_FATAL_FAILURE(Open(KrDeviceAccess::Monitor));

  const KrResult result = mDevice->SetLastingIPConfiguration({.persistent = true, .address = "192.168.1.90"});

  EXPECT_FALSE(result.IsOK());
  EXPECT_EQ(mCamera.Read(kCurrent), 6u);
  EXPECT_EQ(mCamera.Read(kPersistentAddress), 0u);
}

} // namespace

#include "labfixture.h"
#include "testclocks.h"

#include "krdevice/krdevicegev.h"
#include "krdevice/krdevicetolvanprotocol.h"
#include "krdevice/krdeviceu3v.h"
#include "krdevice/krstream.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

constexpr const char* kBusyMAC = "02:4b:52:00:78:10";
constexpr const char* kBusyAddress = "192.168.78.10";
constexpr const char* kZeroMAC = "02:4b:52:00:78:11";
constexpr const char* kTolvanMAC = "02:4b:52:00:78:20";
constexpr const char* kUsbGUID = "4B5200000101";
constexpr const char* kHighSpeedGUID = "4B5200000102";
constexpr const char* kLockedGUID = "4B5200000103";
constexpr const char* kPlainID = "simusb0/4";

class SimulatedDevicesTest : public LabTest {};

// A lab with two cameras that have one MAC address, one of which is held exclusively, and one that keeps silent.
krtransport::Lab MakeCrowdedLab() {
  krtransport::LabGEVCamera first;
  first.macAddress = kMonoMAC;
  first.ipAddress = "10.0.0.2";
  krtransport::LabGEVCamera second = first;
  second.ipAddress = "10.0.0.3";
  second.deviceClass = 3;
  krtransport::LabGEVCamera exclusive = first;
  exclusive.macAddress = kColourMAC;
  exclusive.ipAddress = "10.0.0.4";
  exclusive.foreignControl = krsystem::AccessType::Exclusive;
  krtransport::LabGEVCamera silent = first;
  silent.macAddress = kRangeMAC;
  silent.ipAddress = "10.0.0.5";
  silent.faults.silentRegisters = {{0x0A00, 0}};
  krtransport::LabAdapter adapter;
  adapter.name = "lab0";
  adapter.addresses = {{"192.168.1.1", "255.255.255.0"}, {"10.0.0.1", "255.0.0.0"}};
  adapter.devices = {first, second, exclusive, silent};
  return {.adapters = {adapter}};
}

class TimedCrowdedLabTest : public LabTest {
protected:
  explicit TimedCrowdedLabTest(std::shared_ptr<JumpingClock> aClock = std::make_shared<JumpingClock>())
      : LabTest(aClock, MakeCrowdedLab()), mClock(std::move(aClock)) {}

  const std::shared_ptr<JumpingClock> mClock;
};

// A USB3 Vision camera whose texts are as long as they may be.
krtransport::Lab MakeWideLab() {
  krtransport::LabU3VCamera camera;
  camera.deviceGUID = kUsbGUID;
  camera.vendorName = std::string(64, 'v');
  camera.modelName = std::string(64, 'm');
  camera.version = std::string(64, 'x');
  camera.manufacturerInfo = std::string(64, 'i');
  camera.serialNumber = std::string(64, 's');
  camera.userDefinedName = std::string(64, 'n');
  krtransport::LabController controller;
  controller.name = "usb0";
  controller.devices = {camera};
  return {.adapters = {}, .controllers = {controller}};
}

class WideLabTest : public LabTest {
protected:
  WideLabTest() : LabTest(nullptr, MakeWideLab()) {}
};

class CrowdedLabTest : public LabTest {
protected:
  CrowdedLabTest() : LabTest(nullptr, MakeCrowdedLab()) {}
};

} // namespace

TEST_F(SimulatedDevicesTest, Find_Interfaces_AreAdaptersAndController) {
  FindAll();

  ASSERT_EQ(mSystem.GetInterfaceCount(), 4u);
  const auto* const second = dynamic_cast<const KrNetworkAdapter*>(mSystem.GetInterface(1));
  const auto* const bare = dynamic_cast<const KrNetworkAdapter*>(mSystem.GetInterface(2));
  const auto* const controller = dynamic_cast<const KrUSBHostController*>(mSystem.GetInterface(3));
  ASSERT_TRUE(second && bare && controller);
  EXPECT_TRUE(second->IsTolvanDriverInstalled());
  EXPECT_EQ(second->GetIPAddress(0), "192.168.78.1");
  EXPECT_EQ(bare->GetIPAddressCount(), 1u);
  EXPECT_EQ(bare->GetIPAddress(0), "0.0.0.0");
  EXPECT_EQ(bare->GetSubnetMask(0), "0.0.0.0");
  EXPECT_EQ(controller->GetSpeed(), 4);
  EXPECT_EQ(controller->GetVendorID(), 0x4B52);
  EXPECT_EQ(controller->GetDeviceCount(), 4u);
}

TEST_F(SimulatedDevicesTest, Find_USB3Cameras_AreDescribedWhole) {
  FindAll();

  const auto* const fast = FindInfo<KrDeviceInfoU3V>(kUsbGUID);
  const auto* const slow = FindInfo<KrDeviceInfoU3V>(kHighSpeedGUID);
  const auto* const locked = FindInfo<KrDeviceInfoU3V>(kLockedGUID);
  ASSERT_TRUE(fast && slow && locked);
  EXPECT_EQ(fast->GetUserDefinedName(), "sim-usb");
  EXPECT_EQ(fast->GetSpeed(), 4);
  EXPECT_TRUE(fast->IsCurrentSpeedSupported());
  EXPECT_TRUE(fast->IsTolvanDriverInstalled());
  EXPECT_TRUE(fast->IsSuperSpeedSupported());
  EXPECT_FALSE(fast->IsLowSpeedSupported());
  EXPECT_THAT(fast->GetPowerMessage().ToUtf8(), HasSubstr("mA"));
  EXPECT_EQ(slow->GetSpeed(), 3);
  EXPECT_EQ(slow->GetSpeedMessage(), "High Speed (480 Mbit/s)");
  EXPECT_FALSE(locked->IsTolvanDriverInstalled());
}

TEST_F(SimulatedDevicesTest, Find_PlainUSBDevice_ShowsItsStatus) {
  FindAll();

  const auto* const plain = FindInfo<KrDeviceInfoUSB>(kPlainID);

  ASSERT_NE(plain, nullptr);
  EXPECT_EQ(plain->GetStatus(), 4);
}

TEST_F(SimulatedDevicesTest, Open_USB3Camera_HasParametersAndStreams) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kUsbGUID, device).IsOK());
  KrGenParameterArray* array = nullptr;
  KrStream stream(*device);
  KrBuffer* buffer = nullptr;

  EXPECT_NE(dynamic_cast<KrDeviceU3V*>(device.get()), nullptr);
  ASSERT_TRUE(device->GetParameters(array).IsOK());
  EXPECT_NE(array->GetInteger("Width"), nullptr);
  ASSERT_TRUE(stream.Start().IsOK());
  EXPECT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());
}

TEST_F(WideLabTest, Open_USB3CameraWithLongTexts_KeepsThem) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kUsbGUID, device).IsOK());
  KrGenParameterArray* array = nullptr;
  ASSERT_TRUE(device->GetParameters(array).IsOK());
  FindAll();

  const auto* const info = FindInfo<KrDeviceInfoU3V>(kUsbGUID);
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->GetUserDefinedName(), std::string(64, 'n'));
  const std::pair<const char*, char> rows[] = {
      {"DeviceVendorName", 'v'},       {"DeviceModelName", 'm'},    {"DeviceVersion", 'x'},
      {"DeviceManufacturerInfo", 'i'}, {"DeviceSerialNumber", 's'}, {"DeviceUserID", 'n'}};
  for (const auto& [name, letter] : rows) {
    KrString value;
    ASSERT_NE(array->GetString(name), nullptr) << name;
    EXPECT_TRUE(array->GetString(name)->GetValue(value).IsOK()) << name;
    EXPECT_EQ(value, std::string(64, letter)) << name;
  }
}

TEST_F(WideLabTest, UserDefinedName_OfAUSB3Camera_IsSetAndKept) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kUsbGUID, device).IsOK());
  KrGenParameterArray* array = nullptr;
  ASSERT_TRUE(device->GetParameters(array).IsOK());
  const KrString name(std::string(60, 'o'));

  ASSERT_TRUE(array->GetString("DeviceUserID")->SetValue(name).IsOK());
  FindAll();

  ASSERT_NE(FindInfo<KrDeviceInfoU3V>(kUsbGUID), nullptr);
  EXPECT_EQ(FindInfo<KrDeviceInfoU3V>(kUsbGUID)->GetUserDefinedName(), name);
}

TEST_F(SimulatedDevicesTest, Return_OfACameraThatGoesAgainAndAgain_IsToldOnceAsItsLossIs) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device, KrDeviceAccess::Monitor).IsOK());
  CountingSink sink;
  ASSERT_TRUE(device->RegisterEventSink(&sink).IsOK());

  for (int round = 0; round < 10; ++round) {
    // One that is opened anew hears of each round once, and so says when the round is over.
    std::unique_ptr<KrDevice> other;
    ASSERT_TRUE(Open(kMonoMAC, other, KrDeviceAccess::Monitor).IsOK());
    CountingSink otherSink;
    ASSERT_TRUE(other->RegisterEventSink(&otherSink).IsOK());
    ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
    ASSERT_TRUE(otherSink.WaitFor(1, 0));
    ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
    ASSERT_TRUE(otherSink.WaitFor(1, 1));
    ASSERT_TRUE(other->UnregisterEventSink(&otherSink).IsOK());
  }

  EXPECT_TRUE(sink.WaitFor(1, 1));
  EXPECT_TRUE(device->UnregisterEventSink(&sink).IsOK());
}

TEST_F(SimulatedDevicesTest, Open_DeviceThatCannotBe_IsRefusedWithTheReason) {
  std::unique_ptr<KrDevice> device;

  const KrResult locked = Open(kLockedGUID, device);
  const KrResult plain = Open(kPlainID, device);
  const KrResult tolvan = Open(kTolvanMAC, device);
  const KrResult busy = Open(kBusyMAC, device);

  EXPECT_TRUE(locked == KrResult::Code::AccessDenied);
  EXPECT_THAT(locked.GetDescription().ToUtf8(), HasSubstr("udev rule"));
  EXPECT_TRUE(plain == KrResult::Code::NotSupported);
  EXPECT_TRUE(tolvan == KrResult::Code::NotSupported);
  EXPECT_TRUE(busy == KrResult::Code::AccessDenied);
  EXPECT_THAT(busy.GetDescription().ToUtf8(), HasSubstr("another application controls it"));
  EXPECT_EQ(device, nullptr);
}

TEST_F(SimulatedDevicesTest, Open_ControlledCameraToMonitor_Succeeds) {
  std::unique_ptr<KrDevice> device;

  EXPECT_TRUE(Open(kBusyMAC, device, KrDeviceAccess::Monitor).IsOK());
}

TEST_F(SimulatedDevicesTest, GetAccessType_EachCamera_SaysWhoControlsIt) {
  KrAccessType mono = KrAccessType::Unknown;
  KrAccessType busy = KrAccessType::Unknown;

  EXPECT_TRUE(KrDeviceGEV::GetAccessType(kMonoAddress, mono).IsOK());
  EXPECT_TRUE(KrDeviceGEV::GetAccessType(kBusyAddress, busy).IsOK());

  EXPECT_EQ(mono, KrAccessType::Open);
  EXPECT_EQ(busy, KrAccessType::Control);
}

TEST_F(SimulatedDevicesTest, SetIPConfiguration_CameraWithoutAddress_CanBeOpenedAfterwards) {
  std::unique_ptr<KrDevice> device;
  FindAll();
  ASSERT_NE(FindInfo(kZeroMAC), nullptr);
  EXPECT_FALSE(FindInfo(kZeroMAC)->IsConfigurationValid());

  EXPECT_TRUE(KrDeviceGEV::SetIPConfiguration(kZeroMAC, "192.168.78.30", "255.255.255.0", "0.0.0.0").IsOK());

  EXPECT_TRUE(Open(kZeroMAC, device).IsOK());
}

TEST_F(SimulatedDevicesTest, SetIPConfiguration_TolvanDevice_ShowsInTheNextDiscovery) {
  EXPECT_TRUE(
      KrDeviceTolvanProtocol::SetIPConfiguration(kTolvanMAC, "192.168.79.5", "255.255.0.0", "192.168.79.1").IsOK());

  FindAll();

  const auto* const device = FindInfo<KrDeviceInfoTolvanProtocol>(kTolvanMAC);
  ASSERT_NE(device, nullptr);
  EXPECT_EQ(device->GetIPAddress(), "192.168.79.5");
  EXPECT_EQ(device->GetSubnetMask(), "255.255.0.0");
  EXPECT_EQ(device->GetDefaultGateway(), "192.168.79.1");
  EXPECT_FALSE(device->IsConfigurationValid());
}

TEST_F(SimulatedDevicesTest, SetIPConfiguration_CameraOfSomebodyElse_IsBusy) {
  EXPECT_TRUE(KrDeviceGEV::SetIPConfiguration(kBusyMAC, "192.168.78.99", "255.255.255.0", "0.0.0.0") ==
              KrResult::Code::Busy);
}

TEST_F(SimulatedDevicesTest, LastingIPRegisters_Written_HoldAndForceIPLeavesThemAlone) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  const std::pair<std::uint64_t, std::uint32_t> rows[] = {
      {0x0014, 0x7}, {0x064C, 0xC0A84D32}, {0x065C, 0xFFFFFF00}, {0x066C, 0xC0A84D01}};
  for (const auto& [address, value] : rows)
    ASSERT_TRUE(WriteInteger(*device, address, value).IsOK()) << address;
  device.reset();

  ASSERT_TRUE(KrDeviceGEV::SetIPConfiguration(kMonoMAC, "192.168.77.99", "255.255.255.0", "0.0.0.0").IsOK());

  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  for (const auto& [address, value] : rows) {
    std::uint32_t read = 0;
    EXPECT_TRUE(ReadInteger(*device, address, read).IsOK());
    EXPECT_EQ(read, value) << address;
  }
  EXPECT_EQ(FindInfo(kMonoMAC)->GetIPAddress(), "192.168.77.99");
  EXPECT_EQ(FindInfo(kMonoMAC)->GetIPConfigCurrentString(), "Persistent, DHCP, LLA");
}

TEST_F(SimulatedDevicesTest, LastingIPRegister_WithoutLinkLocal_KeepsIt) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  std::uint32_t current = 0;

  EXPECT_TRUE(WriteInteger(*device, 0x0014, 0x2).IsOK());
  EXPECT_TRUE(WriteInteger(*device, 0x0014, 0x8) == KrResult::Code::ProtocolError) << "no way of the camera's";

  EXPECT_TRUE(ReadInteger(*device, 0x0014, current).IsOK());
  EXPECT_EQ(current, 0x6u);
}

TEST_F(CrowdedLabTest, Open_CamerasOfOneMAC_EachIsTheOneThatWasFound) {
  std::unique_ptr<KrDevice> device;
  const KrDeviceInfo* second = nullptr;
  ASSERT_TRUE(mSystem.FindDevice("10.0.0.3", &second).IsOK());
  ASSERT_TRUE(KrDevice::Open(*second, KrDeviceAccess::Control, device).IsOK());
  std::uint32_t address = 0;
  std::uint32_t mode = 0;

  EXPECT_TRUE(ReadInteger(*device, 0x0024, address).IsOK());
  EXPECT_TRUE(ReadInteger(*device, 0x0004, mode).IsOK());

  EXPECT_EQ(address, 0x0A000003u);
  EXPECT_EQ(mode >> 28, 0x8u | 3u) << "big-endian, peripheral";
}

TEST_F(CrowdedLabTest, SetIPConfiguration_CamerasOfOneMAC_AllTakeIt) {
  const KrDeviceInfo* device = nullptr;

  EXPECT_TRUE(KrDeviceGEV::SetIPConfiguration(kMonoMAC, "10.0.0.9", "255.0.0.0", "0.0.0.0").IsOK());

  EXPECT_TRUE(mSystem.FindDevice("10.0.0.9", &device).IsOK());
  EXPECT_TRUE(mSystem.FindDevice("10.0.0.2", &device) == KrResult::Code::NotFound);
  EXPECT_TRUE(mSystem.FindDevice("10.0.0.3", &device) == KrResult::Code::NotFound);
}

TEST_F(CrowdedLabTest, ExclusiveCamera_CannotBeMonitored) {
  std::unique_ptr<KrDevice> device;
  KrAccessType type = KrAccessType::Unknown;

  EXPECT_TRUE(Open(kColourMAC, device, KrDeviceAccess::Monitor) == KrResult::Code::AccessDenied);
  EXPECT_TRUE(KrDeviceGEV::GetAccessType("10.0.0.4", type).IsOK());

  EXPECT_EQ(type, KrAccessType::Exclusive);
}

TEST_F(CrowdedLabTest, GetAccessType_SilentCamera_ExceedsTheTimeLimit) {
  KrAccessType type = KrAccessType::Unknown;

  EXPECT_TRUE(KrDeviceGEV::GetAccessType("10.0.0.5", type) == KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(type, KrAccessType::Unknown);
}

TEST_F(TimedCrowdedLabTest, GetAccessType_SilentCamera_WaitsByTheLabsClock) {
  const std::uint64_t startNs = mClock->GetNowNs();
  KrAccessType type = KrAccessType::Unknown;

  EXPECT_TRUE(KrDeviceGEV::GetAccessType("10.0.0.5", type) == KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(mClock->GetNowNs() - startNs, 200000000u);
}

#include "labfixture.h"

#include "krdevice/krdevicegev.h"

#include <gmock/gmock.h>

#include <limits>

using namespace krtransport::cameraregister;
using testing::HasSubstr;

namespace {

struct RefusedInteger {
  const char* name;
  std::uint64_t address;
  std::uint32_t value;
};

constexpr RefusedInteger kRefusedIntegers[] = {
    {"width of 0", kWidth, 0},
    {"width below the least", kWidth, kWidthMin - kWidthIncrement},
    {"width beyond the sensor", kWidth, 1284},
    {"width between two steps", kWidth, 642},
    {"height of 0", kHeight, 0},
    {"height beyond the sensor", kHeight, 962},
    {"height between two steps", kHeight, 481},
    {"pixel format that the camera lacks", kPixelFormat, KrPixel::RGB8},
    {"pixel format that is none", kPixelFormat, 0},
    {"test pattern", kTestPattern, 4},
    {"acquisition mode", kAcquisitionMode, 3},
    {"start with another value", kAcquisitionStart, 0},
    {"largest number as width", kWidth, 0xFFFFFFFF},
};

struct RefusedFloat {
  const char* name;
  std::uint64_t address;
  double value;
};

constexpr RefusedFloat kRefusedFloats[] = {
    {"frame rate of 0", kAcquisitionFrameRate, 0.0},
    {"negative frame rate", kAcquisitionFrameRate, -1.0},
    {"frame rate beyond the largest", kAcquisitionFrameRate, 1000.5},
    {"frame rate that is no number", kAcquisitionFrameRate, std::numeric_limits<double>::quiet_NaN()},
    {"infinite exposure", kExposureTime, std::numeric_limits<double>::infinity()},
    {"exposure of 0", kExposureTime, 0.0},
    {"negative gain", kGain, -0.1},
};

class SimulatedCameraTest : public LabTest {};

} // namespace

TEST_F(SimulatedCameraTest, Bootstrap_Registers_SayWhatDiscoverySays) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  const std::pair<std::uint64_t, std::uint32_t> rows[] = {
      {kVersion, 0x00020000},    {kMACHigh, 0x024B},       {kMACLow, 0x52007710},  {kIPAddress, 0xC0A84D0A},
      {kSubnetMask, 0xFFFFFF00}, {kStreamChannelCount, 1}, {kControlPrivilege, 2}, {kHeartbeatTimeout, 3000},
  };
  for (const auto& [address, expected] : rows) {
    std::uint32_t value = 0;

    EXPECT_TRUE(ReadInteger(*device, address, value).IsOK()) << address;

    EXPECT_EQ(value, expected) << address;
  }
}

TEST_F(SimulatedCameraTest, Bootstrap_WholeDiscoveryBlock_IsReadInOneAccess) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  std::array<char, 0xF8> block = {};

  EXPECT_TRUE(device->GetRegisterPort().Read(0, block.data(), block.size(), kGenerousLimitMs).IsOK());

  EXPECT_STREQ(block.data() + kManufacturerName, "KrGUI");
  EXPECT_STREQ(block.data() + kModelName, "Simulated Mono Camera");
  EXPECT_STREQ(block.data() + kUserDefinedName, "sim-mono");
}

TEST_F(SimulatedCameraTest, Write_IntegerThatIsInvalid_IsRefusedAndChangesNothing) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  for (const RefusedInteger& row : kRefusedIntegers) {
    SCOPED_TRACE(row.name);

    const KrResult result = WriteInteger(*device, row.address, row.value);

    EXPECT_TRUE(result == KrResult::Code::ProtocolError);
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("invalid parameter (0x8002)"));
  }
  std::uint32_t payload = 0;
  EXPECT_TRUE(ReadInteger(*device, kPayloadSize, payload).IsOK());
  EXPECT_EQ(payload, 1280u * 960u);
}

TEST_F(SimulatedCameraTest, Write_FloatThatIsInvalid_IsRefused) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  for (const RefusedFloat& row : kRefusedFloats) {
    SCOPED_TRACE(row.name);

    EXPECT_TRUE(WriteFloat(*device, row.address, row.value) == KrResult::Code::ProtocolError);
  }
  EXPECT_TRUE(WriteInteger(*device, kGain, 0) == KrResult::Code::ProtocolError) << "half of the register";
}

TEST_F(SimulatedCameraTest, Write_SizeAndFormat_ChangeThePayloadSize) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  std::uint32_t payload = 0;

  EXPECT_TRUE(WriteInteger(*device, kWidth, 640).IsOK());
  EXPECT_TRUE(WriteInteger(*device, kHeight, 480).IsOK());
  EXPECT_TRUE(WriteInteger(*device, kPixelFormat, KrPixel::Mono12p).IsOK());

  EXPECT_TRUE(ReadInteger(*device, kPayloadSize, payload).IsOK());
  EXPECT_EQ(payload, 640u * 480u * 3u / 2u);
}

TEST_F(SimulatedCameraTest, Write_HeartbeatBelowTheLeast_IsRaised) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  std::uint32_t heartbeatMs = 0;

  EXPECT_TRUE(WriteInteger(*device, kHeartbeatTimeout, 100).IsOK());

  EXPECT_TRUE(ReadInteger(*device, kHeartbeatTimeout, heartbeatMs).IsOK());
  EXPECT_EQ(heartbeatMs, 500u);
}

TEST_F(SimulatedCameraTest, Write_UserDefinedName_ShowsInTheNextDiscovery) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  const std::array<char, 16> name = {"bench 4"};

  EXPECT_TRUE(device->GetRegisterPort().Write(kUserDefinedName, name.data(), name.size(), kGenerousLimitMs).IsOK());

  FindAll();
  EXPECT_EQ(FindInfo(kMonoMAC)->GetUserDefinedName(), "bench 4");
}

TEST_F(SimulatedCameraTest, Port_ArgumentsThatCannotBe_AreInvalidInput) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  IKrRegisterPort& port = device->GetRegisterPort();
  std::array<std::uint8_t, 4> bytes = {};

  EXPECT_TRUE(port.Read(kWidth, bytes.data(), 0, kGenerousLimitMs) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(port.Read(kWidth, bytes.data(), (std::size_t{16} << 20) + 4, kGenerousLimitMs) ==
              KrResult::Code::InvalidInput);
  EXPECT_TRUE(port.Read(kWidth, nullptr, 4, kGenerousLimitMs) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(port.Write(kWidth, bytes.data(), 4, 0) == KrResult::Code::InvalidInput);
}

TEST_F(SimulatedCameraTest, Open_SecondControl_IsAccessDeniedUntilTheFirstIsClosed) {
  std::unique_ptr<KrDevice> first;
  std::unique_ptr<KrDevice> second;
  ASSERT_TRUE(Open(kMonoMAC, first).IsOK());

  const KrResult refused = Open(kMonoMAC, second);

  EXPECT_TRUE(refused == KrResult::Code::AccessDenied);
  EXPECT_THAT(refused.GetDescription().ToUtf8(), HasSubstr("another application controls it"));
  EXPECT_EQ(second, nullptr);
  first.reset();
  EXPECT_TRUE(Open(kMonoMAC, second).IsOK());
}

TEST_F(SimulatedCameraTest, Open_Monitor_ReadsButNeitherWritesNorStreams) {
  std::unique_ptr<KrDevice> controller;
  std::unique_ptr<KrDevice> monitor;
  ASSERT_TRUE(Open(kMonoMAC, controller).IsOK());
  ASSERT_TRUE(Open(kMonoMAC, monitor, KrDeviceAccess::Monitor).IsOK());
  std::uint32_t width = 0;

  EXPECT_TRUE(ReadInteger(*monitor, kWidth, width).IsOK());
  EXPECT_TRUE(WriteInteger(*monitor, kWidth, 640) == KrResult::Code::AccessDenied);
  EXPECT_TRUE(monitor->GetBufferSource(0)->Start() == KrResult::Code::AccessDenied);

  EXPECT_EQ(width, 1280u);
  EXPECT_EQ(monitor->GetBufferSource(1), nullptr);
}

TEST_F(SimulatedCameraTest, Open_ExclusiveControl_KeepsMonitorsOut) {
  std::unique_ptr<KrDevice> monitor;
  std::unique_ptr<KrDevice> controller;
  std::unique_ptr<KrDevice> later;
  ASSERT_TRUE(Open(kMonoMAC, monitor, KrDeviceAccess::Monitor).IsOK());
  ASSERT_TRUE(Open(kMonoMAC, controller, KrDeviceAccess::Exclusive).IsOK());
  std::uint32_t width = 0;

  EXPECT_TRUE(ReadInteger(*monitor, kWidth, width) == KrResult::Code::AccessDenied);
  EXPECT_TRUE(Open(kMonoMAC, later, KrDeviceAccess::Monitor) == KrResult::Code::AccessDenied);
}

TEST_F(SimulatedCameraTest, GetAccessType_EachOpening_IsTold) {
  const std::pair<KrDeviceAccess, KrAccessType> rows[] = {
      {KrDeviceAccess::Monitor, KrAccessType::Open},
      {KrDeviceAccess::Control, KrAccessType::Control},
      {KrDeviceAccess::Exclusive, KrAccessType::Exclusive},
  };
  for (const auto& [access, expected] : rows) {
    std::unique_ptr<KrDevice> device;
    ASSERT_TRUE(Open(kMonoMAC, device, access).IsOK());
    KrAccessType type = KrAccessType::Unknown;

    EXPECT_TRUE(KrDeviceGEV::GetAccessType(kMonoAddress, type).IsOK());

    EXPECT_EQ(type, expected);
  }
}

TEST_F(SimulatedCameraTest, Lose_OpenCamera_TellsTheSinkAndEndsRegisterAccess) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  CountingSink sink;
  EXPECT_TRUE(device->RegisterEventSink(&sink).IsOK());
  std::uint32_t width = 0;

  EXPECT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  EXPECT_TRUE(sink.WaitFor(1, 0));
  EXPECT_TRUE(sink.GetReason() == KrResult::Code::ConnectionLost);
  EXPECT_FALSE(device->IsConnected());
  EXPECT_TRUE(ReadInteger(*device, kWidth, width) == KrResult::Code::ConnectionLost);
  EXPECT_TRUE(WriteInteger(*device, kWidth, 640) == KrResult::Code::ConnectionLost);
}

TEST_F(SimulatedCameraTest, Lose_Camera_AnswersNobodyUntilItIsRestored) {
  std::unique_ptr<KrDevice> device;
  EXPECT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  FindAll();

  EXPECT_EQ(FindInfo(kMonoMAC), nullptr);
  EXPECT_TRUE(mLab->Restore(kMonoMAC).IsOK());
  EXPECT_TRUE(Open(kMonoMAC, device).IsOK());
}

TEST_F(SimulatedCameraTest, Restore_LostDevice_HearsOfItAndHasToBeOpenedAnew) {
  std::unique_ptr<KrDevice> device;
  std::unique_ptr<KrDevice> reopened;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  CountingSink sink;
  EXPECT_TRUE(device->RegisterEventSink(&sink).IsOK());
  EXPECT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  std::uint32_t width = 0;

  EXPECT_TRUE(mLab->Restore(kMonoMAC).IsOK());

  EXPECT_TRUE(sink.WaitFor(1, 1));
  EXPECT_FALSE(device->IsConnected());
  EXPECT_TRUE(ReadInteger(*device, kWidth, width) == KrResult::Code::ConnectionLost);
  EXPECT_TRUE(Open(kMonoMAC, reopened).IsOK());
  device.reset();
  EXPECT_TRUE(WriteInteger(*reopened, kWidth, 640).IsOK()) << "closing the lost device must not take control away";
}

TEST_F(SimulatedCameraTest, Lose_CameraThatTheLabLacks_IsNotFound) {
  EXPECT_TRUE(mLab->Lose("00:00:00:00:00:00") == KrResult::Code::NotFound);
  EXPECT_TRUE(mLab->Restore("00:00:00:00:00:00") == KrResult::Code::NotFound);
}

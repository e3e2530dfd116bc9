#include "gigevisionfixture.h"

namespace {

using krsystem::AccessType;
using krsystem::DeviceAccess;

using GigEVisionLink = GigEVisionCameraTest;

TEST_F(GigEVisionLink, Registers_Written_ReadBackInTheDevicesByteOrder) {
  const auto link = OpenControlled();
  ASSERT_NE(link, nullptr);

  const KrResult written = WriteRegister(*link, kWidthRegister, kWidth);

  EXPECT_TRUE(written.IsOK()) << written.GetDescription().CStr();
  EXPECT_EQ(ReadRegister(*link, kWidthRegister), kWidth);
}

TEST_F(GigEVisionLink, Registers_OddAddressAndLength_ReadTheBytesBetween) {
  const auto link = OpenControlled();
  ASSERT_NE(link, nullptr);
  std::array<char, 3> text{};

  // The manufacturer's name, "Aravis", begins at 0x48.
  const KrResult result = link->GetRegisterPort().Read(0x49, text.data(), text.size(), kGenerousTimeoutMs);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(std::string(text.data(), text.size()), "rav");
}

TEST_F(GigEVisionLink, Registers_LongerThanOneDatagram_AreReadWhole) {
  const auto link = OpenControlled();
  ASSERT_NE(link, nullptr);
  std::vector<std::uint8_t> whole(1024);
  std::vector<std::uint8_t> tail(8);

  const KrResult read = link->GetRegisterPort().Read(0, whole.data(), whole.size(), kGenerousTimeoutMs);
  const KrResult readTail = link->GetRegisterPort().Read(0x200, tail.data(), tail.size(), kGenerousTimeoutMs);

  EXPECT_TRUE(read.IsOK()) << read.GetDescription().CStr();
  EXPECT_TRUE(readTail.IsOK()) << readTail.GetDescription().CStr();
  EXPECT_EQ(std::string(whole.begin() + 0x48, whole.begin() + 0x48 + 6), "Aravis");
  EXPECT_TRUE(std::equal(tail.begin(), tail.end(), whole.begin() + 0x200));
}

TEST_F(GigEVisionLink, Registers_InvalidArguments_ReturnInvalidInput) {
  const auto link = OpenControlled();
  ASSERT_NE(link, nullptr);
  IKrRegisterPort& port = link->GetRegisterPort();
  std::array<std::uint8_t, 8> bytes{};

  EXPECT_EQ(port.Read(0, bytes.data(), 0, 1000), KrResult::Code::InvalidInput);
  EXPECT_EQ(port.Read(0, bytes.data(), (16u << 20) + 1, 1000), KrResult::Code::InvalidInput);
  EXPECT_EQ(port.Read(0xFFFFFFFF, bytes.data(), 2, 1000), KrResult::Code::InvalidInput);
  EXPECT_EQ(port.Read(std::uint64_t{1} << 32, bytes.data(), 4, 1000), KrResult::Code::InvalidInput);
  EXPECT_EQ(port.Write(0x102, bytes.data(), 4, 1000), KrResult::Code::InvalidInput);
}

TEST_F(GigEVisionLink, AccessType_OpenedAndClosed_FollowsTheDevice) {
  EXPECT_EQ(GetAccessType(), AccessType::Open);

  auto link = OpenControlled();
  EXPECT_EQ(GetAccessType(), AccessType::Control);

  link.reset();
  EXPECT_EQ(GetAccessType(), AccessType::Open);
}

TEST_F(GigEVisionLink, Open_Exclusive_TakesTheDeviceExclusively) {
  std::unique_ptr<krsystem::IDeviceLink> link;

  const KrResult result = Open(DeviceAccess::Exclusive, link);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(GetAccessType(), AccessType::Exclusive);
}

TEST_F(GigEVisionLink, Open_ControlledElsewhere_RefusesControlAndLetsMonitorRead) {
  const auto first = OpenControlled();
  std::unique_ptr<krsystem::IDeviceLink> second;
  std::unique_ptr<krsystem::IDeviceLink> monitor;

  const KrResult refused = Open(DeviceAccess::Control, second);
  const KrResult opened = Open(DeviceAccess::Monitor, monitor);

  EXPECT_EQ(refused, KrResult::Code::AccessDenied);
  EXPECT_THAT(refused.GetDescription().ToUtf8(), testing::HasSubstr("another application"));
  ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
  EXPECT_EQ(ReadRegister(*monitor, 0x48), 0x41726176u); // "Arav".
  EXPECT_EQ(WriteRegister(*monitor, kWidthRegister, kWidth), KrResult::Code::AccessDenied);
  EXPECT_EQ(monitor->GetBufferSource(0), nullptr);
}

TEST_F(GigEVisionLink, Open_CameraGone_ReturnsNotFound) {
  mCamera->Kill();
  std::unique_ptr<krsystem::IDeviceLink> link;

  const KrResult result = Open(DeviceAccess::Control, link);

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_EQ(link, nullptr);
}

} // namespace

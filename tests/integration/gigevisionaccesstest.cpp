// What a device says of who holds it, and what follows for asking and opening.

#include "await.h"
#include "gvcpresponder.h"

#include "gigevision/gigevisiontransport.h"
#include "krsystem/idevicelink.h"

#include <gtest/gtest.h>

#include <atomic>

namespace {

using krsystem::AccessType;
using krsystem::DeviceAccess;

constexpr std::uint32_t kLoopback = 0x7F000001;
const std::uint32_t kGenerousTimeoutMs = krtest::GetGenerousMs();

struct AccessRow {
  const char* what;
  std::uint16_t status; ///< With which reading the privilege is answered.
  std::uint32_t privilege;
  KrResult::Code asked;
  AccessType type;
  KrResult::Code openedToRead;
  KrResult::Code openedToControl; ///< Where the device is free this is not tried: the responder gives no control.
};

constexpr auto kOK = KrResult::Code::OK;
constexpr auto kAccessDenied = KrResult::Code::AccessDenied;
constexpr auto kProtocolError = KrResult::Code::ProtocolError;

constexpr AccessRow kRows[] = {
    {"Exclusive", 0, 1, kOK, AccessType::Exclusive, kAccessDenied, kAccessDenied},
    {"Control", 0, 2, kOK, AccessType::Control, kOK, kAccessDenied},
    {"ExclusiveControl", 0, 3, kOK, AccessType::Exclusive, kAccessDenied, kAccessDenied},
    {"SwitchoverAlone", 0, 4, kOK, AccessType::Control, kOK, kAccessDenied},
    {"ControlWithSwitchover", 0, 6, kOK, AccessType::Control, kOK, kAccessDenied},
    {"ReadingDenied", 0x8006, 0, kOK, AccessType::Exclusive, kAccessDenied, kAccessDenied},
    {"Busy", 0x8007, 0, kProtocolError, AccessType::Unknown, kProtocolError, kProtocolError},
    {"NotImplemented", 0x8001, 0, kProtocolError, AccessType::Unknown, kProtocolError, kProtocolError},
};

class GigEVisionAccess : public testing::TestWithParam<AccessRow> {
protected:
  void SetUp() override {
    ASSERT_TRUE(mTransport.FindAddress(kLoopback, kGenerousTimeoutMs, mInterface, mDevice).IsOK());
  }

  KrResult::Code Open(DeviceAccess aAccess) {
    std::unique_ptr<krsystem::IDeviceLink> link;
    return mTransport.Open(mInterface, mDevice, aAccess, link).GetCode();
  }

  const GvcpResponder mResponder{[](auto aCommand) {
    if (!IsReadRegister(aCommand))
      return Datagrams{MakeDiscoveryAcknowledge(aCommand, kLoopback, "held")};
    const AccessRow& row = GetParam();
    return Datagrams{row.status != 0 ? MakeReadRefusal(aCommand, row.status)
                                     : MakeReadAcknowledge(aCommand, row.privilege)};
  }};
  krtransport::GigEVisionTransport mTransport;
  krsystem::InterfaceFields mInterface;
  krsystem::AnyDeviceFields mDevice;
};

TEST_P(GigEVisionAccess, DeviceHeld_IsToldAsItIs) {
  AccessType type = AccessType::Unknown;

  const KrResult asked = mTransport.GetAccessType(mDevice, type);

  EXPECT_EQ(asked.GetCode(), GetParam().asked) << asked.GetDescription().CStr();
  EXPECT_EQ(type, GetParam().type);
}

TEST_P(GigEVisionAccess, DeviceHeld_IsOpenedOnlyAsItAllows) {
  EXPECT_EQ(Open(DeviceAccess::Monitor), GetParam().openedToRead);
  EXPECT_EQ(Open(DeviceAccess::Control), GetParam().openedToControl);
  EXPECT_EQ(Open(DeviceAccess::Exclusive), GetParam().openedToControl);
}

INSTANTIATE_TEST_SUITE_P(Holders, GigEVisionAccess, testing::ValuesIn(kRows),
                         [](const auto& aInfo) { return std::string(aInfo.param.what); });

TEST(GigEVisionHolder, AddressThatTheDeviceTells_IsNamed) {
  struct Row {
    std::uint32_t address;
    const char* text;
  };
  for (const Row& row : {Row{0x0A000005, "controlled by another application at 10.0.0.5."},
                         Row{kLoopback, "controlled by another application on this computer."},
                         Row{0, "controlled by another application."}}) {
    const GvcpResponder responder([&](std::span<const std::uint8_t> aCommand) {
      if (!IsReadRegister(aCommand))
        return Datagrams{MakeDiscoveryAcknowledge(aCommand, kLoopback, "held")};
      const bool isAddress = aCommand[10] == 0x0A && aCommand[11] == 0x14;
      return Datagrams{MakeReadAcknowledge(aCommand, isAddress ? row.address : 2)};
    });
    krtransport::GigEVisionTransport transport;
    krsystem::InterfaceFields adapter;
    krsystem::AnyDeviceFields device;
    std::unique_ptr<krsystem::IDeviceLink> link;
    ASSERT_TRUE(transport.FindAddress(kLoopback, kGenerousTimeoutMs, adapter, device).IsOK());

    const KrResult opened = transport.Open(adapter, device, DeviceAccess::Control, link);

    EXPECT_EQ(opened, kAccessDenied);
    EXPECT_NE(opened.GetDescription().ToUtf8().find(row.text), std::string::npos) << opened.GetDescription().CStr();
  }
}

TEST(GigEVisionHolder, AnotherDeviceAtTheAddressThatLetsNobodyRead_IsToldAsAnother) {
  for (const std::uint16_t status : {0x8006, 0x8007}) {
    const GvcpResponder responder([status](std::span<const std::uint8_t> aCommand) {
      return Datagrams{IsReadRegister(aCommand) ? MakeReadRefusal(aCommand, status)
                                                : MakeDiscoveryAcknowledge(aCommand, kLoopback, "other")};
    });
    krtransport::GigEVisionTransport transport;
    krsystem::InterfaceFields adapter;
    krsystem::AnyDeviceFields device;
    std::unique_ptr<krsystem::IDeviceLink> link;
    ASSERT_TRUE(transport.FindAddress(kLoopback, kGenerousTimeoutMs, adapter, device).IsOK());
    std::get<krsystem::GEVFields>(device).uniqueID = "02:00:00:00:00:77";

    const KrResult opened = transport.Open(adapter, device, DeviceAccess::Control, link);

    EXPECT_EQ(opened, KrResult::Code::NotFound);
    EXPECT_NE(opened.GetDescription().ToUtf8().find("another device answers"), std::string::npos)
        << opened.GetDescription().CStr();
  }
}

TEST(GigEVisionAccessQuestion, DeviceThatKeepsSilent_IsAskedOnceAndNotWaitedForAgain) {
  std::atomic<int> questions{0};
  krtransport::GigEVisionTransport transport;
  krsystem::GEVFields device;
  device.ipAddress = "127.0.0.1";
  AccessType type = AccessType::Unknown;
  KrResult result;

  {
    const GvcpResponder responder([&](std::span<const std::uint8_t> aCommand) {
      questions += IsReadRegister(aCommand) ? 1 : 100;
      return Datagrams();
    });
    result = transport.GetAccessType(device, type);
  }

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(type, AccessType::Unknown);
  EXPECT_EQ(questions, 1);
}

} // namespace

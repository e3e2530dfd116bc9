// Opening devices that state more of their descriptions than there can be. Aravis takes memory for what is stated, and
// ends the process where that is not to be had.

#include "krdevice/krdevice.h"
#include "networkfixture.h"

#include <array>
#include <cstring>
#include <memory>

namespace {

constexpr std::uint32_t kFirstURL = 0x0200;
constexpr std::uint32_t kSecondURL = 0x0400;
constexpr std::size_t kURLBytes = 512;

/// A register's URL, and what becomes of opening the device for control.
struct LengthCase {
  const char* name;
  std::uint32_t address;
  const char* url;
  KrResult::Code opened;
};

constexpr LengthCase kCases[] = {
    {"AsMuchAsNumbersHave", kFirstURL, "Local:test.xml;10000;7FFFFFFFFFFFFFFF", KrResult::Code::BadData},
    {"MoreThanNumbersHave", kFirstURL, "local:test.zip;0x10000;0xFFFFFFFFFFFFFFFFFF", KrResult::Code::BadData},
    {"InFrontOfAVersion", kFirstURL, "Local:test.xml;10000;7FFFFFFFFFFFFFFF?SchemaVersion=1.1.0",
     KrResult::Code::BadData},
    {"InTheSecond", kSecondURL, "Local:test.xml;10000;7FFFFFFFFFFFFFFF", KrResult::Code::BadData},
    {"NoneInTheSecond", kSecondURL, "Local:test.xml;10000;0", KrResult::Code::OK},
};

class OnANetworkStatedLength : public OnANetwork, public testing::WithParamInterface<LengthCase> {
protected:
  void WriteURL(std::uint32_t aAddress, const char* aURL) {
    std::array<std::uint8_t, kURLBytes> bytes{};
    std::memcpy(bytes.data(), aURL, std::strlen(aURL));
    for (std::uint32_t i = 0; i < kURLBytes; i += 4)
      mCamera.Write(aAddress + i,
                    static_cast<std::uint32_t>(bytes[i] << 24 | bytes[i + 1] << 16 | bytes[i + 2] << 8 | bytes[i + 3]));
  }

  TestDevice mCamera{mHost, "port0", {.address = "192.168.1.20", .serialNumber = "stating"}};
  KrSystem mSystem;
  std::unique_ptr<KrDevice> mOpened;
};

TEST_P(OnANetworkStatedLength, Open_ForControl_IsRefusedWhereItIsTooLong) {
  WriteURL(GetParam().address, GetParam().url);
  FindThese(mSystem, {"stating"});
  const KrDeviceInfoGEV* info = GetBySerialNumber(mSystem, "stating");
  ASSERT_NE(info, nullptr);

  const KrResult opened = KrDevice::Open(*info, KrDeviceAccess::Control, mOpened);

  EXPECT_EQ(opened, GetParam().opened) << opened.GetDescription().CStr();
  EXPECT_EQ(mOpened != nullptr, GetParam().opened == KrResult::Code::OK);
}

INSTANTIATE_TEST_SUITE_P(Lengths, OnANetworkStatedLength, testing::ValuesIn(kCases),
                         [](const auto& aInfo) { return aInfo.param.name; });

} // namespace

#include "gigevision/gvcppacket.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>

namespace {

using namespace krtransport;
using testing::HasSubstr;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint16_t kRequestID = 0x1234;
constexpr std::size_t kPayload = 8;

Bytes MakeAcknowledge(GvcpMessage aMessage, const Bytes& aPayload) {
  const auto message = static_cast<std::uint16_t>(aMessage);
  Bytes bytes = {0,
                 0,
                 static_cast<std::uint8_t>(message >> 8),
                 static_cast<std::uint8_t>(message),
                 static_cast<std::uint8_t>(aPayload.size() >> 8),
                 static_cast<std::uint8_t>(aPayload.size()),
                 0x12,
                 0x34};
  bytes.insert(bytes.end(), aPayload.begin(), aPayload.end());
  return bytes;
}

void PutText(Bytes& aBytes, std::size_t aOffset, const std::string& aText) {
  std::copy(aText.begin(), aText.end(), aBytes.begin() + static_cast<std::ptrdiff_t>(aOffset));
}

void PutBytes(Bytes& aBytes, std::size_t aOffset, const Bytes& aValue) {
  std::copy(aValue.begin(), aValue.end(), aBytes.begin() + static_cast<std::ptrdiff_t>(aOffset));
}

Bytes MakeDiscoveryAcknowledge() {
  Bytes bytes = MakeAcknowledge(GvcpMessage::DiscoveryAcknowledge, Bytes(248));
  PutBytes(bytes, kPayload + 0x00, {0x00, 0x02, 0x00, 0x01});
  PutBytes(bytes, kPayload + 0x04, {0xB0, 0x00, 0x00, 0x01});
  PutBytes(bytes, kPayload + 0x0A, {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E});
  PutBytes(bytes, kPayload + 0x10, {0x80, 0x00, 0x00, 0x07});
  PutBytes(bytes, kPayload + 0x14, {0x40, 0x00, 0x00, 0x06});
  PutBytes(bytes, kPayload + 0x24, {192, 168, 1, 20});
  PutBytes(bytes, kPayload + 0x34, {255, 255, 255, 0});
  PutBytes(bytes, kPayload + 0x44, {192, 168, 1, 1});
  PutText(bytes, kPayload + 0x48, "Maker");
  PutText(bytes, kPayload + 0x68, "Model");
  PutText(bytes, kPayload + 0x88, "1.2.3");
  PutText(bytes, kPayload + 0xA8, "Information");
  PutText(bytes, kPayload + 0xD8, "SN42");
  PutText(bytes, kPayload + 0xE8, "Left eye");
  return bytes;
}

TEST(GvcpCommand, Discovery_IsAHeaderThatAllowsBroadcastAnswers) {
  EXPECT_EQ(MakeDiscoveryCommand(kRequestID), (Bytes{0x42, 0x11, 0x00, 0x02, 0x00, 0x00, 0x12, 0x34}));
}

TEST(GvcpCommand, ReadRegister_HoldsTheAddress) {
  EXPECT_EQ(MakeReadRegisterCommand(kRequestID, 0x0A00),
            (Bytes{0x42, 0x01, 0x00, 0x80, 0x00, 0x04, 0x12, 0x34, 0x00, 0x00, 0x0A, 0x00}));
}

TEST(GvcpCommand, ReadMemory_HoldsAddressAndCount) {
  EXPECT_EQ(MakeReadMemoryCommand(kRequestID, 0x12345678, 0x0200),
            (Bytes{0x42, 0x01, 0x00, 0x84, 0x00, 0x08, 0x12, 0x34, 0x12, 0x34, 0x56, 0x78, 0x00, 0x00, 0x02, 0x00}));
}

TEST(GvcpCommand, ForceIP_HoldsMacAndAddressesInTheirPlaces) {
  const Bytes command = MakeForceIPCommand(kRequestID, {1, 2, 3, 4, 5, 6}, 0x0A000007, 0xFF000000, 0x0A000001);

  Bytes expected = {0x42, 0x11, 0x00, 0x04, 0x00, 0x38, 0x12, 0x34};
  expected.resize(64);
  PutBytes(expected, kPayload + 2, {1, 2, 3, 4, 5, 6});
  PutBytes(expected, kPayload + 20, {10, 0, 0, 7});
  PutBytes(expected, kPayload + 36, {255, 0, 0, 0});
  PutBytes(expected, kPayload + 52, {10, 0, 0, 1});
  EXPECT_EQ(command, expected);
}

TEST(GvcpDiscovery, WholeAcknowledge_GivesEveryField) {
  DiscoveryPayload payload;

  const KrResult result = ParseDiscoveryAcknowledge(MakeDiscoveryAcknowledge(), kRequestID, payload);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(payload.version, 0x00020001u);
  EXPECT_EQ(payload.deviceMode, 0xB0000001u);
  EXPECT_EQ(GetDeviceClass(payload.deviceMode), 3u);
  EXPECT_EQ(krsystem::FormatMAC(payload.mac), "00:1a:2b:3c:4d:5e");
  EXPECT_EQ(payload.ipConfigOptions, 7u);
  EXPECT_EQ(payload.ipConfigCurrent, 6u);
  EXPECT_EQ(payload.address, 0xC0A80114u);
  EXPECT_EQ(payload.mask, 0xFFFFFF00u);
  EXPECT_EQ(payload.gateway, 0xC0A80101u);
  EXPECT_EQ(payload.manufacturer, "Maker");
  EXPECT_EQ(payload.model, "Model");
  EXPECT_EQ(payload.deviceVersion, "1.2.3");
  EXPECT_EQ(payload.manufacturerInfo, "Information");
  EXPECT_EQ(payload.serialNumber, "SN42");
  EXPECT_EQ(payload.userDefinedName, "Left eye");
}

TEST(GvcpDiscovery, EveryTextUnterminated_EndsWithItsField) {
  Bytes bytes = MakeDiscoveryAcknowledge();
  std::fill(bytes.begin() + kPayload + 0x48, bytes.end(), std::uint8_t{'x'});
  DiscoveryPayload payload;

  ASSERT_TRUE(ParseDiscoveryAcknowledge(bytes, kRequestID, payload).IsOK());

  EXPECT_EQ(payload.manufacturer, std::string(32, 'x'));
  EXPECT_EQ(payload.model, std::string(32, 'x'));
  EXPECT_EQ(payload.deviceVersion, std::string(32, 'x'));
  EXPECT_EQ(payload.manufacturerInfo, std::string(48, 'x'));
  EXPECT_EQ(payload.serialNumber, std::string(16, 'x'));
  EXPECT_EQ(payload.userDefinedName, std::string(16, 'x'));
}

struct RefusedRow {
  const char* name;
  std::function<void(Bytes&)> damage;
  KrResult::Code code;
  const char* reason;
};

const RefusedRow kRefused[] = {
    {"Empty", [](Bytes& aBytes) { aBytes.clear(); }, KrResult::Code::BadData, "too few for a header"},
    {"ThreeBytes", [](Bytes& aBytes) { aBytes.resize(3); }, KrResult::Code::BadData, "too few for a header"},
    {"HeaderAlone", [](Bytes& aBytes) { aBytes.resize(8); }, KrResult::Code::BadData, "states 248 bytes"},
    {"OneByteShort", [](Bytes& aBytes) { aBytes.pop_back(); }, KrResult::Code::BadData, "states 248 bytes"},
    {"OneByteLong", [](Bytes& aBytes) { aBytes.push_back(0); }, KrResult::Code::BadData, "249 came"},
    {"TenThousandBytes", [](Bytes& aBytes) { aBytes.resize(10000); }, KrResult::Code::BadData, "9992 came"},
    {"ConsistentButShort",
     [](Bytes& aBytes) {
       aBytes.resize(8 + 244);
       aBytes[5] = 244;
     },
     KrResult::Code::BadData, "244 bytes instead of 248"},
    {"SomebodyElsesRequest", [](Bytes& aBytes) { aBytes[7] = 0x35; }, KrResult::Code::BadData, "not 4660"},
    {"AnotherMessage", [](Bytes& aBytes) { aBytes[3] = 0x81; }, KrResult::Code::BadData, "0x81 came instead of 0x3"},
    {"AccessDenied",
     [](Bytes& aBytes) {
       aBytes[0] = 0x80;
       aBytes[1] = 0x06;
     },
     KrResult::Code::AccessDenied, "access denied (0x8006)"},
    {"Busy",
     [](Bytes& aBytes) {
       aBytes[0] = 0x80;
       aBytes[1] = 0x07;
     },
     KrResult::Code::ProtocolError, "busy (0x8007)"},
    {"UnknownStatus",
     [](Bytes& aBytes) {
       aBytes[0] = 0x9A;
       aBytes[1] = 0xBC;
     },
     KrResult::Code::ProtocolError, "status 0x9abc"},
    {"RefusedWithoutPayload",
     [](Bytes& aBytes) {
       aBytes.resize(8);
       aBytes[0] = 0x80;
       aBytes[1] = 0x01;
       aBytes[5] = 0;
     },
     KrResult::Code::ProtocolError, "not implemented"},
};

class GvcpRefused : public testing::TestWithParam<RefusedRow> {};

TEST_P(GvcpRefused, Discovery_DamagedAcknowledge_IsRefusedWithItsReasonAndLeavesThePayload) {
  Bytes bytes = MakeDiscoveryAcknowledge();
  GetParam().damage(bytes);
  DiscoveryPayload payload;
  payload.model = "before";

  const KrResult result = ParseDiscoveryAcknowledge(bytes, kRequestID, payload);

  EXPECT_EQ(result, GetParam().code);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(GetParam().reason));
  EXPECT_EQ(payload.model, "before");
}

INSTANTIATE_TEST_SUITE_P(Damages, GvcpRefused, testing::ValuesIn(kRefused),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST(GvcpForceIP, Acknowledge_WithoutPayload_Succeeds) {
  const Bytes acknowledge = MakeAcknowledge(GvcpMessage::ForceIPAcknowledge, {});

  EXPECT_TRUE(ParseForceIPAcknowledge(acknowledge, kRequestID).IsOK());
  EXPECT_EQ(ParseForceIPAcknowledge(acknowledge, kRequestID + 1), KrResult::Code::BadData);
}

TEST(GvcpReadRegister, Acknowledge_GivesTheValue) {
  std::uint32_t value = 0;

  const KrResult result = ParseReadRegisterAcknowledge(
      MakeAcknowledge(GvcpMessage::ReadRegisterAcknowledge, {0x01, 0x02, 0x03, 0x04}), kRequestID, value);

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(value, 0x01020304u);
}

TEST(GvcpReadRegister, AcknowledgeOfTwoRegisters_IsRefused) {
  std::uint32_t value = 7;

  const KrResult result =
      ParseReadRegisterAcknowledge(MakeAcknowledge(GvcpMessage::ReadRegisterAcknowledge, Bytes(8)), kRequestID, value);

  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_EQ(value, 7u);
}

TEST(GvcpReadMemory, Acknowledge_GivesTheBytes) {
  std::array<std::uint8_t, 4> data{};

  const KrResult result = ParseReadMemoryAcknowledge(
      MakeAcknowledge(GvcpMessage::ReadMemoryAcknowledge, {0, 0, 0, 0x48, 'A', 'r', 'a', 'v'}), kRequestID, 0x48, data);

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(std::string(data.begin(), data.end()), "Arav");
}

TEST(GvcpReadMemory, AcknowledgeOfAnotherPlace_IsRefused) {
  std::array<std::uint8_t, 4> data{};
  const Bytes otherAddress = MakeAcknowledge(GvcpMessage::ReadMemoryAcknowledge, {0, 0, 0, 0x4C, 'A', 'r', 'a', 'v'});
  const Bytes longer = MakeAcknowledge(GvcpMessage::ReadMemoryAcknowledge, {0, 0, 0, 0x48, 'A', 'r', 'a', 'v', 'i'});

  EXPECT_EQ(ParseReadMemoryAcknowledge(otherAddress, kRequestID, 0x48, data), KrResult::Code::BadData);
  EXPECT_EQ(ParseReadMemoryAcknowledge(longer, kRequestID, 0x48, data), KrResult::Code::BadData);
}

TEST(GvcpPending, Acknowledge_GivesTheMillisecondsAskedFor) {
  std::uint16_t milliseconds = 0;

  const KrResult result = ParsePendingAcknowledge(
      MakeAcknowledge(GvcpMessage::PendingAcknowledge, {0x00, 0x00, 0x03, 0xE8}), kRequestID, milliseconds);

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(milliseconds, 1000u);
}

} // namespace

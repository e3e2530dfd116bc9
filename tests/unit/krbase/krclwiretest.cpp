#include "krbase/krclwire.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using Packet = std::vector<std::uint8_t>;
using testing::ElementsAre;

struct Row {
  const char* what;
  Packet packet;
  bool fromProgram;
  bool fromBridge;
};

Packet MakeData(std::size_t aCount) {
  Packet packet = {2, 0, 0, 0, 0};
  packet.resize(5 + aCount, 'x');
  return packet;
}

Packet MakeWelcome(std::size_t aNameSize) {
  Packet packet = {1, 0, 0, 0, 0};
  packet.resize(5 + aNameSize, 'n');
  return packet;
}

TEST(CLWire, EachSide_MaySayItsOwnMessagesWithinTheirLimits) {
  const Row rows[] = {
      {"nothing", {}, false, false},
      {"half a header", {2, 0, 0, 0}, false, false},
      {"a welcome without a name", MakeWelcome(0), false, true},
      {"the longest name", MakeWelcome(kKrCLMostName), false, true},
      {"a name too long", MakeWelcome(kKrCLMostName + 1), false, false},
      {"a welcome that is none", {1, 4, 0, 0, 0}, false, false},
      {"a welcome beyond a byte", {1, 0, 1, 0, 0}, false, false},
      {"no bytes of the line", MakeData(0), false, false},
      {"one byte of the line", MakeData(1), true, true},
      {"most bytes of the line", MakeData(kKrCLMostBytes), true, true},
      {"too many bytes of the line", MakeData(kKrCLMostBytes + 1), false, false},
      {"bytes with a value", {2, 0, 0, 0, 1, 'x'}, false, false},
      {"a speed to set", {3, 0x80, 0, 0, 0}, true, false},
      {"a speed beyond those known", {3, 0, 1, 0, 0}, false, false},
      {"a speed with bytes behind", {3, 1, 0, 0, 0, 0}, false, false},
      {"a speed that was set", {4, 3, 0, 0, 0}, false, true},
      {"speeds", {5, 0xFF, 0, 0, 0}, false, true},
      {"speeds beyond those known", {5, 0, 0, 0, 0x40}, false, false},
      {"the kind below the first", {0, 0, 0, 0, 0}, false, false},
      {"a flush", {6, 0, 0, 0, 0}, true, false},
      {"a flush with a value", {6, 1, 0, 0, 0}, false, false},
      {"a flush with bytes behind", {6, 0, 0, 0, 0, 'x'}, false, false},
      {"a flush that was done", {7, 0, 0, 0, 0}, false, true},
      {"a flush that was done with bytes behind", {7, 0, 0, 0, 0, 'x'}, false, false},
      {"the kind beyond the last", {8, 0, 0, 0, 0}, false, false},
  };

  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(KrParseCLMessage(row.packet, KrCLSide::Program).has_value(), row.fromProgram);
    EXPECT_EQ(KrParseCLMessage(row.packet, KrCLSide::Bridge).has_value(), row.fromBridge);
  }
}

TEST(CLWire, MadeMessage_IsReadAsItWas) {
  const Packet packet = KrMakeCLMessage({KrCLMessageKind::Welcome, 1, "Name"});

  const auto message = KrParseCLMessage(packet, KrCLSide::Bridge);

  EXPECT_THAT(packet, ElementsAre(1, 1, 0, 0, 0, 'N', 'a', 'm', 'e'));
  ASSERT_TRUE(message.has_value());
  EXPECT_EQ(message->kind, KrCLMessageKind::Welcome);
  EXPECT_EQ(message->value, 1U);
  EXPECT_EQ(message->bytes, "Name");
}

TEST(CLWire, Values_HaveTheirLeastByteFirst) {
  EXPECT_THAT(KrMakeCLMessage({KrCLMessageKind::Speeds, 0x04030201}), ElementsAre(5, 1, 2, 3, 4));
}

TEST(CLWire, Speeds_HaveTheBitsOfTheStandard) {
  const struct {
    std::uint32_t baudRate;
    std::uint32_t bit;
  } rows[] = {{9600, 0x01},   {19200, 0x02},  {38400, 0x04},  {57600, 0x08},
              {115200, 0x10}, {230400, 0x20}, {460800, 0x40}, {921600, 0x80}};

  for (const auto& row : rows) {
    EXPECT_EQ(KrGetCLSpeedBit(row.baudRate), row.bit);
    EXPECT_EQ(KrGetCLSpeed(row.bit), row.baudRate);
  }
  for (const std::uint32_t baudRate : {0U, 14400U, 28800U, 1'000'000U})
    EXPECT_EQ(KrGetCLSpeedBit(baudRate), 0U) << baudRate;
  for (const std::uint32_t bit : {0U, 3U, 0x100U, 0x40000000U, 0xFFFFFFFFU})
    EXPECT_EQ(KrGetCLSpeed(bit), 0U) << bit;
}

} // namespace

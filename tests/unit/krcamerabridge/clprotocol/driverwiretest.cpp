#include "clprotocol/driverwire.h"

#include <gtest/gtest.h>

namespace krcamerabridge {
namespace {

std::vector<std::uint8_t> MakeHeader(WireKind aKind, std::uint32_t aLength, std::uint32_t aSize) {
  std::vector<std::uint8_t> bytes = MakeWireBytes({.kind = aKind, .length = aLength});
  for (std::size_t i = 0; i < 4; ++i)
    bytes[kWireHeader - 4 + i] = static_cast<std::uint8_t>(aSize >> (8 * i));
  return bytes;
}

TEST(DriverWire, AFrame_ComesAsItWasMadeInPiecesOfAnySize) {
  const WireFrame frame{WireKind::LineAnswer, -10004, 0x80000001, 0, 500, 0x123456789ABCDEF0, {1, 2, 3}};
  std::vector<std::uint8_t> bytes = MakeWireBytes(frame);
  bytes.insert(bytes.end(), bytes.begin(), bytes.end());
  WireReader reader(WireSide::Application);
  std::vector<WireFrame> frames;

  for (const std::uint8_t byte : bytes) {
    reader.Add({&byte, 1});
    while (const std::optional<WireFrame> taken = reader.Take())
      frames.push_back(*taken);
  }

  ASSERT_EQ(frames.size(), 2u);
  EXPECT_EQ(frames[1].kind, frame.kind);
  EXPECT_EQ(frames[1].code, frame.code);
  EXPECT_EQ(frames[1].cookie, frame.cookie);
  EXPECT_EQ(frames[1].timeoutMs, frame.timeoutMs);
  EXPECT_EQ(frames[1].address, frame.address);
  EXPECT_EQ(frames[1].bytes, frame.bytes);
}

TEST(DriverWire, WhatASideMayNotSend_BreaksIt) {
  struct Row {
    const char* name;
    WireSide from;
    std::vector<std::uint8_t> bytes;
  };
  const Row kRows[] = {
      {"an unknown kind", WireSide::Driver, MakeHeader(static_cast<WireKind>(0), 0, 0)},
      {"the other side's", WireSide::Driver, MakeHeader(WireKind::Load, 0, 0)},
      {"an answer of the application", WireSide::Application, MakeHeader(WireKind::Answer, 0, 0)},
      {"too long a text", WireSide::Driver, MakeHeader(WireKind::Log, 0, kWireMaxText + 1)},
      {"too long an answer", WireSide::Driver, MakeHeader(WireKind::Answer, 0, UINT32_MAX)},
      {"a description of a byte too much", WireSide::Driver, MakeHeader(WireKind::Answer, 0, (64U << 20U) + 2)},
      {"too much of the line", WireSide::Driver, MakeHeader(WireKind::LineRead, kWireMaxAccess + 1, 0)},
      {"bytes where there are none", WireSide::Application, MakeHeader(WireKind::Disconnect, 0, 1)},
  };

  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    WireReader reader(row.from);
    reader.Add(row.bytes);

    EXPECT_FALSE(reader.Take());
    EXPECT_TRUE(reader.IsBroken());

    reader.Add(MakeWireBytes({.kind = row.from == WireSide::Driver ? WireKind::LineGetRates : WireKind::Close}));
    EXPECT_FALSE(reader.Take());
  }
}

} // namespace
} // namespace krcamerabridge

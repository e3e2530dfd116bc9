#include "camerafile/checksum.h"

#include <gtest/gtest.h>

#include <ostream>

namespace krcamerabridge {
namespace {

struct Row {
  const char* name;
  ChecksumKind kind;
  std::uint16_t digits; ///< Of "123456789".
  std::uint16_t bytes;  ///< Of FF 80 01.
};

void PrintTo(const Row& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

// The first column is the check value that tables of checksums give, the second is that of another program.
constexpr Row kRows[] = {
    {"Sum8", ChecksumKind::Sum8, 0xDD, 0x80},
    {"TwosComplement8", ChecksumKind::TwosComplement8, 0x23, 0x80},
    {"OnesComplement8", ChecksumKind::OnesComplement8, 0x22, 0x7F},
    {"Xor8", ChecksumKind::Xor8, 0x31, 0x7E},
    {"Sum16", ChecksumKind::Sum16, 0x01DD, 0x0180},
    {"Crc8", ChecksumKind::Crc8, 0xF4, 0x9A},
    {"Crc16Ccitt", ChecksumKind::Crc16Ccitt, 0x29B1, 0x0846},
    {"Crc16Xmodem", ChecksumKind::Crc16Xmodem, 0x31C3, 0xC4DA},
    {"Crc16Modbus", ChecksumKind::Crc16Modbus, 0x4B37, 0xF0E1},
};

class Checksum : public testing::TestWithParam<Row> {};

TEST_P(Checksum, OfDigits_IsTheKnownCheckValue) {
  EXPECT_EQ(ComputeChecksum(GetParam().kind, "123456789"), GetParam().digits);
}

TEST_P(Checksum, OfBytesWithTheHighestBit_IsThatOfAnotherProgram) {
  EXPECT_EQ(ComputeChecksum(GetParam().kind, "\xFF\x80\x01"), GetParam().bytes);
}

TEST_P(Checksum, Width_HoldsTheValues) {
  EXPECT_EQ(IsWideChecksum(GetParam().kind), GetParam().digits > 0xFF);
}

INSTANTIATE_TEST_SUITE_P(All, Checksum, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<Row>& aInfo) { return aInfo.param.name; });

TEST(ChecksumOfTwosComplement, WithItTheSumIsZero) {
  const std::string_view bytes("\x31\x32\x33\x9A\x10", 5);
  const std::uint16_t check = ComputeChecksum(ChecksumKind::TwosComplement8, bytes);

  EXPECT_EQ(check, 0xC0); // 0x31 + 0x32 + 0x33 + 0x9A + 0x10 is 0x140.
}

} // namespace
} // namespace krcamerabridge

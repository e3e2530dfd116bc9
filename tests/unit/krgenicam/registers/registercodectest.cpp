#include "nodes/registercodec.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <vector>

using testing::ElementsAre;
using namespace krgenicam;

namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

} // namespace

TEST(RegisterCodec, Unsigned_OfEachLength_ComesBackInBothByteOrders) {
  constexpr std::uint64_t kPattern = 0xF1E2D3C4B5A69788;
  for (std::size_t length = 1; length <= 8; ++length) {
    for (const bool isBigEndian : {false, true}) {
      std::vector<std::uint8_t> bytes(length);

      StoreUnsigned(kPattern, bytes, isBigEndian);

      const std::uint64_t expected = length == 8 ? kPattern : kPattern & ((std::uint64_t{1} << length * 8) - 1);
      EXPECT_EQ(LoadUnsigned(bytes, isBigEndian), expected) << length << (isBigEndian ? " big" : " little");
    }
  }
}

TEST(RegisterCodec, Unsigned_OfThreeBytes_LiesInTheOrderAskedFor) {
  std::vector<std::uint8_t> little(3);
  std::vector<std::uint8_t> big(3);

  StoreUnsigned(0x010203, little, false);
  StoreUnsigned(0x010203, big, true);

  EXPECT_THAT(little, ElementsAre(3, 2, 1));
  EXPECT_THAT(big, ElementsAre(1, 2, 3));
}

TEST(RegisterCodec, Bits_AreExtractedWithTheSignAskedFor) {
  struct Row {
    const char* name;
    std::uint64_t word;
    BitRange bits;
    bool isSigned;
    std::int64_t expected;
  };
  const Row rows[] = {
      {"one bit that is set", 0x8, {3, 1}, false, 1},
      {"one bit that is not set", 0x7, {3, 1}, false, 0},
      {"one bit with sign", 0x8, {3, 1}, true, -1},
      {"negative nibble", 0xF0, {4, 4}, true, -1},
      {"positive nibble", 0x70, {4, 4}, true, 7},
      {"high nibble without sign", 0xF0, {4, 4}, false, 15},
      {"all bits without sign keep their pattern", ~std::uint64_t{0}, {0, 64}, false, -1},
      {"all bits with sign", std::uint64_t{1} << 63, {0, 64}, true, kSmallest},
      {"63 bits without sign", ~std::uint64_t{0}, {0, 63}, false, kLargest},
  };
  for (const Row& row : rows)
    EXPECT_EQ(ExtractBits(row.word, row.bits, row.isSigned), row.expected) << row.name;
}

TEST(RegisterCodec, Bits_ThatAreReplaced_LeaveTheOthers) {
  EXPECT_EQ(ReplaceBits(0xFFFF, {4, 8}, 0), 0xF00FU);
  EXPECT_EQ(ReplaceBits(0, {4, 8}, -1), 0x0FF0U);
  EXPECT_EQ(ReplaceBits(0, {0, 64}, -1), ~std::uint64_t{0});
  EXPECT_EQ(ReplaceBits(0, {63, 1}, 1), std::uint64_t{1} << 63);
  EXPECT_EQ(ReplaceBits(0, {0, 4}, 0x123), 0x3U);
}

TEST(RegisterCodec, Limits_AreThoseOfBitsAndSign) {
  struct Row {
    unsigned bitCount;
    bool isSigned;
    std::int64_t smallest;
    std::int64_t largest;
  };
  const Row rows[] = {
      {1, false, 0, 1},           {1, true, -1, 0},         {8, false, 0, 255},       {8, true, -128, 127},
      {32, false, 0, 0xFFFFFFFF}, {63, false, 0, kLargest}, {64, false, 0, kLargest}, {64, true, kSmallest, kLargest},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(GetSmallest(row.bitCount, row.isSigned), row.smallest) << row.bitCount << row.isSigned;
    EXPECT_EQ(GetLargest(row.bitCount, row.isSigned), row.largest) << row.bitCount << row.isSigned;
  }
}

TEST(RegisterCodec, Floats_HaveTheBytesOfIeee754) {
  std::vector<std::uint8_t> four(4);
  std::vector<std::uint8_t> eight(8);

  StoreFloat(-1.5, four, true);
  StoreFloat(-1.5, eight, false);

  EXPECT_THAT(four, ElementsAre(0xBF, 0xC0, 0, 0));
  EXPECT_THAT(eight, ElementsAre(0, 0, 0, 0, 0, 0, 0xF8, 0xBF));
  EXPECT_EQ(LoadFloat(four, true), -1.5);
  EXPECT_EQ(LoadFloat(eight, false), -1.5);
}

TEST(RegisterCodec, Floats_ThatAreNoNumbers_ComeBackAsThat) {
  std::vector<std::uint8_t> bytes(4);

  StoreFloat(std::numeric_limits<double>::quiet_NaN(), bytes, false);

  EXPECT_TRUE(std::isnan(LoadFloat(bytes, false)));
}

TEST(RegisterCodec, Words_AreTurnedRound_AndWhatIsLeftOverStays) {
  std::vector<std::uint8_t> bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};

  SwapWords(bytes);

  EXPECT_THAT(bytes, ElementsAre(4, 3, 2, 1, 8, 7, 6, 5, 9, 10));
}

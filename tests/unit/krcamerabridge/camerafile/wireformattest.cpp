#include "camerafile/wireformat.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>

namespace krcamerabridge {
namespace {

using namespace std::string_literals;

struct Row {
  const char* name;
  const char* word;
  WireValue value;
  std::string bytes;
};

void PrintTo(const Row& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

WireValue Whole(std::int64_t aNumber) {
  return aNumber;
}

const Row kBothWays[] = {
    {"Decimal", "d", Whole(-12), "-12"},
    {"DecimalWithZeros", "d5", Whole(42), "00042"},
    {"NegativeDecimalWithZeros", "d5", Whole(-42), "-0042"},
    {"Hex", "hex", Whole(0x1AF), "1AF"},
    {"HexWithZeros", "hex4", Whole(0x1AF), "01AF"},
    {"LowerHex", "lowerhex4", Whole(0x1AF), "01af"},
    {"Real", "f", 1.5, "1.5"},
    {"RealWithDecimals", "f2", 1.5, "1.50"},
    {"Text", "text", "left eye"s, "left eye"},
    {"TextOfASize", "text8", "left"s, "left    "},
    {"RawText", "raw", " left\t"s, " left\t"},
    {"RawTextOfASize", "raw8", " left   "s, " left   "},
    {"Byte", "u8", Whole(200), "\xC8"s},
    {"Unsigned16BigEndian", "u16be", Whole(0x1234), "\x12\x34"s},
    {"Unsigned16LittleEndian", "u16le", Whole(0x1234), "\x34\x12"s},
    {"Unsigned24BigEndian", "u24be", Whole(0x123456), "\x12\x34\x56"s},
    {"Unsigned24LittleEndian", "u24le", Whole(0x123456), "\x56\x34\x12"s},
    {"Unsigned32BigEndian", "u32be", Whole(0xFEDCBA98), "\xFE\xDC\xBA\x98"s},
    {"Unsigned32LittleEndian", "u32le", Whole(0xFEDCBA98), "\x98\xBA\xDC\xFE"s},
    {"SignedByte", "i8", Whole(-2), "\xFE"s},
    {"Signed16BigEndian", "i16be", Whole(-2), "\xFF\xFE"s},
    {"Signed16LittleEndian", "i16le", Whole(-300), "\xD4\xFE"s},
    {"Signed32BigEndian", "i32be", Whole(-2), "\xFF\xFF\xFF\xFE"s},
    {"Signed32LittleEndian", "i32le", Whole(0x7FFFFFFF), "\xFF\xFF\xFF\x7F"s},
    {"Signed64BigEndian", "i64be", Whole(std::numeric_limits<std::int64_t>::min()), "\x80\0\0\0\0\0\0\0"s},
    {"Signed64LittleEndian", "i64le", Whole(1), "\x01\0\0\0\0\0\0\0"s},
    {"Float32BigEndian", "f32be", 1.0, "\x3F\x80\0\0"s},
    {"Float32LittleEndian", "f32le", -2.0, "\0\0\0\xC0"s},
    {"Float64BigEndian", "f64be", 1.0, "\x3F\xF0\0\0\0\0\0\0"s},
    {"Float64LittleEndian", "f64le", 0.5, "\0\0\0\0\0\0\xE0\x3F"s},
};

class WireFormatBothWays : public testing::TestWithParam<Row> {};

TEST_P(WireFormatBothWays, IsWrittenAndRead) {
  const Row& row = GetParam();
  const auto format = ParseWireFormat(row.word);
  ASSERT_TRUE(format);

  EXPECT_EQ(EncodeWire(*format, row.value), row.bytes);
  EXPECT_EQ(DecodeWire(*format, row.bytes), row.value);
}

INSTANTIATE_TEST_SUITE_P(All, WireFormatBothWays, testing::ValuesIn(kBothWays),
                         [](const testing::TestParamInfo<Row>& aInfo) { return aInfo.param.name; });

TEST(WireFormat, WordsThatAreNone_AreRefused) {
  for (const char* const word :
       {"", "x", "u16", "u8be", "d0", "d19", "hex17", "hex-1", "f16", "text65", "raw65", "u48be", "hex4x"})
    EXPECT_FALSE(ParseWireFormat(word)) << word;
}

TEST(WireFormat, ValuesThatDoNotFit_AreRefused) {
  const std::pair<const char*, WireValue> rows[] = {
      {"u8", Whole(256)},
      {"u8", Whole(-1)},
      {"i8", Whole(128)},
      {"i8", Whole(-129)},
      {"hex2", Whole(0x100)},
      {"hex", Whole(-1)},
      {"d3", Whole(1000)},
      {"d3", Whole(-100)},
      {"text4", "12345"s},
      {"u16be", "1"s},
      {"f32be", 1e300},
      {"f", "1"s},
      {"u32be", Whole(1LL << 32)},
      {"d", 1e30},
      {"f2", std::numeric_limits<double>::infinity()},
      {"text", Whole(1)},
  };
  for (const auto& [word, value] : rows)
    EXPECT_FALSE(EncodeWire(ParseWireFormat(word).value(), value)) << word;
}

TEST(WireFormat, BytesThatAreNoValue_AreRefused) {
  const std::pair<const char*, std::string> rows[] = {
      {"d", ""},
      {"d", "12x"},
      {"d", "1 2"},
      {"d", "--1"},
      {"d", "+-1"},
      {"d", "99999999999999999999"},
      {"hex", "G"},
      {"hex", "-1"},
      {"f", "1,5"},
      {"f", "nan"},
      {"f", "inf"},
      {"u16be", "\x01"},
      {"f32be", "\x7F\x80\0\0"s},
  };
  for (const auto& [word, bytes] : rows)
    EXPECT_FALSE(DecodeWire(ParseWireFormat(word).value(), bytes)) << word << ' ' << bytes;
}

TEST(WireFormat, WhatCamerasAddToNumbers_IsPassedOver) {
  const std::pair<const char*, std::string> rows[] = {
      {"d", " 12 "}, {"d", "+12"}, {"d", "0012"}, {"hex", "0x0C"}, {"hex", "c"}, {"hex4", "000c"},
  };
  for (const auto& [word, bytes] : rows)
    EXPECT_EQ(DecodeWire(ParseWireFormat(word).value(), bytes), WireValue(Whole(12))) << word << ' ' << bytes;
  EXPECT_EQ(DecodeWire(ParseWireFormat("f").value(), " +1.50 "), WireValue(1.5));
  EXPECT_EQ(DecodeWire(ParseWireFormat("text8").value(), "left\0\0\0\0"s), WireValue("left"s));
}

TEST(WireFormat, BlanksAroundTexts_CountForRawOnesAlone) {
  EXPECT_EQ(DecodeWire(ParseWireFormat("text").value(), " \tleft eye "), WireValue("left eye"s));
  EXPECT_EQ(DecodeWire(ParseWireFormat("text8").value(), " left   "), WireValue("left"s));
  EXPECT_EQ(DecodeWire(ParseWireFormat("raw").value(), " \tleft eye "), WireValue(" \tleft eye "s));
  EXPECT_EQ(DecodeWire(ParseWireFormat("raw8").value(), " left \0\0"s), WireValue(" left "s));
  EXPECT_EQ(EncodeWire(ParseWireFormat("raw8").value(), " left"s), " left   ");
}

TEST(WireFormat, RealNumbersForWholeOnes_AreRounded) {
  EXPECT_EQ(EncodeWire(ParseWireFormat("d").value(), 11.6), "12");
  EXPECT_EQ(EncodeWire(ParseWireFormat("u8").value(), 255.4), "\xFF");
  EXPECT_FALSE(EncodeWire(ParseWireFormat("u8").value(), 255.6));
}

} // namespace
} // namespace krcamerabridge

#include "description/lexical.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace krgenicam {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

TEST(Lexical_, Integers_AreReadAsTheyAreWritten) {
  const struct {
    const char* text;
    std::optional<std::int64_t> value;
  } rows[] = {
      {"0", 0},
      {"42", 42},
      {" 42\n", 42},
      {"+5", 5},
      {"-7", -7},
      {"0010", 10},
      {"0x1F", 31},
      {"0XfF", 255},
      {"0x0000000000000000001", 1},
      {"-0x10", -16},
      {"0xFFFFFFFFFFFFFFFF", -1},
      {"18446744073709551615", -1},
      {"9223372036854775807", kHighest},
      {"-9223372036854775808", kLowest},
      {"-9223372036854775809", std::nullopt},
      {"18446744073709551616", std::nullopt},
      {"0x10000000000000000", std::nullopt},
      {"5.0", 5},
      {"-1e3", -1000},
      {"5.5", std::nullopt},
      {"1e30", std::nullopt},
      {"1e999", std::nullopt},
      {"", std::nullopt},
      {" ", std::nullopt},
      {"-", std::nullopt},
      {"--5", std::nullopt},
      {"+-5", std::nullopt},
      {"0x", std::nullopt},
      {"0x-5", std::nullopt},
      {"1F", std::nullopt},
      {"5 6", std::nullopt},
      {"five", std::nullopt},
      {"nan", std::nullopt},
      {"inf", std::nullopt},
      {"1e", std::nullopt},
  };

  for (const auto& row : rows)
    EXPECT_EQ(ParseInteger(row.text), row.value) << row.text;
}

TEST(Lexical_, Floats_AreReadAsTheyAreWritten) {
  constexpr double kMax = std::numeric_limits<double>::max();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const struct {
    const char* text;
    std::optional<double> value;
  } rows[] = {
      {"0", 0.0},
      {" 1.5 ", 1.5},
      {"+1.5", 1.5},
      {"-1.5e3", -1500.0},
      {".5", 0.5},
      {"5.", 5.0},
      {"1E-3", 0.001},
      {"0x10", 16.0},
      {"0xFFFFFFFFFFFFFFFF", 18446744073709551615.0},
      {"INF", kInfinity},
      {"-INF", -kInfinity},
      {"1.7976931348623157E+308", kMax},
      {"1.79769313486232E+308", kMax},
      {"-1.79769313486232E+308", -kMax},
      {"4.94065645841247E-324", std::numeric_limits<double>::denorm_min()},
      {"1e-999", 0.0},
      {"", std::nullopt},
      {"1,5", std::nullopt},
      {"--1", std::nullopt},
      {"1.5f", std::nullopt},
      {"0x", std::nullopt},
      {"0x1.8", std::nullopt},
      {"e5", std::nullopt},
  };

  for (const auto& row : rows)
    EXPECT_EQ(ParseFloat(row.text), row.value) << row.text;
  EXPECT_TRUE(std::isnan(ParseFloat("NaN").value_or(0.0)));
}

TEST(Lexical_, Hexadecimals_NeedNoPrefix) {
  const struct {
    const char* text;
    std::optional<std::uint64_t> value;
  } rows[] = {
      {"10", 16},
      {"0x10", 16},
      {" aBcD ", 0xABCD},
      {"FFFFFFFFFFFFFFFF", 0xFFFFFFFFFFFFFFFF},
      {"10000000000000000", std::nullopt},
      {"", std::nullopt},
      {"-1", std::nullopt},
      {"G", std::nullopt},
      {"1 2", std::nullopt},
  };

  for (const auto& row : rows)
    EXPECT_EQ(ParseHex(row.text), row.value) << row.text;
}

TEST(Lexical_, Words_AreReadInAnyCase) {
  const struct {
    const char* text;
    std::optional<bool> value;
  } rows[] = {
      {"Yes", true}, {"No", false}, {" yes ", true},         {"TRUE", true},     {"False", false},
      {"1", true},   {"0", false},  {"maybe", std::nullopt}, {"", std::nullopt}, {"Ye", std::nullopt},
  };

  for (const auto& row : rows)
    EXPECT_EQ(ParseYesNo(row.text), row.value) << row.text;
  constexpr std::string_view kWords[] = {"LittleEndian", "BigEndian"};
  EXPECT_EQ(FindWord(kWords, "bigendian"), 1U);
  EXPECT_EQ(FindWord(kWords, "big"), std::nullopt);
}

TEST(Lexical_, QuotedText_IsCutBehindAWholeCharacterWhereItIsLong) {
  EXPECT_EQ(Quote("short"), "\"short\"");
  EXPECT_EQ(Quote(std::string(60, 'x')), "\"" + std::string(60, 'x') + "\"");
  EXPECT_EQ(Quote(std::string(59, 'x') + "öx"), "\"" + std::string(59, 'x') + "…\"");
}

} // namespace
} // namespace krgenicam

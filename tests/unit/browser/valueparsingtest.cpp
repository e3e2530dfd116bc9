#include "logic/browser/valueparsing.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <random>
#include <string>

namespace krgui {

namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

struct IntegerRow {
  const char* name;
  const char* text;
  std::optional<std::int64_t> expected;
};

const IntegerRow kDecimalRows[] = {
    {"a number", "42", 42},
    {"a negative number", "-42", -42},
    {"a sign", "+42", 42},
    {"blanks before it", " \t42", 42},
    {"a prefix is enough", "42 px", 42},
    {"a point ends it", "42.9", 42},
    {"leading zeros are not octal", "010", 10},
    {"hexadecimal digits end it", "0x1f", 0},
    {"nothing", "", std::nullopt},
    {"blanks", "   ", std::nullopt},
    {"a sign alone", "-", std::nullopt},
    {"no number", "zz", std::nullopt},
    {"the least", "-9223372036854775808", kLeast},
    {"the largest", "9223372036854775807", kMost},
    {"one beyond the largest", "9223372036854775808", kMost},
    {"far beyond the least", "-99999999999999999999999999", kLeast},
    {"digits of another script", "\u0664\u0662", std::nullopt},
};

const IntegerRow kHexadecimalRows[] = {
    {"with a prefix", "0x1f", 31},
    {"without a prefix", "1f", 31},
    {"in capitals", "1F", 31},
    {"a prefix in capitals", "0X1F", 31},
    {"no number", "zz", std::nullopt},
    {"a prefix without a number", "0xzz", std::nullopt},
    {"a prefix alone", "0x", std::nullopt},
    {"nothing", "", std::nullopt},
    {"a prefix behind a blank", " 0x1f", 31},
    {"two prefixes", "0x0x1f", 31},
    {"a unit behind it", "0x10 px", 16},
    {"all bits", "0xFFFFFFFFFFFFFFFF", -1},
    {"the sign's bit alone", "8000000000000000", kLeast},
    {"more than 64 bits", "0x1FFFFFFFFFFFFFFFF", -1},
    {"a negative number", "-1", -1},
    {"decimal digits", "100", 256},
};

struct FloatRow {
  const char* name;
  const char* text;
  double expected;
};

constexpr FloatRow kFloatRows[] = {
    {"a number", "0.5", 0.5},
    {"an exponent", "-1.5e3", -1500},
    {"a prefix is enough", "12.5 ms", 12.5},
    {"a comma ends it", "1,5", 1},
    {"no number", "zz", 0},
    {"nothing", "", 0},
    {"blanks before it", "  7", 7},
    {"a sign alone", "-", 0},
    {"hexadecimal", "0x10", 16},
    {"beyond all numbers", "1e999", std::numeric_limits<double>::infinity()},
    {"infinity", "inf", std::numeric_limits<double>::infinity()},
    {"without digits before the point", ".25", 0.25},
};

struct AddressRow {
  const char* name;
  const char* text;
  std::optional<std::uint32_t> expected;
};

const AddressRow kAddressRows[] = {
    {"an address", "192.168.0.1", 0xC0A80001},
    {"the least", "0.0.0.0", 0},
    {"the largest", "255.255.255.255", 0xFFFFFFFF},
    {"a part beyond 255", "192.168.1.300", std::nullopt},
    {"the first part beyond 255", "256.0.0.1", std::nullopt},
    {"a negative part", "192.168.-1.1", std::nullopt},
    {"three numbers", "192.168.1", std::nullopt},
    {"three numbers and a dot", "192.168.1.", std::nullopt},
    {"five numbers, of which four count", "1.2.3.4.5", 0x01020304},
    {"text behind it", "1.2.3.4 x", 0x01020304},
    {"blanks before the numbers", " 1. 2. 3. 4", 0x01020304},
    {"a blank before a dot", "1 .2.3.4", std::nullopt},
    {"octal parts", "010.010.010.010", 0x08080808},
    {"hexadecimal parts", "0xC0.0xA8.0x0.0x1", 0xC0A80001},
    {"commas", "1,2,3,4", std::nullopt},
    {"nothing", "", std::nullopt},
    {"a part beyond 32 bits that would wrap into the range", "4294967297.0.0.1", std::nullopt},
    {"a part beyond 64 bits", "99999999999999999999.0.0.1", std::nullopt},
    {"a name", "localhost", std::nullopt},
};

// The process in another locale, while it lives: one with a comma for a point where the system has such a one.
class ForeignLocale {
public:
  ForeignLocale() : mPrevious(std::setlocale(LC_ALL, nullptr)) {
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"}) {
      if (std::setlocale(LC_ALL, name)) {
        return;
      }
    }
  }
  ~ForeignLocale() { std::setlocale(LC_ALL, mPrevious.c_str()); }

private:
  const std::string mPrevious;
};

// A text of characters that matter to numbers, the same in each run.
std::string MakeText(std::mt19937& aRandom) {
  constexpr std::string_view kCharacters = "0123456789abfFxX+-. \t";
  std::string text;
  const std::size_t length = aRandom() % 24;
  for (std::size_t i = 0; i < length; ++i) {
    text += kCharacters[aRandom() % kCharacters.size()];
  }
  return text;
}

std::optional<std::int64_t> ScanDecimal(const std::string& aText) {
  long long value = 0;
  return std::sscanf(aText.c_str(), "%lld", &value) == 1 ? std::optional<std::int64_t>(value) : std::nullopt;
}

std::optional<std::int64_t> ScanHexadecimal(const std::string& aText) {
  unsigned long long value = 0;
  return std::sscanf(aText.c_str(), "%llX", &value) == 1 ? std::optional(static_cast<std::int64_t>(value))
                                                         : std::nullopt;
}

} // namespace

TEST(ParseInteger, RowsOfDecimalTexts_GiveTheValueExpected) {
  for (const IntegerRow& row : kDecimalRows) {
    EXPECT_EQ(ParseInteger(row.text, false), row.expected) << row.name;
  }
}

TEST(ParseInteger, RowsOfHexadecimalTexts_GiveTheValueExpected) {
  for (const IntegerRow& row : kHexadecimalRows) {
    EXPECT_EQ(ParseInteger(row.text, true), row.expected) << row.name;
  }
}

TEST(ParseInteger, RandomTexts_AreReadAsTheCLibraryReadsThem) {
  std::mt19937 random(7);
  for (int i = 0; i < 20000; ++i) {
    const std::string text = MakeText(random);
    const std::string withoutPrefix = text.rfind("0x", 0) == 0 ? text.substr(2) : text;

    ASSERT_EQ(ParseInteger(KrString(text), false), ScanDecimal(text)) << text;
    ASSERT_EQ(ParseInteger(KrString(text), true), ScanHexadecimal(withoutPrefix)) << text;
  }
}

TEST(ParseInteger, TextOfAMillionDigits_IsTheLargest) {
  EXPECT_EQ(ParseInteger(KrString(std::string(1000000, '9')), false), kMost);
}

TEST(ParseFloat, RowsOfTexts_GiveTheValueExpected) {
  for (const FloatRow& row : kFloatRows) {
    EXPECT_EQ(ParseFloat(row.text), row.expected) << row.name;
  }
}

TEST(ParseFloat, ProcessInAnotherLocale_StillReadsAPoint) {
  const ForeignLocale locale;

  EXPECT_EQ(ParseFloat("1.5"), 1.5);
  EXPECT_EQ(ParseFloat("1,5"), 1.0);
}

TEST(ParseIPAddress, RowsOfTexts_GiveTheAddressExpected) {
  for (const AddressRow& row : kAddressRows) {
    EXPECT_EQ(ParseIPAddress(row.text), row.expected) << row.name;
  }
}

TEST(ParseIPAddress, AnyNumber_LeavesTheThreadsLocaleAsItWas) {
  const locale_t before = uselocale(nullptr);

  (void)ParseIPAddress("1.2.3.4");
  (void)ParseInteger("7", false);

  EXPECT_EQ(uselocale(nullptr), before);
}

} // namespace krgui

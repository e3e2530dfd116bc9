#include "logic/browser/valuetext.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <locale>
#include <random>
#include <string>

using namespace krgui;

namespace {

constexpr std::int64_t kMin64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax64 = std::numeric_limits<std::int64_t>::max();

// What the C library prints; tests run in the C locale.
std::string PrintFloat(double aValue) {
  char text[64];
  std::snprintf(text, sizeof text, "%g", aValue);
  return text;
}

struct CommaPoint : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

// Numbers as in German in every stream made while it lives.
class GermanNumbers {
public:
  GermanNumbers() : mBefore(std::locale::global(std::locale(std::locale::classic(), new CommaPoint))) {}
  ~GermanNumbers() { std::locale::global(mBefore); }

private:
  std::locale mBefore;
};

} // namespace

TEST(ValueText, MACAddress_IsTheSixLowBytes) {
  struct {
    const char* description;
    std::int64_t value;
    const char* text;
  } constexpr kRows[] = {
      {"bytes of eight", 0x0011223344556677, "22:33:44:55:66:77"},
      {"zero", 0, "00:00:00:00:00:00"},
      {"letters are large and digits padded", 0x0A0B0C0D0EFF, "0A:0B:0C:0D:0E:FF"},
      {"negative", -1, "FF:FF:FF:FF:FF:FF"},
      {"only high bytes", kMin64, "00:00:00:00:00:00"},
  };

  for (const auto& row : kRows)
    EXPECT_EQ(FormatMACAddress(row.value).ToUtf8(), row.text) << row.description;
}

TEST(ValueText, IPAddress_IsTheFourLowBytes) {
  struct {
    const char* description;
    std::int64_t value;
    const char* text;
  } constexpr kRows[] = {
      {"private network", 0xC0A80001, "192.168.0.1"},
      {"zero", 0, "0.0.0.0"},
      {"broadcast", 0xFFFFFFFF, "255.255.255.255"},
      {"negative", -1, "255.255.255.255"},
      {"high bytes do not matter", 0x11223344C0A80001, "192.168.0.1"},
  };

  for (const auto& row : kRows)
    EXPECT_EQ(FormatIPAddress(row.value).ToUtf8(), row.text) << row.description;
}

TEST(ValueText, Integer_IsSignedDecimalOrTwosComplement) {
  struct {
    const char* description;
    std::int64_t value;
    const char* decimal;
    const char* hexadecimal;
  } constexpr kRows[] = {
      {"zero", 0, "0", "0x0"},
      {"one byte", 255, "255", "0xFF"},
      {"negative", -1, "-1", "0xFFFFFFFFFFFFFFFF"},
      {"smallest", kMin64, "-9223372036854775808", "0x8000000000000000"},
      {"largest", kMax64, "9223372036854775807", "0x7FFFFFFFFFFFFFFF"},
      {"all digits", 0x123456789ABCDEF0, "1311768467463790320", "0x123456789ABCDEF0"},
  };

  for (const auto& row : kRows) {
    EXPECT_EQ(FormatInteger(row.value, false).ToUtf8(), row.decimal) << row.description;
    EXPECT_EQ(FormatInteger(row.value, true).ToUtf8(), row.hexadecimal) << row.description;
  }
}

TEST(ValueText, Float_IsAsTheCLibraryPrintsIt) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  struct {
    const char* description;
    double value;
    const char* text;
  } const kRows[] = {
      {"half", 0.5, "0.5"},
      {"whole", 5000, "5000"},
      {"zero", 0, "0"},
      {"negative zero", -0.0, "-0"},
      {"six digits", 123456.7, "123457"},
      {"large", 1234567, "1.23457e+06"},
      {"small", 0.0001, "0.0001"},
      {"smaller", 0.00001, "1e-05"},
      {"zeros at the end go", 1.50000, "1.5"},
      {"infinite", kInfinity, "inf"},
      {"negative infinite", -kInfinity, "-inf"},
      {"no number", std::numeric_limits<double>::quiet_NaN(), "nan"},
      {"smallest", std::numeric_limits<double>::denorm_min(), "4.94066e-324"},
      {"largest", std::numeric_limits<double>::max(), "1.79769e+308"},
  };

  for (const auto& row : kRows) {
    EXPECT_EQ(FormatFloat(row.value).ToUtf8(), row.text) << row.description;
    EXPECT_EQ(PrintFloat(row.value), row.text) << row.description;
  }
}

TEST(ValueText, Float_OfAnyBits_IsAsTheCLibraryPrintsIt) {
  std::mt19937_64 random(1);

  for (int count = 0; count < 100000; ++count) {
    const auto value = std::bit_cast<double>(random());
    ASSERT_EQ(FormatFloat(value).ToUtf8(), PrintFloat(value));
  }
}

TEST(ValueText, Numbers_KnowNoLocale) {
  const GermanNumbers german;

  EXPECT_EQ(FormatFloat(0.5).ToUtf8(), "0.5");
  EXPECT_EQ(FormatFloat(123456).ToUtf8(), "123456");
  EXPECT_EQ(FormatInteger(1234567, false).ToUtf8(), "1234567");
  EXPECT_EQ(FormatInteger(0x1234567, true).ToUtf8(), "0x1234567");
  EXPECT_EQ(FormatIPAddress(0xFFFFFFFF).ToUtf8(), "255.255.255.255");
}

TEST(ValueText, Unit_StandsBehindOneBlankEvenWhenItIsEmpty) {
  EXPECT_EQ(JoinUnit(FormatInteger(255, true), "px"), KrString("0xFF px"));
  EXPECT_EQ(JoinUnit(FormatInteger(255, true), ""), KrString("0xFF "));
  EXPECT_EQ(JoinUnit(FormatFloat(0.5), "ms"), KrString("0.5 ms"));
  EXPECT_EQ(JoinUnit("1", "\xC2\xB5s"), KrString("1 \xC2\xB5s"));
}

TEST(ValueText, Bounds_OfAWholeNumberOfBits_AreUnbound) {
  struct {
    std::int64_t min;
    std::int64_t max;
    const char* text;
  } constexpr kRows[] = {
      {kMin64, kMax64, "Unbound signed 64 bits integer\n"},
      {-2147483648LL, 2147483647, "Unbound signed 32 bits integer\n"},
      {0, 4294967295, "Unbound unsigned 32 bits integer\n"},
      {-32768, 32767, "Unbound signed 16 bits integer\n"},
      {0, 65535, "Unbound unsigned 16 bits integer\n"},
  };

  for (const auto& row : kRows) {
    EXPECT_EQ(FormatBounds(row.min, row.max, false).ToUtf8(), row.text);
    EXPECT_EQ(FormatBounds(row.min, row.max, true).ToUtf8(), row.text) << "hexadecimal";
  }
}

TEST(ValueText, Bounds_OfAnythingElse_AreMinAndMax) {
  struct {
    const char* description;
    std::int64_t min;
    std::int64_t max;
    const char* decimal;
    const char* hexadecimal;
  } constexpr kRows[] = {
      {"not from zero", 1, 65535, "Min: <b>1</b> Max: <b>65535</b>\n", "Min: <b>1</b> Max: <b>FFFF</b>\n"},
      {"unsigned 64 bits", 0, kMax64, "Min: <b>0</b> Max: <b>9223372036854775807</b>\n",
       "Min: <b>0</b> Max: <b>7FFFFFFFFFFFFFFF</b>\n"},
      {"a byte", 0, 255, "Min: <b>0</b> Max: <b>255</b>\n", "Min: <b>0</b> Max: <b>FF</b>\n"},
      {"a signed byte", -128, 127, "Min: <b>-128</b> Max: <b>127</b>\n",
       "Min: <b>FFFFFFFFFFFFFF80</b> Max: <b>7F</b>\n"},
      {"reversed", 10, -10, "Min: <b>10</b> Max: <b>-10</b>\n", "Min: <b>A</b> Max: <b>FFFFFFFFFFFFFFF6</b>\n"},
      {"reversed whole bits", 65535, 0, "Min: <b>65535</b> Max: <b>0</b>\n", "Min: <b>FFFF</b> Max: <b>0</b>\n"},
      {"mixed sizes", -32768, 65535, "Min: <b>-32768</b> Max: <b>65535</b>\n",
       "Min: <b>FFFFFFFFFFFF8000</b> Max: <b>FFFF</b>\n"},
  };

  for (const auto& row : kRows) {
    EXPECT_EQ(FormatBounds(row.min, row.max, false).ToUtf8(), row.decimal) << row.description;
    EXPECT_EQ(FormatBounds(row.min, row.max, true).ToUtf8(), row.hexadecimal) << row.description;
  }
}

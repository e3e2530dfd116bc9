#include "logic/serial/transferstatistics.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <locale>
#include <sstream>
#include <string>

namespace {

using krgui::FormatReturned;
using krgui::FormatTransferred;
using krgui::FormatTransferTime;

struct TimeRow {
  const char* name;
  std::uint64_t milliseconds;
  std::u16string text;
};

class TransferTimeTable : public testing::TestWithParam<TimeRow> {};

const TimeRow kTimes[] = {
    {"TwoAndAHalfSeconds", 2500, u"2 seconds (2500 milliseconds)"},
    {"MoreThanOneSecondHasThePlural", 1200, u"1 seconds (1200 milliseconds)"},
    {"OneSecondHasThePlural", 1000, u"1 seconds (1000 milliseconds)"},
    {"LessThanASecondHasTheSingular", 300, u"0 second (300 milliseconds)"},
    {"JustNotASecond", 999, u"0 second (999 milliseconds)"},
    {"NoTime", 0, u"0 second (0 milliseconds)"},
    {"AnHour", 3600000, u"3600 seconds (3600000 milliseconds)"},
};

TEST_P(TransferTimeTable, Format_HasWholeSecondsAndMillisecondsAndThePath) {
  const std::u16string text = FormatTransferTime(GetParam().milliseconds, "/data/a file.bin");

  EXPECT_EQ(text, u"\r\n\n" + GetParam().text + u" taken to send: \r\n'/data/a file.bin'\n");
}

INSTANTIATE_TEST_SUITE_P(, TransferTimeTable, testing::ValuesIn(kTimes),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST(TransferTime, PathWithFormatSigns_IsTakenAsItIs) {
  EXPECT_EQ(FormatTransferTime(0, "/%s%d/<b>{0}"),
            u"\r\n\n0 second (0 milliseconds) taken to send: \r\n'/%s%d/<b>{0}'\n");
}

TEST(TransferTime, PathThatIsNoUtf8_ShowsReplacements) {
  EXPECT_EQ(FormatTransferTime(0, "/\xFF.bin"), u"\r\n\n0 second (0 milliseconds) taken to send: \r\n'/\uFFFD.bin'\n");
}

struct ShareRow {
  const char* name;
  std::uint64_t part;
  std::uint64_t whole;
  std::u16string share;
  std::u16string percentage;
};

class ShareTable : public testing::TestWithParam<ShareRow> {};

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

const ShareRow kShares[] = {
    {"All", 1000, 1000, u"1000/1000", u"100"},
    {"None", 0, 1000, u"0/1000", u"0"},
    {"Half", 500, 1000, u"500/1000", u"50"},
    {"Third", 1, 3, u"1/3", u"33.33"},
    {"TwoThirdsAreRounded", 2, 3, u"2/3", u"66.67"},
    {"OneInAThousandLost", 999, 1000, u"999/1000", u"99.9"},
    {"NearlyAllIsRounded", 999999, 1000000, u"999999/1000000", u"100"},
    {"FourDigits", 12345, 1000000, u"12345/1000000", u"1.234"},
    {"Little", 1, 1000000, u"1/1000000", u"0.0001"},
    {"VeryLittle", 1, 10000000, u"1/10000000", u"1e-05"},
    {"NothingOfNothing", 0, 0, u"0/0", u"0"},
    {"TheLargestFile", kMost, kMost, u"18446744073709551615/18446744073709551615", u"100"},
};

TEST_P(ShareTable, Transferred_HasCountsAndFourDigits) {
  const ShareRow& row = GetParam();

  EXPECT_EQ(FormatTransferred(row.part, row.whole),
            row.share + u" successfully transmitted bytes (" + row.percentage + u"%)\n");
}

TEST_P(ShareTable, Returned_IsWhatIsNotOutstanding) {
  const ShareRow& row = GetParam();

  EXPECT_EQ(FormatReturned(row.whole, row.whole - row.part),
            row.share + u" bytes received from loopback (" + row.percentage + u"%)\n");
}

INSTANTIATE_TEST_SUITE_P(, ShareTable, testing::ValuesIn(kShares), [](const auto& aInfo) { return aInfo.param.name; });

/// Numbers as in countries with a decimal comma, whichever locales the host has.
class CommaNumbers : public std::numpunct<char> {
protected:
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

/// The locale of everything that asks none of its own, as long as it lives.
class GlobalLocale {
public:
  explicit GlobalLocale(const std::locale& aLocale) : mFormer(std::locale::global(aLocale)) {}
  ~GlobalLocale() { std::locale::global(mFormer); }
  GlobalLocale(const GlobalLocale&) = delete;
  GlobalLocale& operator=(const GlobalLocale&) = delete;

private:
  const std::locale mFormer;
};

TEST(TransferStatistics, LocaleWithDecimalComma_ChangesNothing) {
  const GlobalLocale global(std::locale(std::locale::classic(), new CommaNumbers));
  std::ostringstream shown;
  shown << 1234.5;
  ASSERT_EQ(shown.str(), "1.234,5");

  EXPECT_EQ(FormatTransferred(1234567, 3703704), u"1234567/3703704 successfully transmitted bytes (33.33%)\n");
  EXPECT_EQ(FormatReturned(3703704, 2469137), u"1234567/3703704 bytes received from loopback (33.33%)\n");
}

TEST(TransferStatistics, MoreBytesBackThanTheLineSaysToHaveTaken_AreCounted) {
  EXPECT_EQ(FormatReturned(2, kMost), u"3/2 bytes received from loopback (150%)\n");
}

} // namespace

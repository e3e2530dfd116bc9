#include "logic/serial/rollingtext.h"

#include "recordingtranscript.h"

#include <gtest/gtest.h>

namespace krgui {

namespace {

/// A text with its view.
struct Rolling {
  RecordingView view;
  RollingText text{view};

  std::u16string Get() const {
    EXPECT_EQ(view.shown, text.GetText());
    return std::u16string(text.GetText());
  }
};

std::u16string CountedUnits(std::size_t aCount) {
  std::u16string units(aCount, u'a');
  for (std::size_t i = 0; i < aCount; ++i)
    units[i] = static_cast<char16_t>(u'a' + i % 26);
  return units;
}

struct LimitRow {
  const char* name;
  std::u16string before;
  std::u16string appended;
  std::u16string expected;
};

/// With a limit of ten units.
const LimitRow kLimitRows[] = {
    {"far from the limit", u"abc", u"12", u"abc12"},
    {"exactly the limit", u"abcdefgh", u"12", u"abcdefgh12"},
    {"one beyond, all that is pending goes from the front", u"abcdefgh", u"123", u"defgh123"},
    {"a full text", u"abcdefghij", u"123", u"defghij123"},
    {"in the middle of a line", u"ab\r\ncdefgh", u"1", u"b\r\ncdefgh1"},
    {"in the middle of a line end", u"ab\r\ncdefgh", u"123", u"\ncdefgh123"},
    {"more pending than text", u"abcd", u"1234567", u"1234567"},
    {"as much pending as the limit", u"abcd", u"1234567890", u"1234567890"},
    {"more pending than the limit is all there is", u"abcd", u"123456789012", u"123456789012"},
    {"more pending than the limit, and no text", u"", u"123456789012", u"123456789012"},
};

struct RemovalRow {
  const char* name;
  std::u16string before;
  std::u16string pending;
  std::u16string expected;
};

/// What is pending is shown after the removal.
const RemovalRow kRemovalRows[] = {
    {"no text", u"", u"", u""},
    {"a single line", u"abc", u"", u""},
    {"the last of two lines", u"abc\r\ndef", u"", u"abc\r\n"},
    {"an empty last line", u"abc\r\n", u"", u"abc\r\n"},
    {"a lone line feed ends a line too", u"abc\ndef", u"", u"abc\n"},
    {"a lone carriage return ends none", u"abc\rdef", u"", u""},
    {"a pending piece of the last line goes with it", u"abc\r\ndef", u"ghi", u"abc\r\n"},
    {"a pending carriage return goes too", u"abc\r\ndef", u"\r", u"abc\r\n"},
    {"a pending line end keeps the text", u"abc\r\ndef", u"ghi\r\njkl", u"abc\r\ndefghi\r\n"},
    {"of several pending lines the last", u"abc", u"d\r\ne\r\nf", u"abcd\r\ne\r\n"},
    {"a pending line end at the end keeps all", u"abc\r\ndef", u"ghi\r\n", u"abc\r\ndefghi\r\n"},
};

} // namespace

TEST(RollingText, BeyondItsLimit_LosesAsManyUnitsAsComeToIt) {
  for (const LimitRow& row : kLimitRows) {
    SCOPED_TRACE(row.name);
    Rolling rolling;
    rolling.text.SetLimit(10);
    rolling.text.Append(row.before);

    rolling.text.Append(row.appended);

    EXPECT_EQ(rolling.Get(), row.expected);
  }
}

TEST(RollingText, NearlyFull_Loses100UnitsFor100) {
  Rolling rolling;
  rolling.text.SetLimit(32'768);
  const std::u16string before = CountedUnits(32'700);
  rolling.text.Append(before);

  rolling.text.Append(std::u16string(100, u'+'));

  EXPECT_EQ(rolling.Get(), before.substr(100) + std::u16string(100, u'+'));
  EXPECT_EQ(rolling.view.lastErased, 100U);
}

TEST(RollingText, LineEnds_CountAsTwoUnits) {
  Rolling rolling;
  rolling.text.SetLimit(10);
  rolling.text.Append(u"\r\n\r\n\r\n\r\n");

  rolling.text.Append(u"abc");

  EXPECT_EQ(rolling.Get(), u"\n\r\n\r\nabc");
}

TEST(RollingText, LowerLimit_CountsFromTheNextFlush) {
  Rolling rolling;
  rolling.text.Append(u"abcdefgh");

  rolling.text.SetLimit(5);
  const std::u16string before = rolling.Get();
  rolling.text.Append(u"12");

  EXPECT_EQ(before, u"abcdefgh");
  EXPECT_EQ(rolling.Get(), u"cdefgh12");
}

TEST(RollingText, AtFirst_ShowsEveryAppend) {
  Rolling rolling;

  rolling.text.Append(u"a");
  rolling.text.Append(u"b");

  EXPECT_EQ(rolling.Get(), u"ab");
  EXPECT_EQ(rolling.view.changes, 2);
}

TEST(RollingText, UpdateInterval_ShowsEveryOneOfSoManyAppends) {
  Rolling rolling;
  rolling.text.SetUpdateInterval(10);

  for (int i = 1; i <= 25; ++i) {
    rolling.text.Append(u"x");

    EXPECT_EQ(rolling.view.changes, i / 10) << i;
    EXPECT_EQ(rolling.Get().size(), static_cast<std::size_t>(i / 10 * 10)) << i;
  }
}

TEST(RollingText, EmptyAppends_CountToo) {
  Rolling rolling;
  rolling.text.SetUpdateInterval(3);

  rolling.text.Append(u"a");
  rolling.text.Append(u"");
  rolling.text.Append(u"");

  EXPECT_EQ(rolling.Get(), u"a");
}

TEST(RollingText, Flush_ShowsWhatIsPendingAndCountsFromOne) {
  Rolling rolling;
  rolling.text.SetUpdateInterval(3);
  rolling.text.Append(u"a");
  rolling.text.Append(u"b");

  rolling.text.Flush();
  const std::u16string flushed = rolling.Get();
  rolling.text.Append(u"c");
  rolling.text.Append(u"d");
  const std::u16string before = rolling.Get();
  rolling.text.Append(u"e");

  EXPECT_EQ(flushed, u"ab");
  EXPECT_EQ(before, u"ab");
  EXPECT_EQ(rolling.Get(), u"abcde");
}

TEST(RollingText, FlushOfNothing_ChangesNoTextButCountsFromOne) {
  Rolling rolling;
  rolling.text.SetUpdateInterval(2);
  rolling.text.Append(u"");

  rolling.text.Flush();
  rolling.text.Append(u"a");

  EXPECT_EQ(rolling.Get(), u"");
  EXPECT_EQ(rolling.view.changes, 0);
}

TEST(RollingText, IntervalBackToOne_ShowsWhatIsPendingWithTheNextAppend) {
  Rolling rolling;
  rolling.text.SetUpdateInterval(10);
  rolling.text.Append(u"a");
  rolling.text.Append(u"b");

  rolling.text.SetUpdateInterval(1);
  rolling.text.Append(u"c");

  EXPECT_EQ(rolling.Get(), u"abc");
}

TEST(RollingText, BatchOfSeveralAppends_TakesItsWholeLengthFromTheFront) {
  Rolling rolling;
  rolling.text.SetLimit(10);
  rolling.text.Append(u"abcdefghi");
  rolling.text.SetUpdateInterval(3);

  rolling.text.Append(u"1");
  rolling.text.Append(u"2");
  rolling.text.Append(u"3");

  EXPECT_EQ(rolling.Get(), u"defghi123");
}

TEST(RollingText, RemoveLastLine_TakesWhatFollowsTheLastLineFeed) {
  for (const RemovalRow& row : kRemovalRows) {
    SCOPED_TRACE(row.name);
    Rolling rolling;
    rolling.text.Append(row.before);
    rolling.text.SetUpdateInterval(2);
    rolling.text.Append(row.pending);

    rolling.text.RemoveLastLine();
    rolling.text.Flush();

    EXPECT_EQ(rolling.Get(), row.expected);
  }
}

TEST(RollingText, RemoveLastLineWithTheFrontCutInsideALineEnd_LeavesItsLineFeed) {
  Rolling rolling;
  rolling.text.SetLimit(10);
  rolling.text.Append(u"ab\r\ncdefgh");
  rolling.text.Append(u"123");

  rolling.text.RemoveLastLine();

  EXPECT_EQ(rolling.Get(), u"\n");
}

TEST(RollingText, RemoveLastLineWithEveryLineEndCutAway_LeavesNothing) {
  Rolling rolling;
  rolling.text.SetLimit(10);
  rolling.text.Append(u"ab\r\ncdefgh");
  rolling.text.Append(u"1234");

  rolling.text.RemoveLastLine();

  EXPECT_EQ(rolling.Get(), u"");
}

TEST(RollingText, ClearPending_ForgetsWhatWasNotShown) {
  Rolling rolling;
  rolling.text.SetUpdateInterval(2);
  rolling.text.Append(u"a");

  rolling.text.ClearPending();
  rolling.text.Append(u"b");

  EXPECT_EQ(rolling.Get(), u"b");
}

TEST(RollingText, SetEmpty_LeavesWhatIsPending) {
  Rolling rolling;
  rolling.text.Append(u"shown");
  rolling.text.SetUpdateInterval(2);
  rolling.text.Append(u"pending");

  rolling.text.SetEmpty();
  const std::u16string emptied = rolling.Get();
  rolling.text.Append(u", next");

  EXPECT_EQ(emptied, u"");
  EXPECT_EQ(rolling.Get(), u"pending, next");
}

TEST(RollingText, SetEmptyAfterItsFrontWasCut_BeginsAnew) {
  Rolling rolling;
  rolling.text.SetLimit(10);
  rolling.text.Append(u"abcdefghij");
  rolling.text.Append(u"1");

  rolling.text.SetEmpty();
  rolling.text.Append(u"new");

  EXPECT_EQ(rolling.Get(), u"new");
}

// The cost of an append at the limit is the text that is moved to make room at the front. The text has moved when its
// first unit is not found where it was before the append.
TEST(RollingText, SmallAppendsAtTheLimit_SeldomMoveTheText) {
  constexpr std::size_t kLimit = 32'768;
  constexpr std::size_t kAppended = 64;
  constexpr std::size_t kAppends = 10 * kLimit / kAppended;
  Rolling rolling;
  rolling.text.SetLimit(kLimit);
  rolling.text.Append(CountedUnits(kLimit));

  std::size_t moves = 0;
  for (std::size_t i = 0; i < kAppends; ++i) {
    const char16_t* const first = rolling.text.GetText().data();
    rolling.text.Append(CountedUnits(kAppended));
    moves += rolling.text.GetText().data() == first + kAppended ? 0 : 1;
  }

  EXPECT_EQ(rolling.text.GetText().size(), kLimit);
  EXPECT_LE(moves, 12U);
}

} // namespace krgui

#include "panels/valuetext.h"

#include <gmock/gmock.h>

#include <limits>

using krviewer::ChooseTicks;
using krviewer::FormatPercent;
using krviewer::FormatTick;
using krviewer::FormatValue;
using testing::DoubleEq;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ValueText, WholeNumbers_HaveAllTheirDigits) {
  EXPECT_EQ(FormatValue(0), "0");
  EXPECT_EQ(FormatValue(-32768), "-32768");
  EXPECT_EQ(FormatValue(4294967295.0), "4294967295");
}

TEST(ValueText, OtherNumbers_HaveSixDigits) {
  EXPECT_EQ(FormatValue(0.123456789), "0.123457");
  EXPECT_EQ(FormatValue(std::numeric_limits<double>::infinity()), "inf");
}

TEST(ValueText, Percent_NeverReadsAsNoneOrAllWhereItIsNot) {
  EXPECT_EQ(FormatPercent(0), "0 %");
  EXPECT_EQ(FormatPercent(0.00001), "< 0.1 %");
  EXPECT_EQ(FormatPercent(12.345), "12.3 %");
  EXPECT_EQ(FormatPercent(99.99), "> 99.9 %");
  EXPECT_EQ(FormatPercent(100), "100 %");
}

TEST(ValueText, Ticks_AreRoundNumbersWithinTheScale) {
  EXPECT_THAT(ChooseTicks(0, 255, 6), ElementsAre(0, 50, 100, 150, 200, 250));
  EXPECT_THAT(ChooseTicks(-10, 0, 3), ElementsAre(-10, -5, 0));
  EXPECT_THAT(ChooseTicks(0.1, 0.45, 4), ElementsAre(DoubleEq(0.1), DoubleEq(0.2), DoubleEq(0.3), DoubleEq(0.4)));
  EXPECT_THAT(ChooseTicks(0, 46, 2), ElementsAre(0, 25));
  EXPECT_THAT(ChooseTicks(3, 4, 1), ElementsAre(4));
}

TEST(ValueText, Ticks_AreNeverMoreThanThereIsRoomFor) {
  for (int most = 1; most <= 12; ++most)
    for (const double high : {1.0, 3.3, 7.0, 99.0, 255.0, 1023.0, 65535.0, 1e9}) {
      const std::size_t count = ChooseTicks(0, high, most).size();
      EXPECT_GE(count, 1u) << most << " of " << high;
      EXPECT_LE(count, static_cast<std::size_t>(most)) << most << " of " << high;
    }
}

TEST(ValueText, ScaleWithoutRange_HasNoTicks) {
  EXPECT_THAT(ChooseTicks(5, 5, 4), IsEmpty());
  EXPECT_THAT(ChooseTicks(5, 4, 4), IsEmpty());
  EXPECT_THAT(ChooseTicks(0, 10, 0), IsEmpty());
  EXPECT_THAT(ChooseTicks(0, std::numeric_limits<double>::infinity(), 4), IsEmpty());
  EXPECT_THAT(ChooseTicks(std::numeric_limits<double>::quiet_NaN(), 1, 4), IsEmpty());
}

TEST(ValueText, TickText_HasTheDigitsThatTellTicksApart) {
  EXPECT_EQ(FormatTick(0.30000000000000004, 0.1), "0.3");
  EXPECT_EQ(FormatTick(200, 50), "200");
  EXPECT_EQ(FormatTick(0.25, 0.05), "0.25");
  EXPECT_EQ(FormatTick(2.5, 2.5), "2.5");
  EXPECT_EQ(FormatTick(-1e-17, 0.1), "0.0");
}

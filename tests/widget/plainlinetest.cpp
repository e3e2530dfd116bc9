// Texts of devices as one plain line, cut where only their beginning is seen.

#include "platform/plainline.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace krgui {

namespace {

QString Repeat(const char16_t* aText, int aTimes) {
  return QString::fromUtf16(aText).repeated(aTimes);
}

KrString ToText(const QString& aText) {
  return KrString(aText.toStdString());
}

} // namespace

TEST(PlainLine, ShortText_IsWhole) {
  EXPECT_EQ(ToPlainLine(KrString("Gain\n12"), 10), "Gain 12");
  EXPECT_EQ(ToPlainLine(KrString("Gain"), 4), "Gain");
  EXPECT_EQ(ToPlainLine(KrString(), 4), "");
}

TEST(PlainLine, LongText_IsCutToItsBeginning) {
  EXPECT_EQ(ToPlainLine(KrString("0123456789"), 4), "0123");
  EXPECT_EQ(ToPlainLine(KrString(std::string(10000, 'x')), 4), "xxxx");
  EXPECT_EQ(ToPlainLine(KrString("Gain"), 0), "");
  EXPECT_EQ(ToPlainLine(KrString("Gain"), -1), "");
}

TEST(PlainLine, CharactersOfTwoUnits_AreCutBetweenThem) {
  const char16_t* const camera = u"\U0001F4F7";
  for (int times = 1; times < 40; ++times) {
    for (int most = 0; most < 2 * times + 2; ++most) {
      const QString line = ToPlainLine(ToText(Repeat(camera, times)), most);

      EXPECT_EQ(line, Repeat(camera, std::min(most / 2, times))) << times << " in " << most;
    }
  }
}

TEST(PlainLine, CharactersOfManyBytes_AreKeptUpToTheCut) {
  for (const char16_t* const letter : {u"\u00E4", u"\u20AC"}) {
    EXPECT_EQ(ToPlainLine(ToText(Repeat(letter, 100)), 7), Repeat(letter, 7));
  }
}

} // namespace krgui

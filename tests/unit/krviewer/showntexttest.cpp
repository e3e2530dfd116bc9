#include "window/showntext.h"

#include <gtest/gtest.h>

TEST(ToLine, TextFromOutside_IsOneLineOfLettersThatCanBeRead) {
  EXPECT_EQ(krviewer::ToLine("  a\n\tb  ", 10), "a b");
  EXPECT_EQ(krviewer::ToLine(QString("a") + QChar(0x202e) + "b", 10), QString("a") + QChar(0xfffd) + "b");
}

TEST(ToLine, LongText_IsCut) {
  EXPECT_EQ(krviewer::ToLine("abcdef", 6), "abcdef");
  EXPECT_EQ(krviewer::ToLine("abcdefg", 6), QString("abcdef…"));
}

TEST(ToLine, CharacterOfTwoUnitsAtTheCut_IsLeftOut) {
  const QString camera = QString::fromUtf8("\U0001F4F7");

  EXPECT_EQ(krviewer::ToLine("abc" + camera + "d", 4), QString("abc…"));
  EXPECT_EQ(krviewer::ToLine("abc" + camera + "d", 5), "abc" + camera + "…");
}

TEST(ToMessage, LongTextFromOutside_IsCutToAFewLines) {
  EXPECT_EQ(krviewer::ToMessage("one\ntwo"), "one\ntwo");
  EXPECT_EQ(krviewer::ToMessage("1\n2\n3\n4\n5\n6\n7"), "1\n2\n3\n4\n5\nAnd 2 more.");
  EXPECT_EQ(krviewer::ToMessage(QString(1000, 'a')), QString(300, 'a') + "…");
}

TEST(ToTitle, MarkOfTheToolkit_IsShownAsItIs) {
  EXPECT_EQ(krviewer::ToTitle("Camera [*] 1"), "Camera [*][*] 1");
}

TEST(ToEntry, Ampersand_IsShownAsOne) {
  EXPECT_EQ(krviewer::ToEntry("Black & White"), "Black && White");
}

TEST(ToToolTip, TextThatLooksLikeMarkup_IsShownAsItIs) {
  EXPECT_TRUE(krviewer::ToToolTip("<b>&").contains("&lt;b&gt;&amp;"));
}

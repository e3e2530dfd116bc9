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

TEST(ToEntry, Ampersand_IsShownAsOne) {
  EXPECT_EQ(krviewer::ToEntry("Black & White"), "Black && White");
}

TEST(ToToolTip, TextThatLooksLikeMarkup_IsShownAsItIs) {
  EXPECT_TRUE(krviewer::ToToolTip("<b>&").contains("&lt;b&gt;&amp;"));
}

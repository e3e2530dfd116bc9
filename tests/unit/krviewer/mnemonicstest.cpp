// Which letter of a text is marked, and which other one is when that is taken.

#include "window/mnemonics.h"

#include <gtest/gtest.h>

using krviewer::GetMnemonic;
using krviewer::MarkFreeLetter;

TEST(Mnemonics_Get, GivesTheMarkedLetterAsACapital) {
  EXPECT_EQ(GetMnemonic("Sa&ve"), QChar('V'));
  EXPECT_EQ(GetMnemonic("&1  first"), QChar('1'));
}

TEST(Mnemonics_Get, WithoutAMark_GivesNone) {
  EXPECT_TRUE(GetMnemonic("Save").isNull());
  EXPECT_TRUE(GetMnemonic("").isNull());
  EXPECT_TRUE(GetMnemonic("this && that").isNull());
  EXPECT_TRUE(GetMnemonic("at the end &").isNull());
}

TEST(Mnemonics_Get, AfterAnAmpersandOfTheText_GivesTheMarkedLetter) {
  EXPECT_EQ(GetMnemonic("this && th&at"), QChar('A'));
}

TEST(Mnemonics_MarkFreeLetter, FreeLetter_Stays) {
  EXPECT_EQ(MarkFreeLetter("&Try Again", {'F', 'C'}), "&Try Again");
}

TEST(Mnemonics_MarkFreeLetter, TakenLetter_GivesWayToTheFirstOfAnotherWord) {
  EXPECT_EQ(MarkFreeLetter("&Try Again", {'T'}), "Try &Again");
}

TEST(Mnemonics_MarkFreeLetter, FirstLettersTaken_GiveWayToOneWithinAWord) {
  EXPECT_EQ(MarkFreeLetter("&Try Again", {'T', 'A', 'R'}), "Tr&y Again");
}

TEST(Mnemonics_MarkFreeLetter, AllTaken_MarksNone) {
  EXPECT_EQ(MarkFreeLetter("&Go", {'G', 'O'}), "Go");
}

TEST(Mnemonics_MarkFreeLetter, AmpersandOfTheText_StaysOne) {
  EXPECT_EQ(MarkFreeLetter("&A && B", {'A'}), "A && &B");
}

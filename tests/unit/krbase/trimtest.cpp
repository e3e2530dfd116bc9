#include "krbase/trim.h"

#include <gtest/gtest.h>

using krbase::Trim;

TEST(Trim, BlanksAround_AreLeftOutAndThoseWithinStay) {
  EXPECT_EQ(Trim(" \t\r\n\f\va b \t\r\n\f\v"), "a b");
  EXPECT_EQ(Trim("a"), "a");
}

TEST(Trim, NothingButBlanks_IsEmpty) {
  EXPECT_EQ(Trim(""), "");
  EXPECT_EQ(Trim(" \n"), "");
}

TEST(Trim, BlanksThatAreNamed_AreTheOnlyOnes) {
  EXPECT_EQ(Trim(" \na\n\t", " \t"), "\na\n");
}

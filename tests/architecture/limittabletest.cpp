#include "limittable.h"

#include <gmock/gmock.h>

namespace archcheck {
namespace {

using Problem = LimitTable::Problem;

const std::set<std::string> kTests = {"Frames.TooLarge_AreRefused", "Names.TooLong_AreCut"};

std::vector<Problem> FindProblems(const std::string& aRow) {
  return CheckLimitTable("| what | test |\n|---|---|\n" + aRow + "\n", kTests).problems;
}

TEST(LimitTable, TestsOfASource_AreFoundHoweverTheyAreWritten) {
  std::set<std::string> tests;

  AddTests("TEST(Frames, TooLarge_AreRefused) {}\n// TEST(Comments, AreNone) {}\nTEST_F(A, B) {}\n"
           "TEST_P(LongName,\n       C) {}\nMY_TEST(D, E);\nf(\"TEST(Text, Too)\");\n",
           tests);

  EXPECT_THAT(tests, testing::ElementsAre("A.B", "Frames.TooLarge_AreRefused", "LongName.C"));
}

TEST(LimitTable, RowsThatNameTheirTests_AreCounted) {
  const LimitTable table = CheckLimitTable("# Limits\n\n| what | test |\n|---|---|\n"
                                           "| frames | `Frames.TooLarge_AreRefused` |\n"
                                           "| names | `Names.TooLong_AreCut`, `Frames.TooLarge_AreRefused` |\n",
                                           kTests);

  EXPECT_EQ(table.rows, 2);
  EXPECT_THAT(table.problems, testing::IsEmpty());
}

TEST(LimitTable, PromisesThatAreShownByTests_CountToo) {
  const LimitTable table = CheckLimitTable("| promise | shown by |\n|---|---|\n| it holds | `Names.Gone` |\n", kTests);

  EXPECT_EQ(table.rows, 1);
  EXPECT_THAT(table.problems, testing::ElementsAre(Problem{3, "There is no test Names.Gone."}));
}

TEST(LimitTable, RowWithoutATest_IsNamed) {
  EXPECT_THAT(FindProblems("| frames | |"), testing::ElementsAre(Problem{3, "A limit names the test that shows it."}));
  EXPECT_THAT(FindProblems("| frames | some |"),
              testing::ElementsAre(Problem{3, "A limit names the test that shows it."}));
}

TEST(LimitTable, TestThatIsNotThere_IsNamed) {
  EXPECT_THAT(FindProblems("| frames | `Names.TooLong_AreCut`, `Frames.Gone` |"),
              testing::ElementsAre(Problem{3, "There is no test Frames.Gone."}));
}

TEST(LimitTable, RowOfAnotherShape_IsNamed) {
  EXPECT_THAT(FindProblems("| `Names.TooLong_AreCut` |"),
              testing::ElementsAre(Problem{3, "A row has as many cells as its table has headings."}));
}

TEST(LimitTable, OtherTables_AreLeftAlone) {
  const LimitTable table = CheckLimitTable("| what | where |\n|---|---|\n| sockets | here |\n", kTests);

  EXPECT_EQ(table.rows, 0);
  EXPECT_THAT(table.problems, testing::IsEmpty());
}

} // namespace
} // namespace archcheck

#include "krbase/krstringlist.h"

#include <gtest/gtest.h>

#include <limits>

TEST(KrStringList, New_IsEmpty) {
  const KrStringList list;

  EXPECT_TRUE(list.IsEmpty());
  EXPECT_EQ(list.GetCount(), 0u);
  EXPECT_TRUE(list.begin() == list.end());
}

TEST(KrStringList, Add_KeepsTheOrderAndEqualTexts) {
  KrStringList list;

  list.Add("Serial0");
  list.Add("Bulk7");
  list.Add("Serial0");

  ASSERT_EQ(list.GetCount(), 3u);
  EXPECT_FALSE(list.IsEmpty());
  EXPECT_EQ(list[0], "Serial0");
  EXPECT_EQ(list[1], "Bulk7");
  EXPECT_EQ(list[2], "Serial0");
}

TEST(KrStringList, IndexAtOrBeyondTheEnd_GivesTheEmptyText) {
  KrStringList list;
  list.Add("only");

  EXPECT_TRUE(list[1].IsEmpty());
  EXPECT_TRUE(list[std::numeric_limits<std::size_t>::max()].IsEmpty());
}

TEST(KrStringList, Iteration_VisitsAllTextsInOrder) {
  KrStringList list;
  list.Add("a");
  list.Add("b");

  std::string joined;
  for (const KrString& text : list)
    joined += text.ToUtf8();

  EXPECT_EQ(joined, "ab");
}

TEST(KrStringList, Clear_RemovesAllTexts) {
  KrStringList list;
  list.Add("a");

  list.Clear();

  EXPECT_TRUE(list.IsEmpty());
  EXPECT_TRUE(list[0].IsEmpty());
}

TEST(KrStringList, Comparison_LooksAtTextsAndOrder) {
  KrStringList forward;
  forward.Add("a");
  forward.Add("b");
  KrStringList same = forward;
  KrStringList backward;
  backward.Add("b");
  backward.Add("a");

  EXPECT_EQ(forward, same);
  EXPECT_NE(forward, backward);
}

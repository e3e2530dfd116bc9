#include "logic/browser/readingorder.h"

#include <gtest/gtest.h>

using krgui::ReadingOrder;

TEST(ReadingOrder, ReadingsThatEndInTheirOrder_AreAllAccepted) {
  ReadingOrder order;
  const auto first = order.Begin();
  const auto second = order.Begin();

  EXPECT_TRUE(order.Accept(first));
  EXPECT_TRUE(order.Accept(second));
  EXPECT_TRUE(order.Accept(order.Begin()));
}

TEST(ReadingOrder, ReadingThatBeganEarlier_IsRefusedAfterALaterOne) {
  ReadingOrder order;
  const auto first = order.Begin();
  const auto second = order.Begin();
  const auto third = order.Begin();

  EXPECT_TRUE(order.Accept(third));
  EXPECT_FALSE(order.Accept(first));
  EXPECT_FALSE(order.Accept(second));
  EXPECT_TRUE(order.Accept(order.Begin()));
}

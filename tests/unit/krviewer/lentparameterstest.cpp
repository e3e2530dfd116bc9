#include "lentparameters.h"

#include "describedcamera.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using krviewer::LentParameters;

namespace {

class LentParametersTest : public testing::Test {
protected:
  DescribedCamera mCamera{"<Category Name=\"Root\"/>"};
  LentParameters mParameters;
};

} // namespace

TEST_F(LentParametersTest, Nothing_IsLentAtFirst) {
  EXPECT_EQ(mParameters.Borrow(), nullptr);
  EXPECT_FALSE(mParameters.IsWantedBack());
}

TEST_F(LentParametersTest, Lent_IsBorrowedOnce) {
  mParameters.Lend(*mCamera.array);

  EXPECT_EQ(mParameters.Borrow(), mCamera.array.get());
  EXPECT_EQ(mParameters.Borrow(), nullptr);
  EXPECT_FALSE(mParameters.IsWantedBack());
}

TEST_F(LentParametersTest, TakenBack_WhenNobodyBorrowed_WaitsForNobody) {
  mParameters.Lend(*mCamera.array);

  mParameters.TakeBack();

  EXPECT_EQ(mParameters.Borrow(), nullptr);
}

TEST_F(LentParametersTest, TakenBack_AfterTheBorrowerGaveBackByItself_WaitsForNobody) {
  mParameters.Lend(*mCamera.array);
  ASSERT_NE(mParameters.Borrow(), nullptr);
  mParameters.GiveBack();

  mParameters.TakeBack();

  EXPECT_FALSE(mParameters.IsWantedBack());
}

TEST_F(LentParametersTest, TakenBack_WhileBorrowed_ReturnsWhenTheBorrowerGaveBack) {
  mParameters.Lend(*mCamera.array);
  ASSERT_NE(mParameters.Borrow(), nullptr);
  std::atomic<bool> hasGivenBack = false;
  bool hadGivenBack = false;
  std::jthread lender([&] {
    mParameters.TakeBack();
    hadGivenBack = hasGivenBack;
  });
  while (!mParameters.IsWantedBack())
    std::this_thread::yield();

  EXPECT_EQ(mParameters.Borrow(), nullptr);
  hasGivenBack = true;
  mParameters.GiveBack();
  lender.join();

  EXPECT_TRUE(hadGivenBack);
  EXPECT_FALSE(mParameters.IsWantedBack());
}

TEST_F(LentParametersTest, NextConnection_IsBorrowedAfterTheLastOne) {
  const DescribedCamera next("<Category Name=\"Root\"/>");
  mParameters.Lend(*mCamera.array);
  ASSERT_NE(mParameters.Borrow(), nullptr);
  mParameters.GiveBack();
  mParameters.TakeBack();

  mParameters.Lend(*next.array);

  EXPECT_EQ(mParameters.Borrow(), next.array.get());
}

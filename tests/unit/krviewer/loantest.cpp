#include "acquisition/loan.h"

#include "await.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

class LoanTest : public testing::Test {
protected:
  int mObject = 1;
  krviewer::Loan<int> mLoan;
};

} // namespace

TEST_F(LoanTest, Nothing_IsLentAtFirst) {
  EXPECT_EQ(mLoan.Borrow(), nullptr);
  EXPECT_FALSE(mLoan.IsWantedBack());
}

TEST_F(LoanTest, Lent_IsBorrowedOnce) {
  mLoan.Lend(mObject);

  EXPECT_EQ(mLoan.Borrow(), &mObject);
  EXPECT_EQ(mLoan.Borrow(), nullptr);
  EXPECT_FALSE(mLoan.IsWantedBack());
}

TEST_F(LoanTest, TakenBack_WhenNobodyBorrowed_WaitsForNobody) {
  mLoan.Lend(mObject);

  mLoan.TakeBack();

  EXPECT_EQ(mLoan.Borrow(), nullptr);
}

TEST_F(LoanTest, TakenBack_AfterTheBorrowerGaveBackByItself_WaitsForNobody) {
  mLoan.Lend(mObject);
  ASSERT_NE(mLoan.Borrow(), nullptr);
  mLoan.GiveBack();

  mLoan.TakeBack();

  EXPECT_FALSE(mLoan.IsWantedBack());
}

TEST_F(LoanTest, TakenBack_WhileBorrowed_ReturnsWhenTheBorrowerGaveBack) {
  mLoan.Lend(mObject);
  ASSERT_NE(mLoan.Borrow(), nullptr);
  std::atomic<bool> hasGivenBack = false;
  bool hadGivenBack = false;
  std::jthread lender([&] {
    mLoan.TakeBack();
    hadGivenBack = hasGivenBack;
  });
  EXPECT_TRUE(krtest::Await([&] { return mLoan.IsWantedBack(); }));

  EXPECT_EQ(mLoan.Borrow(), nullptr);
  hasGivenBack = true;
  mLoan.GiveBack();
  lender.join();

  EXPECT_TRUE(hadGivenBack);
  EXPECT_FALSE(mLoan.IsWantedBack());
}

TEST_F(LoanTest, NextConnection_IsBorrowedAfterTheLastOne) {
  int next = 2;
  mLoan.Lend(mObject);
  ASSERT_NE(mLoan.Borrow(), nullptr);
  mLoan.GiveBack();
  mLoan.TakeBack();

  mLoan.Lend(next);

  EXPECT_EQ(mLoan.Borrow(), &next);
}

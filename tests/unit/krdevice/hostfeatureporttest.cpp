#include "hostfeatureport.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

using krdevice::HostFeaturePort;
using krsystem::HostFeatureKind;
using krsystem::HostFeatures;
using krsystem::MakeHostCommand;
using krsystem::MakeSetFeature;
using krsystem::MakeShownFeature;

namespace {

constexpr std::uint32_t kTimeoutMs = 1000;
enum Row : std::size_t { kNumber, kShare, kText, kCommand, kCount, kOdd };

class HostFeaturePortTest : public testing::Test {
protected:
  template <typename Value>
  KrResult ReadRow(Row aRow, Value& aValue) {
    return mPort.Read(HostFeaturePort::GetAddress(aRow), &aValue, sizeof(aValue), kTimeoutMs, {});
  }
  template <typename Value>
  KrResult WriteRow(Row aRow, const Value& aValue) {
    return mPort.Write(HostFeaturePort::GetAddress(aRow), &aValue, sizeof(aValue), kTimeoutMs, {});
  }
  std::int64_t ReadCount() {
    std::int64_t count = -1;
    EXPECT_TRUE(ReadRow(kCount, count).IsOK());
    return count;
  }

  std::int64_t mNumber = 7;
  double mShare = 0.5;
  KrString mText = "Text";
  int mExecutions = 0;
  std::atomic<std::int64_t> mCount = 3;
  const HostFeatures mFeatures = {
      MakeSetFeature(
          {.name = "Number", .category = "All", .tip = "One of all."}, [this] { return mNumber; },
          [this](std::int64_t aNumber) {
            mNumber = aNumber;
            return KrResult();
          }),
      MakeSetFeature(
          {.name = "Share", .category = "All", .kind = HostFeatureKind::Float, .tip = "One of all."},
          [this] { return mShare; },
          [this](double aShare) {
            mShare = aShare;
            return KrResult();
          }),
      MakeShownFeature({.name = "Text", .category = "All", .kind = HostFeatureKind::Text, .tip = "One of all."},
                       [this] { return mText; }),
      MakeHostCommand({.name = "Command", .category = "All", .kind = HostFeatureKind::Command, .tip = "One of all."},
                      [this] {
                        ++mExecutions;
                        return KrResult();
                      }),
      MakeShownFeature({.name = "Count", .category = "All", .tip = "One of all.", .isCounter = true},
                       [this] { return mCount.load(); }),
      // A text where a number is promised.
      MakeShownFeature({.name = "Odd", .category = "All", .tip = "One of all."}, [] { return KrString("no number"); }),
  };
  HostFeaturePort mPort{mFeatures};
};

} // namespace

TEST_F(HostFeaturePortTest, ReadAndWrite_NumberOfEachKind_AreTheFeaturesOwn) {
  std::int64_t number = 0;
  double share = 0;

  EXPECT_TRUE(WriteRow(kNumber, std::int64_t{-12}).IsOK());
  EXPECT_TRUE(WriteRow(kShare, 0.25).IsOK());
  EXPECT_TRUE(ReadRow(kNumber, number).IsOK());
  EXPECT_TRUE(ReadRow(kShare, share).IsOK());

  EXPECT_EQ(mNumber, -12);
  EXPECT_EQ(mShare, 0.25);
  EXPECT_EQ(number, -12);
  EXPECT_EQ(share, 0.25);
}

TEST_F(HostFeaturePortTest, Read_TextShorterOrLongerThanItsRegister_IsFilledWithZerosOrCut) {
  std::vector<char> bytes(HostFeaturePort::GetLength(HostFeatureKind::Text), 'x');
  ASSERT_TRUE(mPort.Read(HostFeaturePort::GetAddress(kText), bytes.data(), bytes.size(), kTimeoutMs, {}).IsOK());
  EXPECT_STREQ(bytes.data(), "Text");
  EXPECT_EQ(bytes.back(), '\0');

  mText = std::string(bytes.size() + 100, 'y');
  ASSERT_TRUE(mPort.Read(HostFeaturePort::GetAddress(kText), bytes.data(), bytes.size(), kTimeoutMs, {}).IsOK());

  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), std::string(bytes.size(), 'y'));
}

TEST_F(HostFeaturePortTest, ReadAndWrite_AddressWithoutAFeature_IsRefused) {
  std::int64_t number = 5;
  const std::uint64_t behind = HostFeaturePort::GetAddress(mFeatures.size());

  for (const std::uint64_t address : {std::uint64_t{0}, HostFeaturePort::GetAddress(0) - 8,
                                      HostFeaturePort::GetAddress(0) + 8, behind, ~std::uint64_t{0}}) {
    EXPECT_EQ(mPort.Read(address, &number, sizeof(number), kTimeoutMs, {}), KrResult::Code::InvalidInput) << address;
    EXPECT_EQ(mPort.Write(address, &number, sizeof(number), kTimeoutMs, {}), KrResult::Code::InvalidInput) << address;
  }

  EXPECT_EQ(mNumber, 7);
}

TEST_F(HostFeaturePortTest, ReadAndWrite_PartOfARegisterOrMore_IsRefusedAndTouchesNothing) {
  std::array<std::uint8_t, 16> bytes{};
  bytes.fill(0xA5);
  const std::uint64_t address = HostFeaturePort::GetAddress(kNumber);

  for (const std::size_t length : {0u, 1u, 4u, 7u, 9u, 16u}) {
    EXPECT_EQ(mPort.Read(address, bytes.data(), length, kTimeoutMs, {}), KrResult::Code::InvalidInput) << length;
    EXPECT_EQ(mPort.Write(address, bytes.data(), length, kTimeoutMs, {}), KrResult::Code::InvalidInput) << length;
  }

  EXPECT_EQ(mNumber, 7);
  EXPECT_EQ(bytes.front(), 0xA5);
}

TEST_F(HostFeaturePortTest, ReadAndWrite_NullOrNoTime_AreRefused) {
  std::int64_t number = 1;
  const std::uint64_t address = HostFeaturePort::GetAddress(kNumber);

  EXPECT_EQ(mPort.Read(address, nullptr, sizeof(number), kTimeoutMs, {}), KrResult::Code::InvalidInput);
  EXPECT_EQ(mPort.Write(address, nullptr, sizeof(number), kTimeoutMs, {}), KrResult::Code::InvalidInput);
  EXPECT_EQ(mPort.Read(address, &number, sizeof(number), 0, {}), KrResult::Code::InvalidInput);
  EXPECT_EQ(mPort.Write(address, &number, sizeof(number), 0, {}), KrResult::Code::InvalidInput);
}

TEST_F(HostFeaturePortTest, Write_FeatureThatIsOnlyRead_IsDenied) {
  EXPECT_EQ(WriteRow(kCount, std::int64_t{1}), KrResult::Code::AccessDenied);
}

TEST_F(HostFeaturePortTest, Command_WrittenAndRead_IsExecutedAndDenied) {
  std::int64_t number = 0;

  EXPECT_TRUE(WriteRow(kCommand, std::int64_t{1}).IsOK());
  EXPECT_EQ(ReadRow(kCommand, number), KrResult::Code::AccessDenied);

  EXPECT_EQ(mExecutions, 1);
}

TEST_F(HostFeaturePortTest, Read_ValueOfAnotherKindThanPromised_IsAFailure) {
  std::int64_t number = 0;

  EXPECT_EQ(ReadRow(kOdd, number), KrResult::Code::ProtocolError);
}

TEST_F(HostFeaturePortTest, ResetCounters_CounterGoesOn_CountsFromThere) {
  EXPECT_EQ(ReadCount(), 3);

  ASSERT_TRUE(mPort.ResetCounters().IsOK());
  EXPECT_EQ(ReadCount(), 0);
  mCount = 10;
  EXPECT_EQ(ReadCount(), 7);

  mPort.ForgetReset();
  EXPECT_EQ(ReadCount(), 10);
}

TEST_F(HostFeaturePortTest, ResetCounters_CounterBeganAnewItself_ShowsWhatItCounts) {
  mCount = 100;
  ASSERT_TRUE(mPort.ResetCounters().IsOK());

  mCount = 2;
  EXPECT_EQ(ReadCount(), 2);
  mCount = 101;

  EXPECT_EQ(ReadCount(), 101);
}

TEST_F(HostFeaturePortTest, Accesses_OfManyThreads_AreDoneOneAfterTheOther) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 2000;
  std::atomic<int> inside = 0;
  std::atomic<bool> hasOverlapped = false;
  std::int64_t sum = 0;
  const auto add = [&](std::int64_t aNumber) {
    hasOverlapped = hasOverlapped || ++inside != 1;
    sum += aNumber;
    --inside;
    return KrResult();
  };
  const HostFeatures features = {MakeSetFeature(
      {.name = "Sum", .category = "All", .tip = "One of all."}, [&] { return sum; }, add)};
  HostFeaturePort port(features);

  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        std::int64_t one = 1;
        EXPECT_TRUE(port.Write(HostFeaturePort::GetAddress(0), &one, sizeof(one), kTimeoutMs, {}).IsOK());
        EXPECT_TRUE(port.Read(HostFeaturePort::GetAddress(0), &one, sizeof(one), kTimeoutMs, {}).IsOK());
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();

  EXPECT_FALSE(hasOverlapped);
  EXPECT_EQ(sum, kThreads * kRounds);
}

#include "krbase/kreventsinks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <stdexcept>

using testing::ElementsAre;

namespace {

struct Sink {
  std::string name;
  std::function<void()> onCall = {};
};

class KrEventSinksTest : public testing::Test {
protected:
  std::vector<std::string> Notify() {
    std::vector<std::string> names;
    mSinks.Notify([&](Sink& aSink) {
      names.push_back(aSink.name);
      if (aSink.onCall)
        aSink.onCall();
    });
    return names;
  }

  KrEventSinks<Sink> mSinks{"a test's sink", "Test", {"Test::Notify", "test"}};
  Sink mFirst{"first"};
  Sink mSecond{"second"};
};

} // namespace

TEST_F(KrEventSinksTest, Register_NullOrTwice_IsInvalidInputThatNamesTheSink) {
  EXPECT_TRUE(mSinks.IsEmpty());
  EXPECT_EQ(mSinks.Register(nullptr).GetDescription(), "Registering a test's sink: there is none (null).");
  EXPECT_TRUE(mSinks.Register(&mFirst).IsOK());
  EXPECT_EQ(mSinks.Register(&mFirst).GetDescription(), "Registering a test's sink: it is registered already.");
  EXPECT_FALSE(mSinks.IsEmpty());
}

TEST_F(KrEventSinksTest, Unregister_OfOneThatIsNotThere_IsInvalidInput) {
  EXPECT_TRUE(mSinks.Unregister(&mFirst) == KrResult::Code::InvalidInput);
}

TEST_F(KrEventSinksTest, Notify_SeveralSinks_CallsThemInTheOrderOfTheirRegistration) {
  ASSERT_TRUE(mSinks.Register(&mSecond).IsOK());
  ASSERT_TRUE(mSinks.Register(&mFirst).IsOK());

  EXPECT_THAT(Notify(), ElementsAre("second", "first"));
}

TEST_F(KrEventSinksTest, Unregister_InACall_EndsCallsOfItselfAndOfOthers) {
  mFirst.onCall = [this] {
    EXPECT_TRUE(mSinks.Unregister(&mFirst).IsOK());
    EXPECT_TRUE(mSinks.Unregister(&mSecond).IsOK());
  };
  ASSERT_TRUE(mSinks.Register(&mFirst).IsOK());
  ASSERT_TRUE(mSinks.Register(&mSecond).IsOK());

  EXPECT_THAT(Notify(), ElementsAre("first"));
  EXPECT_TRUE(mSinks.IsEmpty());
}

TEST_F(KrEventSinksTest, Unregister_WhileTheSinkIsCalledElsewhere_WaitsForTheCall) {
  std::promise<void> isCalled, mayReturn;
  bool hasReturned = false;
  mFirst.onCall = [&] {
    isCalled.set_value();
    mayReturn.get_future().wait();
    hasReturned = true;
  };
  ASSERT_TRUE(mSinks.Register(&mFirst).IsOK());
  std::jthread caller([this] { EXPECT_THAT(Notify(), ElementsAre("first")); });
  isCalled.get_future().wait();

  std::jthread unregistering([&] {
    EXPECT_TRUE(mSinks.Unregister(&mFirst).IsOK());
    EXPECT_TRUE(hasReturned);
  });
  mayReturn.set_value();
}

TEST_F(KrEventSinksTest, Notify_SinkThatThrows_LogsItAndGoesOn) {
  const KrLogCapture log;
  mFirst.onCall = [] { throw std::runtime_error("at fault"); };
  ASSERT_TRUE(mSinks.Register(&mFirst).IsOK());
  ASSERT_TRUE(mSinks.Register(&mSecond).IsOK());

  EXPECT_THAT(Notify(), ElementsAre("first", "second"));
  EXPECT_TRUE(log.Contains(KrLogLevel::Error, "A test's sink threw an exception: at fault"));
}

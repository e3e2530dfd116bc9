#pragma once
// A camera whose parameters change in all the ways there are, and a sink that writes down what it is told.

#include "await.h"
#include "describedcamera.h"
#include "krgenicam/krgeneventsink.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

/// How long a test waits for what is bound to come.
inline const std::chrono::milliseconds kPatience = krtest::GetGenerousLimit();

/// A register of four bytes, little endian.
inline std::string MakeRegister(const std::string& aName, int aAddress, const std::string& aMore = {}) {
  return "<IntReg Name=\"" + aName + "\">" + "<Address>" + std::to_string(aAddress) +
         "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" + aMore +
         "<Endianess>LittleEndian</Endianess></IntReg>\n";
}

/// What a list has, for matchers.
template <typename List>
auto ToVector(const List& aList) {
  return std::vector(aList.begin(), aList.end());
}

/// Writes down the parameters that it is told of, and does what a test wants then.
class RecordingSink final : public KrGenEventSink {
public:
  explicit RecordingSink(std::function<void(KrGenParameter&)> aOnUpdate = {}) : mOnUpdate(std::move(aOnUpdate)) {}

  ~RecordingSink() override {
    for (KrGenParameter* parameter : mParameters)
      (void)parameter->UnregisterEventSink(this); // A test may have done so itself.
  }

  /// Registers with a parameter until its own end.
  void Listen(KrGenParameter& aParameter) {
    EXPECT_TRUE(aParameter.RegisterEventSink(this).IsOK());
    mParameters.push_back(&aParameter);
  }

  void OnParameterUpdate(KrGenParameter* aParameter) override {
    if (mOnUpdate)
      mOnUpdate(*aParameter);
    {
      const std::lock_guard lock(mMutex);
      mNames.push_back(aParameter->GetName().ToUtf8());
    }
    mCalled.notify_all();
  }

  /// Waits until it was told as often as that; a test failure when that does not come.
  void WaitForCalls(std::size_t aCount) {
    std::unique_lock lock(mMutex);
    EXPECT_TRUE(mCalled.wait_for(lock, kPatience, [&] { return mNames.size() >= aCount; })) << mNames.size();
  }
  std::vector<std::string> TakeNames() {
    const std::lock_guard lock(mMutex);
    return std::exchange(mNames, {});
  }

private:
  std::function<void(KrGenParameter&)> mOnUpdate;
  std::vector<KrGenParameter*> mParameters;
  std::mutex mMutex; // Guards the names.
  std::condition_variable mCalled;
  std::vector<std::string> mNames;
};

/// Something that happens once, on another thread.
class Occasion {
public:
  void Happen() {
    {
      const std::lock_guard lock(mMutex);
      mHasHappened = true;
    }
    mHappened.notify_all();
  }
  void Await() {
    std::unique_lock lock(mMutex);
    EXPECT_TRUE(mHappened.wait_for(lock, kPatience, [this] { return mHasHappened; }));
  }

private:
  std::mutex mMutex; // Guards the flag.
  std::condition_variable mHappened;
  bool mHasHappened = false;
};

/// A described camera with a register "Last", by which a test knows that all that changed before it was told.
class ChangingCamera : public DescribedCamera {
public:
  explicit ChangingCamera(std::string_view aNodes, KrGenArrayOptions aOptions = {})
      : DescribedCamera(std::string(aNodes) + MakeRegister("Last", 0xF000), std::move(aOptions)) {
    EXPECT_TRUE(Read(Integer("Last"), &KrGenInteger::GetValue) == 0);
    mLast.Listen(Integer("Last"));
  }

  /// Returns when the notification thread has been through all that was queued before.
  void AwaitNotifications() {
    EXPECT_TRUE(Integer("Last").SetValue(++mLastValue).IsOK());
    mLast.WaitForCalls(static_cast<std::size_t>(mLastValue));
  }
  /// Has a sink listen to a parameter of which all is known that is remembered at all.
  void Watch(const char* aName, RecordingSink& aSink) {
    {
      RecordingSink first;
      first.Listen(*array->Get(aName));
      EXPECT_TRUE(array->Invalidate(aName).IsOK());
      AwaitNotifications();
    }
    aSink.Listen(*array->Get(aName));
  }

private:
  RecordingSink mLast;
  std::int64_t mLastValue = 0;
};

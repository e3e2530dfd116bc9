#pragma once
// A thread that reads a bridge's end on the host for a test, as the bridge would.

#include "await.h"
#include "bridge/ihostend.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

/// Reads until a call fails; its destruction stops it.
///
/// Thread: any, one at a time. Ownership: borrows the end.
class HostEndReader {
public:
  explicit HostEndReader(krserial::IHostEnd& aEnd) : mEnd(aEnd) {
    mEnd.SetSpeedRequest([this](std::uint32_t aBaudRate) {
      const std::lock_guard lock(mMutex);
      mEvents.push_back(std::to_string(aBaudRate) + " baud");
      mChanged.notify_all();
      return mAnswer;
    });
    Start();
  }

  /// Reads again after a failure.
  void Start() {
    mThread = {};
    mResult.reset();
    mThread = std::jthread([this](const std::stop_token& aStop) { Run(aStop); });
  }
  /// Stops it and says what the call that waited came to.
  KrResult Stop() {
    mThread = {};
    return *mResult;
  }
  /// What requests of a speed get; at first OK.
  void Answer(const KrResult& aAnswer) {
    const std::lock_guard lock(mMutex);
    mAnswer = aAnswer;
  }

  /// All that was read so far, once it is so many bytes, or a generous limit has passed.
  std::string Await(std::size_t aSize) {
    Lock lock(mMutex);
    Wait(lock, [&] { return mBytes.size() >= aSize; });
    return mBytes;
  }
  /// What reading failed with.
  KrResult AwaitFailure() {
    Lock lock(mMutex);
    Wait(lock, [&] { return mResult.has_value(); });
    return mResult ? *mResult : KrResult();
  }
  /// Speeds that were asked for ("9600 baud") and bytes, in their order, once there are so many of them.
  std::vector<std::string> AwaitEvents(std::size_t aCount) {
    Lock lock(mMutex);
    Wait(lock, [&] { return mEvents.size() >= aCount; });
    return mEvents;
  }

private:
  using Lock = std::unique_lock<std::mutex>;

  template <typename Condition>
  void Wait(Lock& aLock, Condition aCondition) {
    mChanged.wait_for(aLock, krtest::GetGenerousLimit(), aCondition);
  }

  void Run(const std::stop_token& aStop) {
    std::vector<std::uint8_t> bytes(65536);
    KrResult result;
    while (result.IsOK()) {
      std::size_t size = 0;
      result = mEnd.Read(bytes.data(), bytes.size(), size, aStop);
      const std::lock_guard lock(mMutex);
      const std::string text(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
      mBytes += text;
      if (!text.empty())
        mEvents.push_back(text);
      if (!result.IsOK())
        mResult = result;
      mChanged.notify_all();
    }
  }

  krserial::IHostEnd& mEnd;
  std::mutex mMutex; // Guards the members up to the thread.
  std::condition_variable mChanged;
  std::string mBytes;
  std::vector<std::string> mEvents;
  std::optional<KrResult> mResult;
  KrResult mAnswer;
  std::jthread mThread; // Last, so that it ends before what it uses.
};

/// Writes a text as a whole, or until stopped.
inline KrResult WriteText(krserial::IHostEnd& aEnd, const std::string& aText, const std::stop_token& aStop = {}) {
  std::size_t written = 0;
  return aEnd.Write(reinterpret_cast<const std::uint8_t*>(aText.data()), aText.size(), written, aStop);
}

/// Bytes of every value in a mixed order that is the same each time.
inline std::string MakeMixedBytes(std::size_t aSize, std::uint32_t aSeed) {
  std::string bytes(aSize, '\0');
  for (char& byte : bytes) {
    aSeed = aSeed * 1664525 + 1013904223;
    byte = static_cast<char>(aSeed >> 24U);
  }
  return bytes;
}

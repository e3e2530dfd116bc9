#pragma once
// Measures how long a camera takes to answer, now and then, on a thread of its own, and says whether it is slow. What
// its user is told of that is left to Adviser.

#include "krgenicam/ikrregisterport.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace krviewer {

/// From answers to a judgement that does not flicker: slow after three slow answers in a row, prompt after three prompt
/// ones. Thread: one.
class ResponseJudge {
public:
  /// What takes longer is felt by whoever looks at features: a network answers within a few milliseconds.
  static constexpr std::chrono::milliseconds kSlow{200};
  static constexpr int kAnswers = 3;

  /// An answer took so long.
  void Note(std::chrono::milliseconds aTook);
  bool IsSlow() const { return mIsSlow; }

private:
  bool mIsSlow = false;
  int mOthers = 0; ///< Answers in a row that speak against the judgement.
};

/// Thread: Follow and Leave on one, IsSlow on any. Ownership: borrows the port from Follow to Leave.
class ResponseTimer {
public:
  static constexpr std::chrono::milliseconds kPeriod{1000};

  explicit ResponseTimer(std::chrono::milliseconds aPeriod = kPeriod) : mPeriod(aPeriod) {}
  ~ResponseTimer() { Leave(); }
  ResponseTimer(const ResponseTimer&) = delete;
  ResponseTimer& operator=(const ResponseTimer&) = delete;

  /// Reads one register of the camera each period.
  void Follow(IKrRegisterPort& aPort);
  /// Ends that, and an access that is under way at once.
  void Leave();
  /// False where no camera is followed.
  bool IsSlow() const { return mIsSlow; }

private:
  void Run(const std::stop_token& aStop, IKrRegisterPort& aPort);

  const std::chrono::milliseconds mPeriod;
  std::atomic<bool> mIsSlow = false;
  std::mutex mMutex;                  ///< Guards nothing but the pause.
  std::condition_variable_any mNever; ///< Ends a pause when the thread is to stop.
  std::jthread mThread;               ///< Follow's and Leave's own.
};

} // namespace krviewer

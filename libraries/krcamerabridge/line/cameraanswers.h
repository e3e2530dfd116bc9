#pragma once
// Whether a connected camera answers: what its accesses came to last. Why it does not is said by the results alone.

#include "krbase/krresult.h"

#include <mutex>

namespace krcamerabridge {

/// Thread: any.
class CameraAnswers {
public:
  /// An access has ended. Silence and loss are kept until one succeeds; other failures say nothing of either.
  void Note(const KrResult& aResult) {
    const bool isUnanswered = aResult == KrResult::Code::TimeLimitExceeded || aResult == KrResult::Code::ConnectionLost;
    if (!isUnanswered && !aResult.IsOK())
      return;
    const std::lock_guard lock(mMutex);
    mFailure = aResult;
  }
  /// Another camera, or none.
  void Forget() { Note({}); }
  /// OK while the camera answers; otherwise why it does not.
  KrResult GetFailure() const {
    const std::lock_guard lock(mMutex);
    return mFailure;
  }

private:
  mutable std::mutex mMutex; // Guards the failure.
  KrResult mFailure;
};

} // namespace krcamerabridge

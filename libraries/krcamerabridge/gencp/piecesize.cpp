#include "gencp/piecesize.h"

#include <algorithm>
#include <utility>

namespace krcamerabridge {

void PieceSize::Succeed(std::size_t aSize) {
  mBefore = 0;
  if (mTrial > 0 && aSize > mGood) {
    mGood = std::exchange(mTrial, 0);
    mSuccesses = 0;
    mPause = kFirstPause;
  } else if (mGood < mMost && ++mSuccesses >= mPause) {
    mTrial = std::min(2 * mGood, mMost);
  }
}

bool PieceSize::Fail(std::size_t aSize, Failure aFailure) {
  if (aFailure == Failure::Unrelated)
    return false;
  if (mTrial > 0 && aSize > mGood)
    return FailTrial();
  if (aSize <= kSafeBytes) {
    if (mBefore > 0)
      mGood = std::exchange(mBefore, 0);
    return false;
  }
  if (mBefore == 0)
    mBefore = mGood;
  mGood = aFailure == Failure::Silent ? kSafeBytes : std::max(kSafeBytes, aSize / 2);
  mTrial = 0;
  mSuccesses = 0;
  return true;
}

bool PieceSize::FailTrial() {
  mTrial = 0;
  mSuccesses = 0;
  mPause = std::min(2 * mPause, kLongestPause);
  return true;
}

} // namespace krcamerabridge

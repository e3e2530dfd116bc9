#pragma once
// How many bytes one command to a camera carries: as many as the standard has room for, fewer once a camera has shown
// that it takes fewer, and more again as soon as it turns out that it was something else. Who sends is left to
// DeviceMemory.

#include "gencp/packet.h"

#include <cstddef>
#include <cstdint>

namespace krcamerabridge {

/// Thread: one at a time.
class PieceSize {
public:
  /// What a command came to that may have been too large.
  enum class Failure {
    Silent,    ///< Nothing came: the smallest size is next, as waiting is slow.
    TooLarge,  ///< The answer says so, or arrives damaged: half the size is next.
    Unrelated, ///< It failed for something else, and says nothing of the size.
  };

  explicit PieceSize(std::size_t aMost) : mMost(aMost), mGood(aMost) {}

  /// At most so many bytes next.
  std::size_t Get() const { return mTrial > 0 ? mTrial : mGood; }
  /// So many bytes would be more than what has gone well since it was reduced: worth a try, and not worth waiting long.
  bool IsTrial(std::size_t aSize) const { return aSize > mGood; }
  /// It was reduced, and a try with more has failed since then: the camera takes no more than Get, as far as one knows.
  bool IsLimit() const { return mGood < mMost && mPause > kFirstPause; }

  /// A command with so many bytes has gone well.
  void Succeed(std::size_t aSize);
  /// It has not. Whether fewer bytes may do: Get is less than aSize then. What was reduced for a command that the
  /// smallest size did not help either is taken back.
  bool Fail(std::size_t aSize, Failure aFailure);

private:
  static constexpr std::uint32_t kFirstPause = 8;
  static constexpr std::uint32_t kLongestPause = 4096;

  bool FailTrial();

  const std::size_t mMost;
  std::size_t mGood;       // What goes well.
  std::size_t mTrial = 0;  // More than that, to be tried; 0 for none.
  std::size_t mBefore = 0; // What was good before the command that fails at present; 0 while none does.
  std::uint32_t mSuccesses = 0;
  std::uint32_t mPause = kFirstPause; // So many successes are between two trials.
};

} // namespace krcamerabridge

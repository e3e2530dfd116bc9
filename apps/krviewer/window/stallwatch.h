#pragma once
// Tells when something that should get on does not. What that is, and what is to be done about it, is left to whoever
// looks.

#include <cstdint>
#include <optional>

namespace krviewer {

/// Thread: one.
class StallWatch {
public:
  /// A disk that others keep busy, or that has to spin up, takes less.
  static constexpr std::uint64_t kPatienceMs = 10'000;

  /// Takes in how far it has come at a time of a steady clock; nothing where it is not at work.
  void Look(std::optional<std::uint64_t> aProgress, std::uint64_t aNowMs) {
    if (aProgress != mProgress || !aProgress)
      mSinceMs = aNowMs;
    mProgress = aProgress;
    mNowMs = aNowMs;
  }
  /// How long it has stood still, in milliseconds; 0 as long as that is nothing to be told.
  std::uint64_t GetStalledMs() const { return mNowMs - mSinceMs >= kPatienceMs ? mNowMs - mSinceMs : 0; }

private:
  std::optional<std::uint64_t> mProgress; ///< As of the last look.
  std::uint64_t mSinceMs = 0;             ///< When it was first seen as it is.
  std::uint64_t mNowMs = 0;
};

} // namespace krviewer

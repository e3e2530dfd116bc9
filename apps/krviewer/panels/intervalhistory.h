#pragma once
// The intervals between frames, and what was lost, over the last while, in a fixed number of steps of time. Where
// frames come from and how the steps are drawn is left to others; times are given, not read.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace krviewer {

/// Intervals taken together, in nanoseconds.
struct IntervalSummary {
  std::uint64_t count = 0;
  double leastNs = 0;
  double greatestNs = 0;
  double meanNs = 0;

  void Add(double aIntervalNs);
  void Add(const IntervalSummary& aOther);
  /// The standard deviation.
  double GetJitterNs() const;

private:
  double mSquares = 0; ///< Of the distances from the mean.
};

/// What came and what did not.
struct LossCounts {
  std::uint64_t frames = 0;     ///< That came, whole or not.
  std::uint64_t incomplete = 0; ///< Of these the ones of which a part is missing.
  std::uint64_t missing = 0;    ///< Numbers of frames that were skipped.
  std::uint64_t discarded = 0;  ///< Dropped on this computer for want of a free buffer.

  LossCounts& operator+=(const LossCounts& aOther);
  bool HasLosses() const { return incomplete + missing + discarded > 0; }
  friend bool operator==(const LossCounts&, const LossCounts&) = default;
};

/// One step of time.
struct IntervalStep {
  std::uint64_t index = 0;  ///< It begins at index times the length of a step.
  IntervalSummary arrivals; ///< By the time of arrival.
  IntervalSummary camera;   ///< By the camera's own time stamps; none where it sends none.
  LossCounts losses;
};

/// The steps of the last so-and-so many nanoseconds, as far as something happened in them.
///
/// Thread: one at a time.
class IntervalHistory {
public:
  /// The last step may still be going on, so that one more than the span divided by their length is kept.
  IntervalHistory(std::uint64_t aSpanNs, std::uint64_t aStepNs);

  /// The step at a time, to be added to: steps before it are kept, as far as they are within the span. A time before
  /// the last one given counts as that.
  IntervalStep& At(std::uint64_t aTimeNs);
  /// The steps within the span before a time, the oldest first.
  std::vector<IntervalStep> Get(std::uint64_t aTimeNs) const;
  void Clear();

  std::uint64_t GetSpanNs() const { return mSpanNs; }
  std::uint64_t GetStepNs() const { return mStepNs; }

private:
  std::uint64_t mSpanNs;
  std::uint64_t mStepNs;
  std::vector<IntervalStep> mSteps; ///< A ring: step i lies at i modulo its size.
  std::vector<bool> mIsUsed;
  std::uint64_t mLastIndex = 0;
};

} // namespace krviewer

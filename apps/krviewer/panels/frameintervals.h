#pragma once
// Remembers when frames came and what was lost, as long as it is registered, whether or not anybody looks: it keeps a
// few numbers of each frame and none of its pixels. How that is drawn is left to the plot, how it is saved to the
// table.

#include "acquisition/framesink.h"
#include "krdevice/krstream.h"
#include "panels/framenumbers.h"
#include "panels/intervalhistory.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>

namespace krviewer {

/// How much of the past is looked at.
enum class IntervalSpan { TenSeconds, Minute, TenMinutes };
inline constexpr std::size_t kIntervalSpans = 3;

/// A copy of what is known of a span, to be looked at in peace.
struct IntervalView {
  std::uint64_t spanNs = 0;
  std::uint64_t stepNs = 0;
  std::uint64_t endNs = 0; ///< The end of the span: now, or when the acquisition stopped.
  std::vector<IntervalStep> steps;
  IntervalSummary arrivals; ///< Of all steps.
  IntervalSummary camera;
  LossCounts losses;
  bool isRunning = false;
  bool hasStarted = false; ///< Whether there ever was a frame or an acquisition.
  KrResult reason;         ///< Why the acquisition ended, where it ended by itself.
};

/// Thread: the sink's calls on one thread, all else from any.
class FrameIntervals : public FrameSink {
public:
  FrameIntervals();

  /// Takes in what the stream counted of its discarded frames until now, which frames themselves do not say. Counters
  /// that fall are those of another stream. Called now and then while the acquisition runs, this also says when it
  /// was still running.
  void AddDiscarded(const KrStreamStatistics& aStatistics, std::uint64_t aNowNs);
  IntervalView GetView(IntervalSpan aSpan, std::uint64_t aNowNs) const;
  /// Forgets the past; the state of the acquisition stays.
  void Reset();

  void OnFrame(const KrBuffer& aFrame, std::uint64_t aArrivalNs) override;
  void OnAcquisitionStarted() override;
  void OnAcquisitionEnded(const KrResult& aReason) override;

private:
  struct LastFrame {
    std::uint64_t arrivalNs;
    std::uint64_t timestampNs;
  };

  mutable std::mutex mMutex; ///< Guards the members from here on.
  std::array<IntervalHistory, kIntervalSpans> mHistories;
  FrameNumbers mNumbers;
  std::optional<LastFrame> mLast;
  std::optional<std::uint64_t> mDiscarded;
  std::uint64_t mLastNs = 0; ///< When something happened, or the acquisition was seen to run, last.
  bool mIsRunning = false;
  bool mHasStarted = false;
  KrResult mReason;
};

} // namespace krviewer

#pragma once
// Finds out from a camera's state and figures what is wrong with it, and says so: why it could not be had, that it
// sends nothing or is slow to answer, that frames are lost on their way and where. What is done about it is left to
// the user.

#include "acquisition/acquisitionprogress.h"
#include "acquisition/advice.h"
#include "acquisition/expectedframes.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>

namespace krviewer {

enum class CameraLink { GigEVision, USB3Vision, Other };

/// What there is to know of a camera at a moment.
struct CameraSituation {
  const AcquisitionProgress& progress;
  std::uint64_t nowMs = 0; ///< Of a clock that never goes back.
  CameraLink link = CameraLink::Other;
  bool isForeignSubnet = false;       ///< Its address is of none of its adapter's subnets.
  std::uint64_t droppedByDisplay = 0; ///< Of the frames that the window was given (KrDisplayStatistics).
  /// When frames are to come, of what is known without asking the camera. Asked once a second while none come.
  std::function<ExpectedFrames()> getExpected = {};
};

/// Losses are looked at once a second. They count as trouble when they last, three of five seconds, and as over after
/// ten without any, so that what is said does not flicker; of several troubles the one nearest to the computer is told.
/// No frames are trouble when none came for three seconds, and for three times as long as one takes or took before.
///
/// Thread: one.
class Adviser {
public:
  /// What to say now; to be called often. Moments never go back.
  const Advice& Look(const CameraSituation& aSituation);

private:
  /// Where frames are lost.
  enum class Loss { Computer, Link, Display };
  static constexpr std::size_t kLosses = 3;

  /// What one second brought.
  struct Second {
    bool hasLoss[kLosses] = {};
  };

  void BeginState(const CameraSituation& aSituation);
  Advice AdviseOnFailure(const CameraSituation& aSituation) const;
  Advice AdviseOnSlowness(const CameraSituation& aSituation) const;
  Advice AdviseOnStream(const CameraSituation& aSituation);
  Advice AdviseOnSilence(CameraLink aLink) const;
  bool IsSilent(const CameraSituation& aSituation);
  Advice AdviseOnLosses(CameraLink aLink) const;
  void CountSecond(const CameraSituation& aSituation);
  void Judge();

  Advice mAdvice;
  std::optional<AcquisitionState> mState;
  std::uint64_t mStateMs = 0;  ///< When the state began.
  std::uint64_t mFrameMs = 0;  ///< When a frame had come since.
  std::uint64_t mSecondMs = 0; ///< When the second that is looked at began.
  std::uint64_t mFrames = 0;
  std::uint64_t mGapMs = 0; ///< What the latest frame took.
  ExpectedFrames mExpected;
  std::uint64_t mAskedMs = 0;  ///< When that was asked for; 0 for never in this state.
  AcquisitionProgress mBefore; ///< At that time.
  std::uint64_t mDroppedBefore = 0;
  std::deque<Second> mSeconds; ///< The latest last.
  bool mIsTold[kLosses] = {};
};

} // namespace krviewer

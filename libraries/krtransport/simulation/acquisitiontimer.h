#pragma once
// When a simulated camera exposes: the rules of frame rate, exposure, acquisition modes and triggers, reckoned on the
// camera's clock. It neither waits nor makes frames.

#include <array>
#include <cstdint>
#include <deque>
#include <optional>

namespace krtransport {

/// The edges of a line that trigger; the numbers are the values of the camera's register.
enum class TriggerEdge : std::uint32_t { Rising = 0, Falling = 1, Any = 2 };

/// The triggers; the numbers are the values of the camera's selector.
enum class TriggerKind : std::uint32_t { FrameStart = 0, AcquisitionStart = 1 };

/// How one trigger is set up.
struct TriggerSettings {
  bool isOn = false;
  bool isFromLine = false; ///< From the line, otherwise from software.
  TriggerEdge edge = TriggerEdge::Rising;
  std::uint64_t delayNs = 0;
};

/// What times depend on.
struct TimingSettings {
  std::uint64_t periodNs = 1; ///< From one exposure to the next without a trigger; not below the exposure.
  std::uint64_t exposureNs = 1;
  std::uint64_t linePeriodNs = 2;          ///< The line rises at each multiple of it and falls half of it later.
  std::uint64_t framesPerStart = 0;        ///< Frames of one acquisition; 0 for as many as come until it is stopped.
  std::array<TriggerSettings, 2> triggers; ///< By TriggerKind.
};

/// One exposure; times of the camera's clock.
struct Exposure {
  std::uint64_t beginNs = 0;
  std::uint64_t endNs = 0;
  std::uint64_t triggerNs = 0; ///< When its trigger came; without one, the begin.
};

/// A trigger that comes while it is not waited for is missed and counted: before acquisition began, before the exposure
/// of the trigger before it has ended, or with the trigger off or set to another source. Of the line's pulses those are
/// counted that come between the exposures of one acquisition.
///
/// Thread: one at a time. Times never run back.
class AcquisitionTimer {
public:
  /// Starts an acquisition and counts missed triggers anew; nothing while one runs.
  void Start(std::uint64_t aNowNs);
  void Stop();
  bool IsAcquiring() const { return mStartNs.has_value(); }

  void TriggerBySoftware(TriggerKind aKind, std::uint64_t aNowNs, const TimingSettings& aSettings);
  /// Forgets triggers that the new settings do not wait for.
  void ApplySettings(const TimingSettings& aSettings);

  /// The exposure that is due next as things stand; nothing while a trigger by software is awaited or no acquisition
  /// runs. Exposures that should have begun long ago are left out, so that none come in a burst.
  std::optional<Exposure> GetNextExposure(std::uint64_t aNowNs, const TimingSettings& aSettings) const;
  /// Takes the frame of an exposure; the last of an acquisition ends it. False, and nothing, for an exposure of an
  /// acquisition that was stopped.
  bool EndExposure(const Exposure& aExposure, const TimingSettings& aSettings);

  std::uint32_t GetMissedTriggers() const { return mMissedTriggers; }

private:
  std::optional<std::uint64_t> GetBegin(const TimingSettings& aSettings) const;
  bool IsAwaited(TriggerKind aKind, std::uint64_t aNowNs, const TimingSettings& aSettings) const;

  std::optional<std::uint64_t> mStartNs;        // Of the acquisition that runs.
  std::optional<std::uint64_t> mStartTriggerNs; // When software triggered its begin.
  std::deque<std::uint64_t> mFrameTriggersNs;   // Triggers by software whose exposures have not ended.
  std::optional<Exposure> mLast;
  std::uint64_t mUncountedFromNs = 0; // From when on the line's pulses were not looked at.
  std::uint64_t mFrames = 0;
  std::uint32_t mMissedTriggers = 0;
};

} // namespace krtransport

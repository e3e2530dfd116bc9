#pragma once
// The steps in which a device is used (each question of discovery, access to a register, call of a stream or a line),
// and a fault at the one that a test chooses. What a step does is left to the device behind it.

#include "krbase/krresult.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

namespace krtest {

/// What goes wrong at a step.
struct StepFault {
  std::function<void()> cause = {}; ///< What happens just before it; may be empty.
  KrResult result = {};             ///< What the step gives; for OK it is carried out as ever.
  bool isCarriedOut = false;        ///< Whether the device does it although it gives a failure: its answer was lost.
  bool lasts = false;               ///< Whether all steps from then on give that.
};

/// Counts steps. Thread: any. Ownership: outlives the devices that are used through it.
class Steps {
public:
  /// Counts from 0 on, without a fault; one that lasts ends.
  void Begin();
  /// The same, with a fault at a step.
  void BeginWithFault(std::uint64_t aStep, StepFault aFault);
  /// Takes a step: what aRun gives, unless this one has the fault.
  KrResult Take(const std::string& aWhat, const std::function<KrResult()>& aRun);
  /// Whether steps are counted from now on, and may fail; they are from the beginning.
  void SetCounting(bool aIsOn);
  /// The device has given all that it was used for: what goes wrong from here on need not be told.
  void NoteUsed();

  std::uint64_t GetCount() const;
  /// Whether a fault has come since the last beginning.
  bool HasFailed() const;
  /// The number of steps until the device had given all that it was used for; of all steps where nobody said so.
  std::uint64_t GetUsedCount() const;
  /// The step that had the fault, and the one that was begun last, for people.
  std::string Describe() const;

private:
  std::optional<StepFault> Enter(const std::string& aWhat);

  mutable std::mutex mMutex; // Guards the members from here on.
  std::uint64_t mCount = 0;
  std::optional<std::uint64_t> mFaultyStep;
  StepFault mFault;
  bool mIsCounting = true;
  bool mHasFailed = false;
  std::optional<std::uint64_t> mUsedCount;
  std::string mFaulty;
  std::string mLast;
};

} // namespace krtest

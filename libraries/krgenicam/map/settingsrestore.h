#pragma once
// Sets parameters to settings, in several passes where one depends on another, and reads all of them back. What the
// settings' text looks like is left to KrGenSettings.

#include "krgenicam/krgenparameterarray.h"
#include "map/selectorpath.h"
#include "map/settingsprogress.h"

#include <cstddef>
#include <map>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

namespace krgenicam {

/// Each value is set and read under the positions that the settings before it gave its selectors, wherever the
/// selectors stand meanwhile; at the end they stand where the settings leave them. All but these last positions is set
/// while the device knows that settings are being written.
///
/// Progress counts each step twice: when it was tried first, and when it was first read back.
///
/// Thread: one at a time. Ownership: borrows the array, the list of problems and the progress.
class SettingsRestore {
public:
  /// How often all that failed is tried at most.
  static constexpr std::size_t kMaxPasses = 8;

  SettingsRestore(KrGenParameterArray& aArray, std::stop_token aCancel, KrStringList& aProblems,
                  const KrGenProgress& aProgress)
      : mArray(aArray), mCancel(std::move(aCancel)), mProblems(aProblems), mProgress(aProgress) {}

  /// OK when all is as stored, otherwise the first problem; nothing more is tried once it was cancelled, or
  /// the progress ended it.
  KrResult Run(const KrGenSettings& aSettings);

private:
  enum class State {
    Waiting, ///< Not set yet; with a failure, it was tried.
    Set,     ///< Not read back yet.
    Done,
    Failed,
  };
  struct Step {
    KrGenParameter* parameter = nullptr; ///< Null for a name that there is not.
    KrGenSetting setting = {};
    std::vector<SelectorPosition> context = {}; ///< Where the selectors are to stand.
    bool isSelector = false;
    bool isSuperseded = false; ///< A later step says otherwise, for the same positions.
    State state = State::Waiting;
    KrResult failure = {}; ///< Why it is not set, or not what it should be.
  };

  Step MakeStep(const KrGenSetting& aSetting);
  std::vector<SelectorPosition> MakeContext(KrGenParameter& aParameter);
  void MarkSuperseded();

  void SetInFrame(void (SettingsRestore::*aSet)());
  void SetAll();
  bool SetPass(bool aIsFirst);
  void SetStep(Step& aStep);
  KrResult MoveTo(const std::vector<SelectorPosition>& aContext);

  void VerifyAll();
  void VerifyStep(Step& aStep);
  void AcceptDenied(Step& aStep);
  static bool HasSecondChance(const Step& aStep);
  void SetAgain();
  void PutSelectors();

  bool IsEnded();
  void Report();
  void Note(const KrResult& aProblem);
  void NoteUnfinished(State aState, const std::string& aWhat);

  KrGenParameterArray& mArray;
  const std::stop_token mCancel;
  KrStringList& mProblems;
  SettingsProgress mProgress;
  std::vector<Step> mSteps;
  std::vector<SelectorPosition> mPositions; // Where the steps made so far leave the selectors.
  std::map<KrGenParameter*, std::vector<KrGenParameter*>> mSelectors;
  std::vector<KrResult> mFrameProblems;
  KrResult mFirstProblem;
  KrResult mEnd; // Why nothing more is tried: the device does not answer any more, or it was cancelled.
};

} // namespace krgenicam

#include "map/settingsrestore.h"

#include "krgenicam/krgenparameterarray.h"
#include "map/nodemap.h"
#include "map/persistenceframe.h"
#include "map/settingscomparison.h"

#include <algorithm>
#include <set>
#include <utility>

namespace krgenicam {

namespace {

// Reasons that another setting may do away with: a range, a lock or an entry that depends on it, a device's refusal.
bool IsCurable(const KrResult& aFailure) {
  return aFailure == KrResult::Code::OutOfRange || aFailure == KrResult::Code::AccessDenied ||
         aFailure == KrResult::Code::Busy || aFailure == KrResult::Code::ProtocolError;
}

bool IsEnd(const KrResult& aFailure) {
  return aFailure == KrResult::Code::ConnectionLost || aFailure == KrResult::Code::Aborted;
}

KrString Show(const KrString& aValue) {
  return aValue.IsEmpty() ? "(empty)" : aValue;
}

} // namespace

KrResult SettingsRestore::Run(const KrGenSettings& aSettings) {
  mSteps.reserve(aSettings.GetCount());
  for (const KrGenSetting& setting : aSettings.GetSettings())
    mSteps.push_back(MakeStep(setting));
  MarkSuperseded();
  mProgress.SetTotal(2 * mSteps.size());

  // Devices check their settings, and may change some, at the end of a frame: what is read before is not what they
  // have.
  SetInFrame(&SettingsRestore::SetAll);
  VerifyAll();
  if (!IsEnded() && std::any_of(mSteps.begin(), mSteps.end(), HasSecondChance)) {
    SetInFrame(&SettingsRestore::SetAgain);
    VerifyAll();
  }
  PutSelectors();
  if (mEnd.IsOK())
    (void)mProgress.Tell(); // Everything is done: there is nothing left to end.
  Report();
  return mFirstProblem;
}

SettingsRestore::Step SettingsRestore::MakeStep(const KrGenSetting& aSetting) {
  Step step = {.parameter = mArray.Get(aSetting.name), .setting = aSetting};
  if (step.parameter == nullptr) {
    step.state = State::Failed;
    step.failure = {KrResult::Code::NotFound, "there is no such parameter."};
    return step;
  }
  step.context = MakeContext(*step.parameter);
  step.isSelector = IsSelector(*step.parameter);
  if (step.isSelector) {
    std::erase_if(mPositions, [&](const SelectorPosition& aOther) { return aOther.selector == step.parameter; });
    mPositions.push_back({step.parameter, aSetting.value});
  }
  return step;
}

// Selectors that no setting has moved yet stay where they are.
std::vector<SelectorPosition> SettingsRestore::MakeContext(KrGenParameter& aParameter) {
  const auto [selectors, isNew] = mSelectors.try_emplace(&aParameter);
  if (isNew)
    selectors->second = ListSelectors(aParameter);
  std::vector<SelectorPosition> context;
  for (KrGenParameter* const selector : selectors->second) {
    const auto position =
        std::find_if(mPositions.begin(), mPositions.end(),
                     [selector](const SelectorPosition& aOther) { return aOther.selector == selector; });
    if (position != mPositions.end())
      context.push_back(*position);
  }
  return context;
}

void SettingsRestore::MarkSuperseded() {
  std::set<std::string> places;
  for (auto step = mSteps.rbegin(); step != mSteps.rend(); ++step)
    step->isSuperseded =
        step->parameter != nullptr && !places.insert(DescribePlace(step->setting.name, step->context)).second;
}

void SettingsRestore::SetInFrame(void (SettingsRestore::*aSet)()) {
  const auto note = [this](const KrResult& aResult) {
    if (IsEnd(aResult) && mEnd.IsOK())
      mEnd = aResult;
    if (!aResult.IsOK())
      mFrameProblems.push_back(aResult);
  };
  PersistenceFrame frame(mCancel, [this] { return mProgress.Tell(); });
  note(frame.Begin([this](const KrString& aName) { return mArray.Get(aName); }));
  (this->*aSet)();
  note(frame.End());
}

void SettingsRestore::SetAll() {
  const std::size_t most = std::min(kMaxPasses, mSteps.size());
  for (std::size_t pass = 0; pass < most && !IsEnded(); ++pass) {
    if (!SetPass(pass == 0))
      break;
  }
  for (Step& step : mSteps) {
    if (step.state == State::Waiting && !step.failure.IsOK())
      step.state = State::Failed;
  }
}

// Sets what waits; whether there is more to set than before.
bool SettingsRestore::SetPass(bool aIsFirst) {
  bool hasProgress = false;
  std::size_t tried = 0;
  for (Step& step : mSteps) {
    if (aIsFirst)
      mProgress.SetDone(tried++);
    // A selector that goes on to another position is moved there when something is to be set under it.
    if (step.state != State::Waiting || (step.isSelector && step.isSuperseded))
      continue;
    if (IsEnded())
      return false;
    SetStep(step);
    hasProgress |= step.state == State::Set;
  }
  return hasProgress;
}

void SettingsRestore::SetStep(Step& aStep) {
  KrResult set = MoveTo(aStep.context);
  if (set.IsOK())
    set = aStep.parameter->FromString(aStep.setting.value);
  if (IsEnd(set))
    mEnd = set;
  aStep.failure = set.IsOK() ? set
                             : KrResult(set.GetCode(),
                                        Show(aStep.setting.value) + " is wanted, but was not set: " + GetReason(set));
  // What another setting replaces later is not tried again.
  if (set.IsOK() || aStep.isSuperseded)
    aStep.state = State::Set;
  else if (!IsCurable(set))
    aStep.state = State::Failed;
}

KrResult SettingsRestore::MoveTo(const std::vector<SelectorPosition>& aContext) {
  for (const SelectorPosition& position : aContext) {
    bool isThere = false;
    KrString value;
    KrResult moved = CompareWithText(*position.selector, position.position, isThere, value);
    if (!moved.IsOK() || !isThere)
      moved = position.selector->FromString(position.position);
    if (!moved.IsOK())
      return {moved.GetCode(),
              position.selector->GetName() + " cannot be set to " + position.position + ": " + GetReason(moved)};
  }
  return {};
}

// Selectors are read back when they are put where they are to stay.
void SettingsRestore::VerifyAll() {
  mArray.InvalidateCache(); // What the device has counts, not what was written to it.
  std::size_t readBack = mSteps.size();
  for (Step& step : mSteps) {
    mProgress.SetDone(readBack++);
    if (step.isSuperseded || step.isSelector || IsEnded())
      continue;
    if (step.state == State::Set || step.state == State::Done)
      VerifyStep(step);
    else if (step.failure == KrResult::Code::AccessDenied)
      AcceptDenied(step);
  }
  mProgress.SetDone(readBack);
}

void SettingsRestore::VerifyStep(Step& aStep) {
  KrResult read = MoveTo(aStep.context);
  bool isSame = aStep.parameter->GetAccessMode() == KrGenAccessMode::WriteOnly;
  KrString value;
  if (read.IsOK() && !isSame)
    read = CompareWithText(*aStep.parameter, aStep.setting.value, isSame, value);
  if (IsEnd(read))
    mEnd = read;
  if (!read.IsOK())
    aStep.failure = {read.GetCode(),
                     Show(aStep.setting.value) + " was set, but cannot be read back: " + GetReason(read)};
  else if (!isSame)
    aStep.failure = {KrResult::Code::NotSupported,
                     Show(aStep.setting.value) + " was set, but the device has " + Show(value) + "."};
  aStep.state = aStep.failure.IsOK() ? State::Done : State::Failed;
}

// What could not be set may be as it is wanted all the same, as a locked parameter that nobody has touched.
void SettingsRestore::AcceptDenied(Step& aStep) {
  bool isSame = false;
  KrString value;
  KrResult read = MoveTo(aStep.context);
  if (read.IsOK())
    read = CompareWithText(*aStep.parameter, aStep.setting.value, isSame, value);
  if (IsEnd(read))
    mEnd = read;
  if (!read.IsOK() || !isSame)
    return;
  aStep.failure = {};
  aStep.state = State::Done;
}

// What a later setting changed again, as devices do with exposure time and frame rate, is set once more.
bool SettingsRestore::HasSecondChance(const Step& aStep) {
  return aStep.failure == KrResult::Code::NotSupported && aStep.state == State::Failed && aStep.parameter != nullptr;
}

void SettingsRestore::SetAgain() {
  for (Step& step : mSteps) {
    if (!IsEnded() && HasSecondChance(step))
      SetStep(step);
  }
}

// Where the settings leave the selectors, each under its own selectors' positions. Done in any case but for a device
// that is gone, or does not answer while nobody wants to wait any more.
void SettingsRestore::PutSelectors() {
  for (Step& step : mSteps) {
    if (!step.isSelector || step.isSuperseded || mEnd == KrResult::Code::ConnectionLost)
      continue;
    step.failure = {};
    step.state = State::Waiting;
    SetStep(step);
    mArray.InvalidateCache();
    if (step.state == State::Set)
      VerifyStep(step);
    else if (step.failure == KrResult::Code::AccessDenied)
      AcceptDenied(step);
    if (!mEnd.IsOK() && step.failure == KrResult::Code::TimeLimitExceeded)
      break;
  }
}

// Accesses that are under way when it is cancelled fail by themselves; between two of them it shows here.
bool SettingsRestore::IsEnded() {
  if (mEnd.IsOK() && (mCancel.stop_requested() || !mProgress.Tell()))
    mEnd = {KrResult::Code::Aborted, "It was cancelled."};
  return !mEnd.IsOK();
}

// That it was cancelled comes first, as it is why other things are as they are.
void SettingsRestore::Report() {
  const bool isAborted = mEnd == KrResult::Code::Aborted;
  if (isAborted)
    Note({mEnd.GetCode(), "The settings are not all restored: " + GetReason(mEnd)});
  for (const KrResult& problem : mFrameProblems) {
    if (!isAborted || !(problem == KrResult::Code::Aborted))
      Note(problem);
  }
  for (const Step& step : mSteps) {
    if (!step.failure.IsOK() && !step.isSuperseded)
      Note({step.failure.GetCode(),
            DescribePlace(step.setting.name, step.context) + ": " + step.failure.GetDescription().ToUtf8()});
  }
  if (mEnd.IsOK())
    return;
  NoteUnfinished(State::Waiting, " further settings were not tried: ");
  NoteUnfinished(State::Set, " further settings were not read back: ");
}

void SettingsRestore::Note(const KrResult& aProblem) {
  if (aProblem.IsOK())
    return;
  mProblems.Add(aProblem.GetDescription());
  if (mFirstProblem.IsOK())
    mFirstProblem = aProblem;
}

void SettingsRestore::NoteUnfinished(State aState, const std::string& aWhat) {
  const auto count = std::count_if(mSteps.begin(), mSteps.end(), [aState](const Step& aStep) {
    return aStep.state == aState && aStep.failure.IsOK() && !aStep.isSuperseded;
  });
  if (count > 0)
    Note({mEnd.GetCode(), std::to_string(count) + aWhat + GetReason(mEnd)});
}

} // namespace krgenicam

KrResult KrGenParameterArray::RestoreSettings(const KrGenSettings& aSettings, KrStringList& aProblems,
                                              const KrGenProgress& aProgress) {
  aProblems.Clear();
  return krgenicam::SettingsRestore(*this, mMap->GetCancelToken(), aProblems, aProgress).Run(aSettings);
}

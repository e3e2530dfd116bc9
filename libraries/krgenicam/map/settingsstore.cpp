#include "map/settingsstore.h"

#include "krgenicam/krgenparameterarray.h"
#include "map/accessreason.h"
#include "map/nodemap.h"
#include "map/settingsescape.h"
#include "map/settingsorder.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <numeric>
#include <unordered_set>
#include <utility>

namespace krgenicam {

namespace {

KrResult CheckName(const KrString& aName) {
  if (IsSettingName(aName.ToUtf8()))
    return {};
  return {KrResult::Code::BadData, "No line of a settings file can begin with the name."};
}

// A position that is taken beyond the limits: more than any name has.
constexpr std::size_t kMostOriginalBytes = 4096;

// With the tab and the line end that a file has besides.
std::size_t CountBytes(const KrGenSetting& aSetting) {
  return aSetting.name.GetLength() + aSetting.value.GetLength() + 2;
}

std::string MakeTooManyBytes() {
  return "There are more than " + std::to_string(SettingsStore::kMaxBytes >> 20) + " MiB of texts.";
}

// The device did not answer, or was not to be asked any more: what is missing is more than the parameter.
bool IsUnanswered(const KrResult& aResult) {
  return aResult == KrResult::Code::Aborted || aResult == KrResult::Code::ConnectionLost ||
         aResult == KrResult::Code::TimeLimitExceeded;
}

} // namespace

SettingsStore::SettingsStore(NodeMap& aMap, KrStringList& aProblems, const KrGenProgress& aProgress)
    : mMap(aMap), mCancel(aMap.GetCancelToken()), mProblems(aProblems), mProgress(aProgress) {}

KrResult SettingsStore::Run(const std::vector<KrGenParameter*>& aParameters, KrGenSettings& aSettings) {
  FindStreamLocked();
  const std::vector<Group> groups = MakeGroups(aParameters);
  mProgress.SetTotal(
      std::accumulate(groups.begin(), groups.end(), std::size_t{0},
                      [](std::size_t aSum, const Group& aGroup) { return aSum + aGroup.parameters.size(); }));
  for (const Group& group : groups) {
    Walk(group, 0);
    mGroupsDone += group.parameters.size();
    mProgress.SetDone(mGroupsDone);
  }
  if (mHasLeftLocked)
    Note("The settings", "are not all taken",
         {KrResult::Code::WrongState, "A stream runs and locks some of them. Stop it, then take them again."});
  if (!mIsEnded)
    (void)mProgress.Tell(); // Everything is done: there is nothing left to end.
  for (const KrGenSetting& setting : mSettings)
    aSettings.Add(setting.name, setting.value);
  return mFailure;
}

// While a stream runs sizes and formats are locked, and thus left out: nobody should find that out when they are
// needed. What stands on the word that a stream runs may be.
void SettingsStore::FindStreamLocked() {
  constexpr const char* kLock = "TLParamsLocked";
  std::int64_t isLocked = 0;
  auto* const lock = dynamic_cast<KrGenInteger*>(mMap.FindParameter(kLock));
  const Node* const first = mMap.FindNode(kLock);
  if (!lock || !first || !lock->GetValue(isLocked).IsOK() || isLocked == 0)
    return;
  std::unordered_set<const Node*> seen = {first};
  std::vector<const Node*> walk = {first};
  for (std::size_t at = 0; at < walk.size(); ++at) {
    for (Node* const dependent : walk[at]->GetDependents()) {
      if (!seen.insert(dependent).second)
        continue;
      walk.push_back(dependent);
      mStreamLocked.emplace(mMap.GetParameter(*dependent), dependent);
    }
  }
}

// Whether the parameter, which cannot be set, could be if no stream ran.
bool SettingsStore::IsStreamLocked(const KrGenParameter& aParameter) const {
  const auto found = mStreamLocked.find(&aParameter);
  bool isLocked = false;
  const auto ask = [&](Evaluation& aEvaluation) {
    isLocked = FindAccessReason(aEvaluation, *found->second).isLocked;
    return KrResult();
  };
  return found != mStreamLocked.end() && mMap.Run(ask).IsOK() && isLocked;
}

// A selector under whose positions others are taken is not taken for itself: its own position ends their group. Of
// parameters that select one another neither does.
std::vector<SettingsStore::Group> SettingsStore::MakeGroups(const std::vector<KrGenParameter*>& aParameters) const {
  std::vector<Group> groups = {{}};
  std::map<std::vector<KrGenParameter*>, std::size_t> groupOf = {{{}, 0}};
  std::vector<KrGenParameter*> moved;
  for (KrGenParameter* const parameter : aParameters) {
    if (mCancel.stop_requested())
      break; // The walk tells of it.
    std::vector<KrGenParameter*> selectors = ListSelectors(*parameter);
    std::copy_if(selectors.begin(), selectors.end(), std::back_inserter(moved), [&](KrGenParameter* aSelector) {
      const std::vector<KrGenParameter*> above = ListSelectors(*aSelector);
      return std::find(above.begin(), above.end(), parameter) == above.end();
    });
    const auto [group, isNew] = groupOf.try_emplace(selectors, groups.size());
    if (isNew)
      groups.push_back({std::move(selectors), {}});
    groups[group->second].parameters.push_back(parameter);
  }
  std::sort(moved.begin(), moved.end());
  for (Group& group : groups)
    std::erase_if(group.parameters, [&](KrGenParameter* aParameter) {
      return std::binary_search(moved.begin(), moved.end(), aParameter);
    });
  return groups;
}

void SettingsStore::Walk(const Group& aGroup, std::size_t aDepth) {
  if (aGroup.parameters.empty() || IsEnded())
    return;
  if (aDepth == aGroup.selectors.size())
    return StoreParameters(aGroup);
  KrGenAccessMode access = KrGenAccessMode::NotAvailable;
  KrGenParameter& selector = *aGroup.selectors[aDepth];
  if (KrResult asked = mMap.FindAccess(selector, access); !asked.IsOK())
    return Note(selector.GetName(), "does not say whether it can be moved, so that what it selects is not taken",
                asked);
  // One that cannot be moved is where it is, now as well as when the settings are restored.
  if (access != KrGenAccessMode::ReadWrite)
    return Walk(aGroup, aDepth + 1);
  WalkSelector(aGroup, aDepth);
}

void SettingsStore::WalkSelector(const Group& aGroup, std::size_t aDepth) {
  KrGenParameter& selector = *aGroup.selectors[aDepth];
  KrString original;
  KrResult result = CheckName(selector.GetName());
  if (result.IsOK())
    result = selector.ToString(original);
  if (!result.IsOK())
    return Note(selector.GetName(), "cannot be read, so that what it selects is not taken", result);
  KrStringList positions;
  bool isCut = false;
  if (KrResult listed = ListPositions(mMap, selector, positions, isCut); !listed.IsOK())
    Note(selector.GetName(),
         "does not say of all positions whether it can stand there, so that what it selects is not "
         "all taken",
         listed);

  const std::size_t before = mSettings.size();
  WalkPositions(aGroup, aDepth, positions);
  if (isCut && !mIsEnded)
    NoteCut(selector.GetName());
  PutBack(selector, original);
  bool isStreamable = false;
  // Where nothing was taken and the selector itself need not be, its position is of no use.
  if (mSettings.size() > before || (selector.IsStreamable(isStreamable).IsOK() && isStreamable))
    TakeOriginal(selector.GetName(), original);
}

void SettingsStore::WalkPositions(const Group& aGroup, std::size_t aDepth, const KrStringList& aPositions) {
  KrGenParameter& selector = *aGroup.selectors[aDepth];
  std::size_t positionsDone = 0;
  for (const KrString& position : aPositions) {
    if (aDepth == 0)
      mProgress.SetDone(mGroupsDone + aGroup.parameters.size() * positionsDone / aPositions.GetCount());
    ++positionsDone;
    if (IsEnded())
      return;
    if (KrResult moved = selector.FromString(position); !moved.IsOK()) {
      Note(selector.GetName(), "cannot be set to " + position.ToUtf8() + ", so that what it selects there is not taken",
           moved);
      continue;
    }
    const std::size_t before = mSettings.size();
    if (!Take(selector.GetName(), position))
      return;
    mPositions.push_back({&selector, position});
    Walk(aGroup, aDepth + 1);
    mPositions.pop_back();
    if (mSettings.size() == before + 1) {
      mBytes -= CountBytes(mSettings.back());
      mSettings.pop_back();
    }
  }
}

void SettingsStore::PutBack(KrGenParameter& aSelector, const KrString& aPosition) {
  if (mIsSilent)
    return;
  const KrResult result = aSelector.FromString(aPosition);
  if (!result.IsOK())
    Note(aSelector.GetName(), "cannot be put back to " + aPosition.ToUtf8(), result);
  mIsSilent = mIsEnded && result == KrResult::Code::TimeLimitExceeded;
}

void SettingsStore::StoreParameters(const Group& aGroup) {
  if (!aGroup.selectors.empty() && ++mCombinations > kMaxCombinations)
    return NoteLimit(aGroup.parameters.front()->GetName());
  std::size_t taken = mGroupsDone;
  for (KrGenParameter* const parameter : aGroup.parameters) {
    if (IsEnded())
      return;
    KrGenAccessMode access = KrGenAccessMode::NotAvailable;
    if (KrResult asked = mMap.FindAccess(*parameter, access); !asked.IsOK())
      Note(parameter->GetName(), "does not say whether it can be taken", asked);
    else if (access == KrGenAccessMode::ReadWrite)
      StoreParameter(*parameter);
    else
      mHasLeftLocked = mHasLeftLocked || IsStreamLocked(*parameter);
    if (aGroup.selectors.empty())
      mProgress.SetDone(++taken);
  }
}

void SettingsStore::StoreParameter(KrGenParameter& aParameter) {
  const KrString name = aParameter.GetName();
  KrString value;
  if (KrResult checked = CheckName(name); !checked.IsOK())
    return Note(name, "cannot be taken", checked);
  if (mSettings.size() >= kMaxSettings)
    return NoteLimit(name);
  if (KrResult result = aParameter.ToString(value); !result.IsOK())
    return Note(name, "cannot be read", result);
  // One that is large leaves the others their place.
  if (mBytes + CountBytes({name, value}) > kMaxBytes)
    return Note(name, "is not taken", {KrResult::Code::OutOfRange, MakeTooManyBytes()});
  (void)Take(name, value); // What ends it has been noted.
}

// False where there is no room for it, which ends it all.
bool SettingsStore::Take(const KrString& aName, const KrString& aValue) {
  KrGenSetting setting = {aName, aValue};
  const std::size_t bytes = CountBytes(setting);
  if (mSettings.size() >= kMaxSettings || mBytes + bytes > kMaxBytes) {
    NoteLimit(aName);
    return false;
  }
  mBytes += bytes;
  mSettings.push_back(std::move(setting));
  return true;
}

// Where a selector was is taken beyond the limits, too, so that what was taken before can be set: of the few selectors
// of one walk, as the first that has no room ends the others.
void SettingsStore::TakeOriginal(const KrString& aName, const KrString& aPosition) {
  const bool isTaken = !mIsEnded && Take(aName, aPosition);
  if (!isTaken && aPosition.GetLength() <= kMostOriginalBytes)
    mSettings.push_back({aName, aPosition});
}

// Accesses that are under way when it is cancelled fail by themselves; between two of them it shows here.
bool SettingsStore::IsEnded() {
  if (!mIsEnded && (mCancel.stop_requested() || !mProgress.Tell())) {
    mIsEnded = true;
    Note("The settings", "are not all taken", {KrResult::Code::Aborted, "It was cancelled."});
  }
  return mIsEnded;
}

void SettingsStore::Note(const KrString& aName, const std::string& aAttempt, const KrResult& aFailure) {
  const std::string text = DescribePlace(aName, mPositions) + " " + aAttempt + ": " + GetReason(aFailure);
  mProblems.Add(text);
  mBytes += text.size();
  if (mFailure.IsOK() || (IsUnanswered(aFailure) && !IsUnanswered(mFailure)))
    mFailure = {aFailure.GetCode(), text};
  if (aFailure == KrResult::Code::ConnectionLost || aFailure == KrResult::Code::Aborted)
    mIsEnded = true;
  if (mBytes > kMaxBytes && !mIsEnded)
    NoteLimit(aName);
}

void SettingsStore::NoteLimit(const KrString& aName) {
  mIsEnded = true;
  Note(aName, "and what would come behind it is not taken",
       {KrResult::Code::OutOfRange, "There are more than " + std::to_string(kMaxCombinations) +
                                        " combinations of selectors' positions, or more than " +
                                        std::to_string(kMaxSettings) + " values, or more than " +
                                        std::to_string(kMaxBytes >> 20) + " MiB of texts."});
}

// The others are worth having: what is left out is one table.
void SettingsStore::NoteCut(const KrString& aName) {
  Note(aName, "is not moved any further",
       {KrResult::Code::OutOfRange, "It has more than " + std::to_string(kMaxIntegerPositions) +
                                        " positions; what it selects at the others is not taken."});
}

} // namespace krgenicam

KrResult KrGenParameterArray::StoreSettings(KrGenSettings& aSettings, KrStringList& aProblems,
                                            const KrGenProgress& aProgress) {
  aSettings.Clear();
  aSettings.SetDevice(GetVendorName() + " " + GetModelName());
  aProblems.Clear();
  InvalidateCache(); // What the device has counts.
  return krgenicam::SettingsStore(*mMap, aProblems, aProgress).Run(krgenicam::ListSettingsOrder(*mMap), aSettings);
}

#pragma once
// Takes the values of parameters as settings, under all positions of their selectors, which are put back afterwards.
// Which parameters, and in which order, is left to the array.

#include "krgenicam/krgensettings.h"
#include "map/selectorpath.h"
#include "map/settingsprogress.h"

#include <cstddef>
#include <stop_token>
#include <string>
#include <unordered_map>
#include <vector>

namespace krgenicam {

class Node;
class NodeMap;

/// Parameters that have the same selectors come under these together. First come those without selectors.
///
/// Progress counts parameters; those under positions of selectors by how many positions of the outermost are done.
///
/// Thread: one at a time. Ownership: borrows the map, the parameters, the list of problems and the progress.
class SettingsStore {
public:
  /// Combinations of positions that are visited, of all parameters together, and values that are taken.
  static constexpr std::size_t kMaxCombinations = 65536;
  static constexpr std::size_t kMaxSettings = 1'000'000;
  /// Of names, values and problems together. A value that has no room among them is left out; a position of a selector
  /// ends it all.
  static constexpr std::size_t kMaxBytes = std::size_t{16} << 20;

  SettingsStore(NodeMap& aMap, KrStringList& aProblems, const KrGenProgress& aProgress);

  /// Adds the settings of the parameters. OK when all was read, and all selectors are where they were, otherwise the
  /// first failure; Aborted when it was cancelled, or the progress ended it.
  KrResult Run(const std::vector<KrGenParameter*>& aParameters, KrGenSettings& aSettings);

private:
  struct Group {
    std::vector<KrGenParameter*> selectors;
    std::vector<KrGenParameter*> parameters;
  };

  std::vector<Group> MakeGroups(const std::vector<KrGenParameter*>& aParameters) const;
  void Walk(const Group& aGroup, std::size_t aDepth);
  void WalkSelector(const Group& aGroup, std::size_t aDepth);
  void WalkPositions(const Group& aGroup, std::size_t aDepth, const KrStringList& aPositions);
  void PutBack(KrGenParameter& aSelector, const KrString& aPosition);
  void StoreParameters(const Group& aGroup);
  void StoreParameter(KrGenParameter& aParameter);
  bool Take(const KrString& aName, const KrString& aValue);
  void TakeOriginal(const KrString& aName, const KrString& aPosition);
  bool IsEnded();
  void FindStreamLocked();
  bool IsStreamLocked(const KrGenParameter& aParameter) const;
  void Note(const KrString& aName, const std::string& aAttempt, const KrResult& aFailure);
  void NoteLimit(const KrString& aName);
  void NoteCut(const KrString& aName);

  NodeMap& mMap;
  const std::stop_token mCancel;
  KrStringList& mProblems;
  std::vector<KrGenSetting> mSettings;
  std::size_t mBytes = 0;                   // Of the settings' texts and of the problems.
  std::vector<SelectorPosition> mPositions; // Where the selectors of the walk stand.
  SettingsProgress mProgress;
  std::size_t mGroupsDone = 0; // The parameters of the groups that are done.
  std::size_t mCombinations = 0;
  // What the stream that runs may lock; none without one.
  std::unordered_map<const KrGenParameter*, Node*> mStreamLocked;
  bool mHasLeftLocked = false; // Such a one was locked.
  bool mIsEnded = false;       // A limit was reached, the device does not answer any more, or it was cancelled.
  bool mIsSilent = false;      // A selector was not put back in time after the end: no other is tried.
  KrResult mFailure;           // The first, but for those that say that the device was not heard.
};

} // namespace krgenicam

#pragma once
// One value that a camera was set to, with the positions of the selectors under which it stands. When values are
// read and written is left to others.

#include "krgenicam/krgenparameterarray.h"

#include <cstddef>
#include <string>
#include <vector>

namespace krviewer {

struct KeptSetting {
  KrString name = {};
  std::vector<KrGenSetting> positions = {}; ///< Of its selectors; those come first that select selectors.
  KrString value = {};
  std::size_t order = 0; ///< The feature's place in the description.
};

/// Names the place where a setting stands: the same for another value of it.
std::string MakePlaceName(const KeptSetting& aSetting);
/// The same for people: GainSelector=Red, Gain.
KrString DescribePlace(const KeptSetting& aSetting);
/// Reads a feature's value and where its selectors stand, without moving them and without anybody moving them
/// meanwhile. Fails as KrGenParameter::ToString.
KrResult ReadKeptSetting(KrGenParameterArray& aParameters, KrGenParameter& aParameter, KeptSetting& aSetting);
/// The features whose values make up what a camera is set to: those that the description calls streamable or, where it
/// calls none so, those of the standard that users set most.
std::vector<KrGenParameter*> ListKeptFeatures(const KrGenParameterArray& aParameters);

} // namespace krviewer

#pragma once
// Why a device will not take what a settings file has, as far as that can be known without writing: what the
// description and the limits of the moment say. Setting it is left to the parameter array, whose word is the last.

#include "krgenicam/krgenparameterarray.h"
#include "logic/browser/settingsdifference.h"

#include <string>

namespace krgui {

/// A sentence, or nothing. Asks the device for limits; one that does not answer is no obstacle. Limits are left out for
/// what is selected, as those of another position may be others.
std::string FindObstacle(KrGenParameter& aParameter, const KrString& aValue, bool aIsSelected);

/// Adds to the notes of what differs why it cannot be set, and of what stands under a selector's position why that
/// cannot be had. aProgress is asked between two settings, and ends it.
void NoteObstacles(SettingsDifference& aDifference, const KrGenSettings& aFile, KrGenParameterArray& aArray,
                   const ComparedFeatures& aFeatures, const KrGenProgress& aProgress);

} // namespace krgui

#pragma once
// What could not be stored or restored, parted into whose problem it is and what it is, for a list of two columns. What
// the sentences say is left to the parameter array.

#include "krbase/krstringlist.h"

#include <string>
#include <vector>

namespace krgui {

struct SettingsProblem {
  std::string feature; ///< With its selectors' positions: "Gain [GainSelector=Red]"; empty for one of no feature.
  std::string reason;  ///< Begins with a capital letter, or with the file's value as it is.

  friend bool operator==(const SettingsProblem&, const SettingsProblem&) = default;
};

/// Parts the problems of KrGenParameterArray::StoreSettings and RestoreSettings.
std::vector<SettingsProblem> PartSettingsProblems(const KrStringList& aProblems);

} // namespace krgui

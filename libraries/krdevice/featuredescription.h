#pragma once
// Writes a table of host features as a GenICam description whose registers are those of a HostFeaturePort. What the
// features do is left to the table.

#include "krsystem/hostfeature.h"

#include <string>
#include <string_view>

namespace krdevice {

/// What a description says of the module that the features belong to. The texts are no XML yet.
struct FeatureModule {
  std::string_view model; ///< A GenICam name: letters, digits, underscores.
  std::string_view tip;
  /// The boolean feature that is true while what is locked cannot be written; empty where nothing is.
  std::string_view lock = {};
  /// The command that makes counters begin anew; empty where there is none.
  std::string_view reset = {};
};

/// The text of a description (GenApi schema 1.1). Categories come in the order in which the table names them first. Any
/// thread.
std::string WriteFeatureDescription(const FeatureModule& aModule, const krsystem::HostFeatures& aFeatures);

} // namespace krdevice

#pragma once
// What restoring a settings file would change: its last word on each feature, under the positions of the feature's
// selectors, beside what the device has there. Reading file and device is left to others.

#include "krgenicam/krgensettings.h"
#include "krgenicam/krgentypes.h"

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace krgui {

/// What must be known of a feature to compare its values.
struct ComparedFeature {
  KrGenType type = KrGenType::Other;
  std::vector<std::string> selectors = {}; ///< Names, those of its selectors' selectors among them, these first.
  /// Its value where nothing selects it, though it is not among the settings that are saved: it is locked, for example.
  std::optional<KrString> current = {};
  std::string limit = {}; ///< Why it cannot be set at the moment; empty where it can.
};

/// The features of a device by name; what is not here the device does not have.
using ComparedFeatures = std::unordered_map<std::string, ComparedFeature>;

/// One feature under one combination of its selectors' positions.
struct ComparedSetting {
  enum class Kind {
    Same,
    Different,
    NoPresentValue, ///< The device has the feature, but gives no value now.
    NoFeature,      ///< The device has no feature of the name.
  };

  Kind kind = Kind::Same;
  KrString name;
  KrString positions; ///< "GainSelector=Red, …"; empty where nothing selects the feature.
  KrString present;   ///< Empty without a present value.
  KrString wanted;    ///< In the file.
  KrString note;      ///< Why it may not become what the file has: a lock, or an obstacle of another kind.
};

/// Thread: a value.
struct SettingsDifference {
  std::vector<ComparedSetting> settings; ///< In the order of the file.

  std::size_t Count(ComparedSetting::Kind aKind) const;
  /// How many are not as in the file, as far as the device has them.
  std::size_t CountChanges() const;
  /// "3 of 120 settings differ from the file; 2 are of features that this device does not have."
  std::string Summarize() const;
};

/// Compares what a file has with what a device has: integers, booleans and bytes however they are written,
/// floating-point numbers but for a millionth, all else exactly.
SettingsDifference CompareSettings(const KrGenSettings& aFile, const KrGenSettings& aPresent,
                                   const ComparedFeatures& aFeatures);

} // namespace krgui

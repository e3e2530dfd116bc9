#pragma once
// A parameter that is a floating-point number.

#include "krgenicam/krgenparameter.h"

#include <cstdint>
#include <vector>

/// Thread, ownership, results: as KrGenParameter.
class KR_EXPORT KrGenFloat final : public KrGenParameter {
public:
  /// Reads the value, in the unit that GetUnit gives.
  KrResult GetValue(double& aValue);
  /// Sets the value; OutOfRange for one outside GetMin to GetMax, InvalidInput for one that is no number. The increment
  /// is not enforced, as the camera rounds (GenApi: a float's increment is for user interfaces).
  KrResult SetValue(double aValue);
  /// The smallest value that can be set at the moment.
  KrResult GetMin(double& aMin);
  /// The largest value that can be set at the moment.
  KrResult GetMax(double& aMax);
  /// Whether there is a step for user interfaces.
  bool HasIncrement();
  /// The step for user interfaces; NotFound where there is none.
  KrResult GetIncrement(double& aIncrement);
  /// The only values that can be set, ascending; empty where all in the range can.
  KrResult GetValidValues(std::vector<double>& aValues);
  /// How the value is to be shown.
  KrResult GetRepresentation(KrGenRepresentation& aRepresentation);
  /// The unit as the description has it; empty where there is none.
  KrResult GetUnit(KrString& aUnit);
  /// In which notation the value is to be shown.
  KrResult GetDisplayNotation(KrGenDisplayNotation& aNotation);
  /// How many digits to show, left and right of the point together.
  KrResult GetDisplayPrecision(std::int64_t& aDigits);

private:
  friend class krgenicam::NodeMap;
  using KrGenParameter::KrGenParameter;
};

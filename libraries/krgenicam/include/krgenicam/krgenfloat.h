#pragma once
// A parameter that is a floating-point number.

#include "krgenicam/krgenparameter.h"

#include <cstdint>
#include <vector>

/// Thread, ownership, results: as KrGenParameter.
class KR_EXPORT KrGenFloat final : public KrGenParameter {
public:
  KrResult GetValue(double& aValue);
  /// Sets the value; OutOfRange for one outside GetMin to GetMax, InvalidInput for one that is no number. The increment
  /// is not enforced, as the camera rounds (GenApi: a float's increment is for user interfaces).
  KrResult SetValue(double aValue);
  KrResult GetMin(double& aMin);
  KrResult GetMax(double& aMax);
  bool HasIncrement();
  /// The step for user interfaces; NotFound where there is none.
  KrResult GetIncrement(double& aIncrement);
  /// The only values that can be set, ascending; empty where all in the range can.
  KrResult GetValidValues(std::vector<double>& aValues);
  KrResult GetRepresentation(KrGenRepresentation& aRepresentation);
  KrResult GetUnit(KrString& aUnit);
  KrResult GetDisplayNotation(KrGenDisplayNotation& aNotation);
  /// How many digits to show, left and right of the point together.
  KrResult GetDisplayPrecision(std::int64_t& aDigits);

private:
  friend class krgenicam::NodeMap;
  using KrGenParameter::KrGenParameter;
};

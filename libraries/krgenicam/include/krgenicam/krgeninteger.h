#pragma once
// A parameter that is a whole number.

#include "krgenicam/krgenparameter.h"

#include <cstdint>
#include <vector>

/// Thread, ownership, results: as KrGenParameter.
class KR_EXPORT KrGenInteger final : public KrGenParameter {
public:
  /// Reads the value, in the unit that GetUnit gives.
  KrResult GetValue(std::int64_t& aValue);
  /// Sets the value; OutOfRange for one outside GetMin to GetMax, off the increment or not in the set of valid values.
  KrResult SetValue(std::int64_t aValue);
  /// The smallest value that can be set at the moment.
  KrResult GetMin(std::int64_t& aMin);
  /// The largest value that can be set at the moment.
  KrResult GetMax(std::int64_t& aMax);
  /// The step from one valid value to the next, counted from the minimum on; at least 1.
  KrResult GetIncrement(std::int64_t& aIncrement);
  /// The only values that can be set, ascending, of those between minimum and maximum; empty where all on the increment
  /// can.
  KrResult GetValidValues(std::vector<std::int64_t>& aValues);
  /// How the value is to be shown.
  KrResult GetRepresentation(KrGenRepresentation& aRepresentation);
  /// The unit as the description has it; empty where there is none.
  KrResult GetUnit(KrString& aUnit);

private:
  friend class krgenicam::NodeMap;
  using KrGenParameter::KrGenParameter;
};

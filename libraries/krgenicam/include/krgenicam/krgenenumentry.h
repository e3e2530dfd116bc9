#pragma once
// One of the values that an enumeration can have.

#include "krgenicam/krgenparameter.h"

#include <cstdint>

/// An entry. GetName() is its symbolic name within its enumeration.
///
/// Thread, ownership, results: as KrGenParameter.
class KR_EXPORT KrGenEnumEntry final : public KrGenParameter {
public:
  /// The number that stands for the entry.
  KrResult GetValue(std::int64_t& aValue) const;
  /// The number that the entry stands for where the enumeration is read as a number (NumericValue).
  KrResult GetNumericValue(double& aValue) const;
  /// Whether the device leaves the entry by itself.
  KrResult IsSelfClearing(bool& aIsSelfClearing) const;

private:
  friend class krgenicam::NodeMap;
  using KrGenParameter::KrGenParameter;
};

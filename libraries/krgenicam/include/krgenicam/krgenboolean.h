#pragma once
// A parameter that is on or off.

#include "krgenicam/krgenparameter.h"

/// Thread, ownership, results: as KrGenParameter.
class KR_EXPORT KrGenBoolean final : public KrGenParameter {
public:
  /// Reads the value.
  KrResult GetValue(bool& aValue);
  /// Sets the value.
  KrResult SetValue(bool aValue);

private:
  friend class krgenicam::NodeMap;
  using KrGenParameter::KrGenParameter;
};

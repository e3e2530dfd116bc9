#pragma once
// A parameter that is on or off.

#include "krgenicam/krgenparameter.h"

/// Thread, ownership, results: as KrGenParameter.
class KR_EXPORT KrGenBoolean final : public KrGenParameter {
public:
  KrResult GetValue(bool& aValue);
  KrResult SetValue(bool aValue);

private:
  friend class krgenicam::NodeMap;
  using KrGenParameter::KrGenParameter;
};

#pragma once
// A parameter that is a text.

#include "krgenicam/krgenparameter.h"

#include <cstdint>

/// Thread, ownership, results: as KrGenParameter.
class KR_EXPORT KrGenString final : public KrGenParameter {
public:
  /// The text up to the first zero byte.
  KrResult GetValue(KrString& aValue);
  /// Sets the text; InvalidInput for one longer than GetMaxLength or with a zero byte in it.
  KrResult SetValue(const KrString& aValue);
  /// How many bytes the text may have.
  KrResult GetMaxLength(std::int64_t& aLength);

private:
  friend class krgenicam::NodeMap;
  using KrGenParameter::KrGenParameter;
};

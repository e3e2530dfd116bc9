#pragma once
// A value on its way between nodes: a whole number as long as it can be, else a floating-point one. What a value means
// is left to the nodes.

#include <cmath>
#include <cstdint>
#include <limits>

namespace krgenicam {

/// Thread: a value.
class Number {
public:
  constexpr Number() = default;
  constexpr Number(std::int64_t aValue) : mInteger(aValue) {}
  constexpr Number(double aValue) : mFloat(aValue), mIsFloat(true) {}
  Number(bool) = delete;
  Number(int aValue) : mInteger(aValue) {}

  constexpr bool IsFloat() const { return mIsFloat; }
  constexpr double ToFloat() const { return mIsFloat ? mFloat : static_cast<double>(mInteger); }
  /// The nearest whole number, the largest or smallest one where that has no 64 bits, 0 for what is no number.
  std::int64_t ToInteger() const {
    if (!mIsFloat)
      return mInteger;
    if (std::isnan(mFloat))
      return 0;
    const double rounded = std::round(mFloat);
    if (rounded >= 9223372036854775808.0)
      return std::numeric_limits<std::int64_t>::max();
    if (rounded < -9223372036854775808.0)
      return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(rounded);
  }

  /// Same kind and same bits, but for the sign of zero.
  friend bool operator==(const Number& aLeft, const Number& aRight) {
    if (aLeft.mIsFloat != aRight.mIsFloat)
      return false;
    if (!aLeft.mIsFloat)
      return aLeft.mInteger == aRight.mInteger;
    return aLeft.mFloat == aRight.mFloat || (std::isnan(aLeft.mFloat) && std::isnan(aRight.mFloat));
  }

private:
  union {
    std::int64_t mInteger = 0;
    double mFloat;
  };
  bool mIsFloat = false;
};

} // namespace krgenicam

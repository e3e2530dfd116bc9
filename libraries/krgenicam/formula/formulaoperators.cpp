#include "formula/formulaoperators.h"

#include "description/lexical.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace krgenicam {

namespace {

constexpr const char* kByZero = "division by zero";
constexpr const char* kBeyond64Bits = "a whole number of 64 bits is needed, and the value is none";
constexpr const char* kNoNumber = "the result is no number";

bool AreWhole(const Number& aLeft, const Number& aRight) {
  return !aLeft.IsFloat() && !aRight.IsFloat();
}

const char* SetFloat(Number& aTarget, double aValue) {
  aTarget = Number(aValue);
  return std::isnan(aValue) ? kNoNumber : nullptr;
}

// Arithmetic of whole numbers goes through those without sign, whose overflow is defined to wrap.
template <typename Function>
std::int64_t Wrap(Function aFunction, std::int64_t aLeft, std::int64_t aRight) {
  return static_cast<std::int64_t>(aFunction(static_cast<std::uint64_t>(aLeft), static_cast<std::uint64_t>(aRight)));
}

bool Overflows(std::plus<>, std::int64_t aLeft, std::int64_t aRight) {
  std::int64_t result = 0;
  return __builtin_add_overflow(aLeft, aRight, &result);
}

bool Overflows(std::minus<>, std::int64_t aLeft, std::int64_t aRight) {
  std::int64_t result = 0;
  return __builtin_sub_overflow(aLeft, aRight, &result);
}

bool Overflows(std::multiplies<>, std::int64_t aLeft, std::int64_t aRight) {
  std::int64_t result = 0;
  return __builtin_mul_overflow(aLeft, aRight, &result);
}

template <typename Function>
const char* ComputeWrapping(Number& aLeft, const Number& aRight) {
  if (!AreWhole(aLeft, aRight))
    return SetFloat(aLeft, Function()(aLeft.ToFloat(), aRight.ToFloat()));
  aLeft = Number(Wrap(Function(), aLeft.ToInteger(), aRight.ToInteger()));
  return nullptr;
}

template <typename Function>
const char* ComputeWidening(Number& aLeft, const Number& aRight) {
  if (!AreWhole(aLeft, aRight) || Overflows(Function(), aLeft.ToInteger(), aRight.ToInteger()))
    return SetFloat(aLeft, Function()(aLeft.ToFloat(), aRight.ToFloat()));
  return ComputeWrapping<Function>(aLeft, aRight);
}

const char* DivideFloats(Number& aLeft, const Number& aRight) {
  if (aRight.ToFloat() == 0.0)
    return kByZero;
  return SetFloat(aLeft, aLeft.ToFloat() / aRight.ToFloat());
}

const char* DivideIntegers(Number& aLeft, const Number& aRight) {
  if (!AreWhole(aLeft, aRight))
    return DivideFloats(aLeft, aRight);
  const std::int64_t divisor = aRight.ToInteger();
  if (divisor == 0)
    return kByZero;
  // The smallest number by -1 has no 64 bits, and the processor traps.
  aLeft = Number(divisor == -1 ? Wrap(std::minus<>(), 0, aLeft.ToInteger()) : aLeft.ToInteger() / divisor);
  return nullptr;
}

// Operators of whole numbers alone.
template <typename Function>
const char* ComputeWhole(Number& aLeft, const Number& aRight) {
  std::int64_t left = 0;
  std::int64_t right = 0;
  if (!TruncateToInteger(aLeft, left) || !TruncateToInteger(aRight, right))
    return kBeyond64Bits;
  return Function()(left, right, aLeft);
}

struct Remainder {
  const char* operator()(std::int64_t aLeft, std::int64_t aRight, Number& aResult) const {
    if (aRight == 0)
      return kByZero;
    aResult = Number(aRight == -1 ? std::int64_t{0} : aLeft % aRight);
    return nullptr;
  }
};

template <typename Function>
struct Bits {
  const char* operator()(std::int64_t aLeft, std::int64_t aRight, Number& aResult) const {
    aResult = Number(Wrap(Function(), aLeft, aRight));
    return nullptr;
  }
};

constexpr std::int64_t kShiftMask = 63;

struct ShiftLeft {
  const char* operator()(std::int64_t aLeft, std::int64_t aRight, Number& aResult) const {
    aResult = Number(static_cast<std::int64_t>(static_cast<std::uint64_t>(aLeft) << (aRight & kShiftMask)));
    return nullptr;
  }
};

struct ShiftRight {
  const char* operator()(std::int64_t aLeft, std::int64_t aRight, Number& aResult) const {
    aResult = Number(aLeft >> (aRight & kShiftMask));
    return nullptr;
  }
};

template <typename Function>
const char* Compare(Number& aLeft, const Number& aRight) {
  const bool holds = AreWhole(aLeft, aRight) ? Function()(aLeft.ToInteger(), aRight.ToInteger())
                                             : Function()(aLeft.ToFloat(), aRight.ToFloat());
  aLeft = Number(holds ? 1 : 0);
  return nullptr;
}

const char* RaiseFloats(Number& aLeft, const Number& aRight) {
  if (aLeft.ToFloat() == 0.0 && aRight.ToFloat() < 0.0)
    return kByZero;
  return SetFloat(aLeft, std::pow(aLeft.ToFloat(), aRight.ToFloat()));
}

// One divided by a power; whole only for 1 and -1, as division truncates.
const char* RaiseToNegative(Number& aLeft, std::int64_t aExponent) {
  const std::int64_t base = aLeft.ToInteger();
  if (base == 0)
    return kByZero;
  if (base != 1 && base != -1)
    aLeft = Number(0);
  else if (aExponent % 2 == 0)
    aLeft = Number(1);
  return nullptr;
}

const char* RaiseIntegers(Number& aLeft, const Number& aRight) {
  if (!AreWhole(aLeft, aRight))
    return RaiseFloats(aLeft, aRight);
  if (aRight.ToInteger() < 0)
    return RaiseToNegative(aLeft, aRight.ToInteger());
  std::uint64_t result = 1;
  std::uint64_t factor = static_cast<std::uint64_t>(aLeft.ToInteger());
  for (std::uint64_t exponent = static_cast<std::uint64_t>(aRight.ToInteger()); exponent != 0; exponent >>= 1) {
    if (exponent & 1)
      result *= factor;
    factor *= factor;
  }
  aLeft = Number(static_cast<std::int64_t>(result));
  return nullptr;
}

// ROUND(x, digits): halves go away from zero; negative digits are those left of the point.
const char* RoundToDigits(Number& aLeft, const Number& aRight) {
  constexpr double kMostDigits = 400.0;
  if (std::isnan(aRight.ToFloat()))
    return kNoNumber;
  const double digits = std::clamp(std::trunc(aRight.ToFloat()), -kMostDigits, kMostDigits);
  if (!aLeft.IsFloat() && digits >= 0.0)
    return nullptr;
  const double value = aLeft.ToFloat();
  if (digits < 0.0) {
    const double unit = std::pow(10.0, -digits);
    return SetFloat(aLeft, std::isinf(unit) ? 0.0 : std::round(value / unit) * unit);
  }
  const double scaled = value * std::pow(10.0, digits);
  // A number without as many digits stays as it is.
  return SetFloat(aLeft, std::isfinite(scaled) ? std::round(scaled) / std::pow(10.0, digits) : value);
}

template <double (*kFunction)(double)>
const char* ComputeFloat(Number& aValue) {
  return SetFloat(aValue, kFunction(aValue.ToFloat()));
}

// Functions that leave whole numbers as they are.
template <double (*kFunction)(double)>
const char* ComputeFraction(Number& aValue) {
  return aValue.IsFloat() ? ComputeFloat<kFunction>(aValue) : nullptr;
}

// A logarithm, which has no value for 0 either.
template <double (*kFunction)(double)>
const char* ComputeLogarithm(Number& aValue) {
  return aValue.ToFloat() > 0.0 ? ComputeFloat<kFunction>(aValue) : "the logarithm of 0 or less";
}

const char* Negate(Number& aValue) {
  aValue = aValue.IsFloat() ? Number(-aValue.ToFloat()) : Number(Wrap(std::minus<>(), 0, aValue.ToInteger()));
  return nullptr;
}

const char* Complement(Number& aValue) {
  std::int64_t value = 0;
  if (!TruncateToInteger(aValue, value))
    return kBeyond64Bits;
  aValue = Number(~value);
  return nullptr;
}

const char* TakeSign(Number& aValue) {
  const double value = aValue.ToFloat();
  aValue = Number(value > 0.0 ? 1 : value < 0.0 ? -1 : 0);
  return nullptr;
}

const char* TakeMagnitude(Number& aValue) {
  const bool isNegative = aValue.IsFloat() ? std::signbit(aValue.ToFloat()) : aValue.ToInteger() < 0;
  return isNegative ? Negate(aValue) : nullptr;
}

constexpr BinaryOperator kBinaryOperators[] = {
    {FormulaSymbol::Comma, 0, RoundToDigits, RoundToDigits},
    {FormulaSymbol::LogicalOr, 1, nullptr, nullptr},
    {FormulaSymbol::LogicalAnd, 2, nullptr, nullptr},
    {FormulaSymbol::BitOr, 3, ComputeWhole<Bits<std::bit_or<>>>, ComputeWhole<Bits<std::bit_or<>>>},
    {FormulaSymbol::BitXor, 4, ComputeWhole<Bits<std::bit_xor<>>>, ComputeWhole<Bits<std::bit_xor<>>>},
    {FormulaSymbol::BitAnd, 5, ComputeWhole<Bits<std::bit_and<>>>, ComputeWhole<Bits<std::bit_and<>>>},
    {FormulaSymbol::Equal, 6, Compare<std::equal_to<>>, Compare<std::equal_to<>>},
    {FormulaSymbol::NotEqual, 6, Compare<std::not_equal_to<>>, Compare<std::not_equal_to<>>},
    {FormulaSymbol::Less, 7, Compare<std::less<>>, Compare<std::less<>>},
    {FormulaSymbol::Greater, 7, Compare<std::greater<>>, Compare<std::greater<>>},
    {FormulaSymbol::LessEqual, 7, Compare<std::less_equal<>>, Compare<std::less_equal<>>},
    {FormulaSymbol::GreaterEqual, 7, Compare<std::greater_equal<>>, Compare<std::greater_equal<>>},
    {FormulaSymbol::ShiftLeft, 8, ComputeWhole<ShiftLeft>, ComputeWhole<ShiftLeft>},
    {FormulaSymbol::ShiftRight, 8, ComputeWhole<ShiftRight>, ComputeWhole<ShiftRight>},
    {FormulaSymbol::Plus, 9, ComputeWrapping<std::plus<>>, ComputeWidening<std::plus<>>},
    {FormulaSymbol::Minus, 9, ComputeWrapping<std::minus<>>, ComputeWidening<std::minus<>>},
    {FormulaSymbol::Times, 10, ComputeWrapping<std::multiplies<>>, ComputeWidening<std::multiplies<>>},
    {FormulaSymbol::Divide, 10, DivideIntegers, DivideFloats},
    {FormulaSymbol::Remainder, 10, ComputeWhole<Remainder>, ComputeWhole<Remainder>},
    {FormulaSymbol::Power, 0, RaiseIntegers, RaiseFloats},
};

constexpr UnaryFunction kUnaryFunctions[] = {
    {"-", Negate},
    {"~", Complement},
    {"SGN", TakeSign},
    {"NEG", Negate},
    {"ABS", TakeMagnitude},
    {"SQRT", ComputeFloat<std::sqrt>},
    {"EXP", ComputeFloat<std::exp>},
    {"LN", ComputeLogarithm<std::log>},
    {"LG", ComputeLogarithm<std::log10>},
    {"SIN", ComputeFloat<std::sin>},
    {"COS", ComputeFloat<std::cos>},
    {"TAN", ComputeFloat<std::tan>},
    {"ASIN", ComputeFloat<std::asin>},
    {"ACOS", ComputeFloat<std::acos>},
    {"ATAN", ComputeFloat<std::atan>},
    {"TRUNC", ComputeFraction<std::trunc>},
    {"FLOOR", ComputeFraction<std::floor>},
    {"CEIL", ComputeFraction<std::ceil>},
    {"ROUND", ComputeFraction<std::round>},
};

bool FitsInteger(double aWhole, std::int64_t& aInteger) {
  constexpr double kLimit = 9223372036854775808.0;
  if (!(aWhole >= -kLimit && aWhole < kLimit))
    return false;
  aInteger = static_cast<std::int64_t>(aWhole);
  return true;
}

} // namespace

std::span<const BinaryOperator> GetBinaryOperators() {
  return kBinaryOperators;
}

std::span<const UnaryFunction> GetUnaryFunctions() {
  return kUnaryFunctions;
}

std::size_t FindBinaryOperator(FormulaSymbol aSymbol) {
  return static_cast<std::size_t>(std::ranges::find(kBinaryOperators, aSymbol, &BinaryOperator::symbol) -
                                  std::begin(kBinaryOperators));
}

std::size_t FindUnaryFunction(std::string_view aName) {
  const auto found = std::ranges::find_if(
      kUnaryFunctions, [aName](const UnaryFunction& aFunction) { return EqualsIgnoringCase(aFunction.name, aName); });
  return static_cast<std::size_t>(found - std::begin(kUnaryFunctions));
}

bool TruncateToInteger(const Number& aValue, std::int64_t& aInteger) {
  if (aValue.IsFloat())
    return FitsInteger(std::trunc(aValue.ToFloat()), aInteger);
  aInteger = aValue.ToInteger();
  return true;
}

bool RoundToInteger(const Number& aValue, std::int64_t& aInteger) {
  if (aValue.IsFloat())
    return FitsInteger(std::round(aValue.ToFloat()), aInteger);
  aInteger = aValue.ToInteger();
  return true;
}

} // namespace krgenicam

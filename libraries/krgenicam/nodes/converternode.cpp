#include "nodes/converternode.h"

#include "nodes/descent.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace krgenicam {

namespace {

constexpr std::string_view kSlopes[] = {"Increasing", "Decreasing", "Varying", "Automatic"};

bool IsAbove(const Number& aLeft, const Number& aRight) {
  if (!aLeft.IsFloat() && !aRight.IsFloat())
    return aLeft.ToInteger() > aRight.ToInteger();
  return aLeft.ToFloat() > aRight.ToFloat();
}

// A place between two limits, in quarters of the way.
Number FindBetween(const Number& aLow, const Number& aHigh, unsigned aQuarters) {
  constexpr unsigned kWhole = 4;
  if (aLow.IsFloat() || aHigh.IsFloat()) {
    const double part = static_cast<double>(aQuarters) / kWhole;
    return Number(aLow.ToFloat() * (1.0 - part) + aHigh.ToFloat() * part);
  }
  const auto low = static_cast<std::uint64_t>(aLow.ToInteger());
  const std::uint64_t width = static_cast<std::uint64_t>(aHigh.ToInteger()) - low;
  return Number(static_cast<std::int64_t>(low + width / kWhole * aQuarters + width % kWhole * aQuarters / kWhole));
}

} // namespace

void ConverterNode::Link(INodeIndex& aIndex) {
  FormulaNode::Link(aIndex);
  mTarget = LinkTo(aIndex, PropertyKind::pValue);
  if (!mTarget.IsSet())
    mTarget = {.name = "?", .line = GetLine()};
  mFrom = Compile(aIndex, PropertyKind::FormulaFrom, "TO");
  mTo = Compile(aIndex, PropertyKind::FormulaTo, "FROM");
  mSlope =
      static_cast<Slope>(TakeWord(aIndex, PropertyKind::Slope, kSlopes, static_cast<std::size_t>(Slope::Automatic)));
  mIsLinear = TakeYesNo(aIndex, PropertyKind::IsLinear, false);
}

KrGenAccessMode ConverterNode::ComputeAccess(Evaluation& aEvaluation, Facet aFacet) {
  const KrGenAccessMode mode =
      mTarget.node ? mTarget.node->GetAccess(aEvaluation, aFacet) : KrGenAccessMode::NotAvailable;
  const bool isComputable = AreVariablesReadable(aEvaluation, mFrom) && AreVariablesReadable(aEvaluation, mTo);
  return isComputable ? mode : CombineAccessModes(mode, KrGenAccessMode::NotAvailable);
}

KrResult ConverterNode::ComputeImplementation(Evaluation& aEvaluation, Number& aImplemented) {
  return GetImplementation(aEvaluation, mTarget, aImplemented);
}

KrResult ConverterNode::ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) {
  Node* target = nullptr;
  if (KrResult result = Follow(mTarget, target); !result.IsOK())
    return result;
  if (KrResult result = ExplainVariables(aEvaluation, mFrom, aAttempt); !result.IsOK())
    return result;
  if (KrResult result = ExplainVariables(aEvaluation, mTo, aAttempt); !result.IsOK())
    return result;
  return ExplainBy(aEvaluation, aForWriting, aAttempt, *target);
}

Number ConverterNode::ToOwnKind(const Number& aValue) const {
  return IsWhole() ? Number(aValue.ToInteger()) : Number(aValue.ToFloat());
}

KrResult ConverterNode::Convert(Evaluation& aEvaluation, const Number& aTargetValue, Number& aValue) {
  const Number target = IsWhole() ? Number(aTargetValue.ToInteger()) : aTargetValue;
  Number value;
  KrResult result = Evaluate(aEvaluation, mFrom, target, value);
  if (result.IsOK())
    aValue = ToOwnKind(value);
  return result;
}

KrResult ConverterNode::Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) {
  if (aFacet == Facet::Increment)
    return ComputeIncrement(aEvaluation, aValue);
  if (aFacet != Facet::Value)
    return ComputeLimit(aEvaluation, aFacet, aValue);
  Node* target = nullptr;
  if (KrResult result = Follow(mTarget, target); !result.IsOK())
    return result;
  Number value;
  if (KrResult result = ReadTarget(aEvaluation, *target, value); !result.IsOK())
    return result;
  return Convert(aEvaluation, value, aValue);
}

KrResult ConverterNode::ReadTarget(Evaluation& aEvaluation, Node& aTarget, Number& aValue) {
  // Only an enumeration has another value as a floating-point number; all others keep their 64 bits.
  if (IsWhole() || aTarget.GetType() != KrGenType::Enumeration)
    return aTarget.GetValue(aEvaluation, aValue);
  double value = 0.0;
  KrResult result = aTarget.GetFloatView(aEvaluation, value);
  if (result.IsOK())
    aValue = Number(value);
  return result;
}

KrResult ConverterNode::ComputeLimit(Evaluation& aEvaluation, Facet aFacet, Number& aValue) {
  aValue = GetNativeLimit(aFacet);
  if (mSlope == Slope::Varying)
    return {};
  Node* target = nullptr;
  if (KrResult result = Follow(mTarget, target); !result.IsOK())
    return result;
  Range range;
  if (KrResult result = FindEnd(aEvaluation, *target, Facet::Minimum, range.low); !result.IsOK())
    return result;
  if (KrResult result = FindEnd(aEvaluation, *target, Facet::Maximum, range.high); !result.IsOK())
    return result;
  Direction direction = mSlope == Slope::Decreasing ? Direction::Falling : Direction::Rising;
  if (mSlope == Slope::Automatic) {
    if (KrResult result = FindDirection(aEvaluation, range, direction); !result.IsOK())
      return result;
  }
  if (direction == Direction::None)
    return {};
  const End& end = (aFacet == Facet::Minimum) != (direction == Direction::Falling) ? range.low : range.high;
  if (end.converted)
    aValue = *end.converted;
  return {};
}

KrResult ConverterNode::FindEnd(Evaluation& aEvaluation, Node& aTarget, Facet aFacet, End& aEnd) {
  if (KrResult result = aTarget.Get(aEvaluation, aFacet, aEnd.target); !result.IsOK())
    return result;
  return aTarget.HasLimit(aEvaluation, aFacet) ? ConvertPlace(aEvaluation, aEnd.target, aEnd.converted) : KrResult();
}

KrResult ConverterNode::ConvertPlace(Evaluation& aEvaluation, const Number& aTargetValue,
                                     std::optional<Number>& aValue) {
  const Number target = IsWhole() ? Number(aTargetValue.ToInteger()) : aTargetValue;
  std::optional<Number> value;
  KrResult result = TryEvaluate(aEvaluation, mFrom, target, value);
  aValue.reset();
  if (value && std::isfinite(value->ToFloat()))
    aValue = ToOwnKind(*value);
  return result;
}

KrResult ConverterNode::FindDirection(Evaluation& aEvaluation, const Range& aRange, Direction& aDirection) {
  aDirection = Direction::None;
  if (aRange.low.converted && aRange.high.converted)
    return ProbeInside(aEvaluation, aRange, aDirection);
  if (!aRange.low.converted && !aRange.high.converted)
    return {};
  // One step inside the end that there is.
  const End& end = aRange.low.converted ? aRange.low : aRange.high;
  const int step = aRange.low.converted ? 1 : -1;
  std::int64_t whole = 0;
  // Beyond the last of all whole numbers nothing is inside.
  if (!end.target.IsFloat() && __builtin_add_overflow(end.target.ToInteger(), std::int64_t{step}, &whole))
    return {};
  const Number place = end.target.IsFloat() ? Number(end.target.ToFloat() + step) : Number(whole);
  std::optional<Number> inside;
  KrResult result = ConvertPlace(aEvaluation, place, inside);
  if (!result.IsOK() || !inside)
    return result;
  const bool isFalling = aRange.low.converted ? IsAbove(*end.converted, *inside) : IsAbove(*inside, *end.converted);
  aDirection = isFalling ? Direction::Falling : Direction::Rising;
  return result;
}

KrResult ConverterNode::ProbeInside(Evaluation& aEvaluation, const Range& aRange, Direction& aDirection) {
  bool rises = false;
  bool falls = false;
  Number last = *aRange.low.converted;
  const auto compare = [&](const Number& aNext) {
    rises = rises || IsAbove(aNext, last);
    falls = falls || IsAbove(last, aNext);
    last = aNext;
  };
  for (const unsigned quarters : {1u, 2u, 3u}) {
    std::optional<Number> inside;
    KrResult result = ConvertPlace(aEvaluation, FindBetween(aRange.low.target, aRange.high.target, quarters), inside);
    if (!result.IsOK() || !inside)
      return result;
    compare(*inside);
  }
  compare(*aRange.high.converted);
  // What goes both ways has its largest or smallest value anywhere.
  if (!rises || !falls)
    aDirection = falls ? Direction::Falling : Direction::Rising;
  return {};
}

bool ConverterNode::HasIncrement(Evaluation& aEvaluation) {
  const Descent descent(aEvaluation, *this);
  if (IsWhole() || !mIsLinear || !descent.Check().IsOK())
    return IsWhole();
  return !mTarget.node || mTarget.node->HasIncrement(aEvaluation);
}

KrResult ConverterNode::ComputeIncrement(Evaluation& aEvaluation, Number& aValue) {
  if (IsWhole()) {
    aValue = Number(1);
    return {};
  }
  Node* target = nullptr;
  if (KrResult result = Follow(mTarget, target); !result.IsOK())
    return result;
  Number increment;
  Number base;
  Number stepped;
  if (!HasIncrement(aEvaluation))
    return {KrResult::Code::InvalidInput, "\"" + std::string(GetName()) + "\" has no increment."};
  if (KrResult result = target->Get(aEvaluation, Facet::Increment, increment); !result.IsOK())
    return result;
  if (KrResult result = Convert(aEvaluation, Number(0), base); !result.IsOK())
    return result;
  if (KrResult result = Convert(aEvaluation, increment, stepped); !result.IsOK())
    return result;
  aValue = Number(std::fabs(stepped.ToFloat() - base.ToFloat()));
  return {};
}

bool ConverterNode::CanHaveValidValues(std::size_t aDepth) {
  if (!mCanHaveValidValues) {
    // As in ValueNode.
    mCanHaveValidValues = true;
    mCanHaveValidValues =
        aDepth >= Evaluation::kMaxDepth || (mTarget.node && mTarget.node->CanHaveValidValues(aDepth + 1));
  }
  return *mCanHaveValidValues;
}

KrResult ConverterNode::GetValidValues(Evaluation& aEvaluation, std::vector<Number>& aValues) {
  aValues.clear();
  const Descent descent(aEvaluation, *this);
  Node* target = nullptr;
  KrResult result = descent.Check();
  if (result.IsOK())
    result = Follow(mTarget, target);
  std::vector<Number> values;
  if (result.IsOK())
    result = target->GetValidValues(aEvaluation, values);
  for (Number& value : values) {
    if (result.IsOK())
      result = Convert(aEvaluation, value, value);
  }
  if (!result.IsOK())
    return result;
  std::ranges::sort(values, [](const Number& aLeft, const Number& aRight) { return IsAbove(aRight, aLeft); });
  const auto repeated = std::unique(values.begin(), values.end());
  values.erase(repeated, values.end());
  aValues = std::move(values);
  return {};
}

KrResult ConverterNode::ToTarget(Evaluation& aEvaluation, Node& aTarget, const Number& aValue, Number& aTargetValue) {
  Number value;
  if (KrResult result = Evaluate(aEvaluation, mTo, ToOwnKind(aValue), value); !result.IsOK())
    return result;
  if (std::isnan(value.ToFloat()))
    return {KrResult::Code::OutOfRange, "\"" + std::string(GetName()) + "\" cannot be set to this value: for \"" +
                                            std::string(aTarget.GetName()) + "\" it would be no number."};
  if (!value.IsFloat() && aTarget.GetType() != KrGenType::Enumeration) {
    aTargetValue = value;
    return {};
  }
  return aTarget.FromFloatView(aEvaluation, PullIntoRange(aEvaluation, aTarget, value.ToFloat()), aTargetValue);
}

double ConverterNode::PullIntoRange(Evaluation& aEvaluation, Node& aTarget, double aValue) {
  constexpr double kRoundingError = 1e-12;
  Number minimum;
  Number maximum;
  if (aTarget.GetType() != KrGenType::Float || !aTarget.Get(aEvaluation, Facet::Minimum, minimum).IsOK() ||
      !aTarget.Get(aEvaluation, Facet::Maximum, maximum).IsOK() || !(minimum.ToFloat() <= maximum.ToFloat()))
    return aValue;
  const double inside = std::clamp(aValue, minimum.ToFloat(), maximum.ToFloat());
  return std::fabs(inside - aValue) <= kRoundingError * std::fabs(aValue) ? inside : aValue;
}

KrResult ConverterNode::VisitTarget(Evaluation& aEvaluation, const Number& aValue, WriteStep aStep) {
  const Descent descent(aEvaluation, *this);
  Node* target = nullptr;
  Number value;
  KrResult result = descent.Check();
  if (result.IsOK())
    result = Follow(mTarget, target);
  if (result.IsOK())
    result = ToTarget(aEvaluation, *target, aValue, value);
  return result.IsOK() ? (target->*aStep)(aEvaluation, value) : result;
}

KrResult ConverterNode::CheckWrite(Evaluation& aEvaluation, const Number& aValue) {
  const KrResult result = CheckNumber(aEvaluation, aValue);
  return result.IsOK() ? VisitTarget(aEvaluation, aValue, &Node::CheckWrite) : result;
}

KrResult ConverterNode::Write(Evaluation& aEvaluation, const Number& aValue) {
  return VisitTarget(aEvaluation, aValue, &Node::WriteAndAsk);
}

} // namespace krgenicam

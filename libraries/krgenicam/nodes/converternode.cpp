#include "nodes/converternode.h"

#include "nodes/descent.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace krgenicam {

namespace {

constexpr std::string_view kSlopes[] = {"Increasing", "Decreasing", "Varying", "Automatic"};

// Whether a limit is none: the end of what its type can hold.
bool IsInfinite(const Number& aLimit) {
  if (aLimit.IsFloat())
    return !(std::fabs(aLimit.ToFloat()) < std::numeric_limits<double>::max());
  return aLimit.ToInteger() == std::numeric_limits<std::int64_t>::min() ||
         aLimit.ToInteger() == std::numeric_limits<std::int64_t>::max();
}

bool IsAbove(const Number& aLeft, const Number& aRight) {
  if (!aLeft.IsFloat() && !aRight.IsFloat())
    return aLeft.ToInteger() > aRight.ToInteger();
  return aLeft.ToFloat() > aRight.ToFloat();
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
  Number minimum;
  Number maximum;
  if (KrResult result = Follow(mTarget, target); !result.IsOK())
    return result;
  if (KrResult result = target->Get(aEvaluation, Facet::Minimum, minimum); !result.IsOK())
    return result;
  if (KrResult result = target->Get(aEvaluation, Facet::Maximum, maximum); !result.IsOK())
    return result;
  const Ends ends{.low = ConvertEnd(aEvaluation, minimum), .high = ConvertEnd(aEvaluation, maximum)};
  bool isFalling = mSlope == Slope::Decreasing;
  if (mSlope == Slope::Automatic && !FindDirection(aEvaluation, ends, minimum, maximum, isFalling))
    return {};
  const std::optional<Number>& end = (aFacet == Facet::Minimum) != isFalling ? ends.low : ends.high;
  if (end)
    aValue = *end;
  return {};
}

std::optional<Number> ConverterNode::ConvertEnd(Evaluation& aEvaluation, const Number& aEnd) {
  Number value;
  // An end at which the formula has no value, as 1/TO has none at 0, is no limit.
  if (IsInfinite(aEnd) || !Convert(aEvaluation, aEnd, value).IsOK() || !std::isfinite(value.ToFloat()))
    return std::nullopt;
  return value;
}

bool ConverterNode::FindDirection(Evaluation& aEvaluation, const Ends& aEnds, const Number& aMinimum,
                                  const Number& aMaximum, bool& aIsFalling) {
  if (aEnds.low && aEnds.high) {
    aIsFalling = IsAbove(*aEnds.low, *aEnds.high);
    return true;
  }
  // One step inside the end that there is.
  const Number& end = aEnds.low ? aMinimum : aMaximum;
  const int step = aEnds.low ? 1 : -1;
  const std::optional<Number> inside =
      ConvertEnd(aEvaluation, end.IsFloat() ? Number(end.ToFloat() + step) : Number(end.ToInteger() + step));
  if (!inside || (!aEnds.low && !aEnds.high))
    return false;
  aIsFalling = aEnds.low ? IsAbove(*aEnds.low, *inside) : IsAbove(*inside, *aEnds.high);
  return true;
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
  const KrResult none(KrResult::Code::InvalidInput, "\"" + std::string(GetName()) + "\" has no increment.");
  if (!mIsLinear || !target->Get(aEvaluation, Facet::Increment, increment).IsOK())
    return none;
  if (KrResult result = Convert(aEvaluation, Number(0), base); !result.IsOK())
    return result;
  if (KrResult result = Convert(aEvaluation, increment, stepped); !result.IsOK())
    return result;
  aValue = Number(std::fabs(stepped.ToFloat() - base.ToFloat()));
  return {};
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
  if (KrResult result = CheckWritable(aEvaluation); !result.IsOK())
    return result;
  if (std::isnan(aValue.ToFloat()))
    return {KrResult::Code::InvalidInput, "\"" + std::string(GetName()) + "\" cannot be set to what is no number."};
  if (KrResult result = CheckRange(aEvaluation, aValue, false); !result.IsOK())
    return result;
  return VisitTarget(aEvaluation, aValue, &Node::CheckWrite);
}

KrResult ConverterNode::Write(Evaluation& aEvaluation, const Number& aValue) {
  return VisitTarget(aEvaluation, aValue, &Node::WriteAndAsk);
}

} // namespace krgenicam

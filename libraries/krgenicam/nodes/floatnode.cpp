#include "nodes/floatnode.h"

#include "description/lexical.h"
#include "nodes/enumerationnode.h"

#include <limits>

namespace krgenicam {

Number FloatNode::GetNativeLimit(Facet aFacet) const {
  constexpr double kLargest = std::numeric_limits<double>::max();
  return Number(aFacet == Facet::Minimum ? -kLargest : kLargest);
}

Number FloatNode::ToOwnLimit(Facet, const Number& aLimit) const {
  return Number(aLimit.ToFloat());
}

std::optional<Number> FloatNode::ParseValue(std::string_view aText) const {
  const std::optional<double> value = ParseFloat(aText);
  return value ? std::optional<Number>(*value) : std::nullopt;
}

KrResult FloatNode::Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) {
  if (aFacet != Facet::Increment)
    return NumberNode::Compute(aEvaluation, aFacet, aValue);
  if (!GetIncrement().IsSet())
    return {KrResult::Code::InvalidInput, "\"" + std::string(GetName()) + "\" has no increment."};
  return GetOwnLimit(aEvaluation, GetIncrement(), aFacet, aValue);
}

KrResult FloatNode::GetTargetLimit(Evaluation& aEvaluation, Node& aTarget, Facet aFacet, Number& aValue) {
  const auto* const enumeration = dynamic_cast<const EnumerationNode*>(&aTarget);
  if (!enumeration)
    return NumberNode::GetTargetLimit(aEvaluation, aTarget, aFacet, aValue);
  aValue = Number(aFacet == Facet::Minimum ? enumeration->GetNumericMinimum() : enumeration->GetNumericMaximum());
  return {};
}

KrResult FloatNode::ReadTarget(Evaluation& aEvaluation, Node& aTarget, Number& aValue) {
  double value = 0.0;
  KrResult result = aTarget.GetFloatView(aEvaluation, value);
  if (result.IsOK())
    aValue = Number(value);
  return result;
}

KrResult FloatNode::ToTarget(Evaluation& aEvaluation, Node& aTarget, const Number& aValue, Number& aTargetValue) {
  Number value;
  KrResult result = aTarget.FromFloatView(aEvaluation, aValue.ToFloat(), value);
  if (result.IsOK())
    aTargetValue = value;
  return result;
}

KrResult FloatNode::CheckWrite(Evaluation& aEvaluation, const Number& aValue) {
  const Number value(aValue.ToFloat());
  const KrResult result = CheckNumber(aEvaluation, value);
  return result.IsOK() ? CheckWriteOrigin(aEvaluation, value) : result;
}

KrResult FloatNode::Write(Evaluation& aEvaluation, const Number& aValue) {
  return WriteOrigin(aEvaluation, Number(aValue.ToFloat()));
}

} // namespace krgenicam

#include "nodes/booleannode.h"

#include "description/lexical.h"

namespace krgenicam {

void BooleanNode::Link(INodeIndex& aIndex) {
  // Needed to take the value.
  mOnValue = TakeInteger(aIndex, PropertyKind::OnValue, mOnValue);
  mOffValue = TakeInteger(aIndex, PropertyKind::OffValue, mOffValue);
  ValueNode::Link(aIndex);
}

std::optional<Number> BooleanNode::ParseValue(std::string_view aText) const {
  const std::optional<bool> value = ParseYesNo(aText);
  return value ? std::optional<Number>(*value ? mOnValue : mOffValue) : std::nullopt;
}

KrResult BooleanNode::Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) {
  if (aFacet != Facet::Value) {
    aValue = Number(aFacet == Facet::Minimum ? 0 : 1);
    return {};
  }
  Number value;
  if (KrResult result = ReadOrigin(aEvaluation, value); !result.IsOK())
    return result;
  const bool isOn = value.ToInteger() == mOnValue || value.ToInteger() != mOffValue;
  aValue = Number(isOn ? 1 : 0);
  return {};
}

KrResult BooleanNode::CheckWrite(Evaluation& aEvaluation, const Number& aValue) {
  const KrResult result = CheckNumber(aEvaluation, aValue);
  return result.IsOK() ? CheckWriteOrigin(aEvaluation, Number(aValue.ToInteger() != 0 ? mOnValue : mOffValue)) : result;
}

KrResult BooleanNode::Write(Evaluation& aEvaluation, const Number& aValue) {
  return WriteOrigin(aEvaluation, Number(aValue.ToInteger() != 0 ? mOnValue : mOffValue));
}

} // namespace krgenicam

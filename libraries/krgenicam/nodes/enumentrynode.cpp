#include "nodes/enumentrynode.h"

#include "description/lexical.h"

#include <cmath>

namespace krgenicam {

EnumEntryNode::EnumEntryNode(const Description& aDescription, const NodeDescription& aNode)
    : Node(aDescription, aNode), mSymbolic(GetText(PropertyKind::Symbolic)) {
  if (mSymbolic.empty())
    mSymbolic = GetName();
  const std::optional<std::int64_t> value = ParseInteger(GetText(PropertyKind::Value));
  mHasValue = value.has_value();
  mValue = value.value_or(0);
  const std::optional<double> numeric = ParseFloat(GetText(PropertyKind::NumericValue));
  mNumericValue = numeric && !std::isnan(*numeric) ? *numeric : static_cast<double>(mValue);
}

void EnumEntryNode::Link(INodeIndex& aIndex) {
  Node::Link(aIndex);
  const Property* const value = FindProperty(PropertyKind::Value);
  if (!mHasValue && value)
    AddWordFault(aIndex, *value, "a whole number of 64 bits");
  TakeFloat(aIndex, PropertyKind::NumericValue, mNumericValue);
  mIsSelfClearing = TakeYesNo(aIndex, PropertyKind::IsSelfClearing, false);
}

bool EnumEntryNode::IsAvailable(Evaluation& aEvaluation) {
  return IsReadable(GetAccess(aEvaluation, Facet::AccessUnlocked));
}

KrResult EnumEntryNode::Compute(Evaluation&, Facet, Number& aValue) {
  aValue = Number(mValue);
  return {};
}

} // namespace krgenicam

#include "nodes/numbernode.h"

#include "description/lexical.h"
#include "nodes/descent.h"

#include <algorithm>
#include <cmath>

namespace krgenicam {

namespace {

/// More valid values of a node are not taken.
constexpr std::size_t kMostValidValues = 65536;

bool IsLess(const Number& aLeft, const Number& aRight) {
  if (!aLeft.IsFloat() && !aRight.IsFloat())
    return aLeft.ToInteger() < aRight.ToInteger();
  return aLeft.ToFloat() < aRight.ToFloat();
}

} // namespace

void NumberNode::Link(INodeIndex& aIndex) {
  ValueNode::Link(aIndex);
  mMinimum = TakeLimit(aIndex, PropertyKind::Min, PropertyKind::pMin);
  mMaximum = TakeLimit(aIndex, PropertyKind::Max, PropertyKind::pMax);
  mIncrement = TakeLimit(aIndex, PropertyKind::Inc, PropertyKind::pInc);
  TakeValidValues(aIndex);
  mShown = TakeShown(aIndex);
}

NumberNode::Limit NumberNode::TakeLimit(INodeIndex& aIndex, PropertyKind aConstant, PropertyKind aLink) {
  Limit limit;
  limit.link = LinkTo(aIndex, aLink);
  const Property* const property = FindProperty(aConstant);
  if (limit.link.IsSet() || !property)
    return limit;
  limit.constant = ParseValue(property->text);
  if (limit.constant && std::isnan(limit.constant->ToFloat()))
    limit.constant.reset();
  if (!limit.constant)
    AddWordFault(aIndex, *property, GetWantedText());
  return limit;
}

void NumberNode::TakeValidValues(INodeIndex& aIndex) {
  const Property* const property = FindProperty(PropertyKind::ValidValueSet);
  if (!property)
    return;
  std::string_view rest = property->text;
  while (!rest.empty()) {
    const std::size_t end = rest.find_first_of(";,");
    const std::string_view text = Trim(rest.substr(0, end));
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (text.empty())
      continue;
    if (mValidValues.size() == kMostValidValues) {
      aIndex.AddFault(*this, property->line,
                      "Of the valid values those behind the first " + std::to_string(kMostValidValues) +
                          " are left out.");
      break;
    }
    TakeValidValue(aIndex, *property, text);
  }
  std::ranges::sort(mValidValues, IsLess);
  const auto repeated = std::unique(mValidValues.begin(), mValidValues.end());
  mValidValues.erase(repeated, mValidValues.end());
  mValidValues.shrink_to_fit();
}

void NumberNode::TakeValidValue(INodeIndex& aIndex, const Property& aProperty, std::string_view aText) {
  const std::optional<Number> value = ParseValue(aText);
  if (value && !std::isnan(value->ToFloat()))
    mValidValues.push_back(*value);
  else
    AddWordFault(aIndex, aProperty, "a list of numbers, parted by semicolons");
}

KrResult NumberNode::Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) {
  if (aFacet == Facet::Minimum || aFacet == Facet::Maximum)
    return ComputeLimit(aEvaluation, aFacet, aValue);
  return ReadOrigin(aEvaluation, aValue);
}

KrResult NumberNode::ComputeLimit(Evaluation& aEvaluation, Facet aFacet, Number& aValue) {
  const bool isMinimum = aFacet == Facet::Minimum;
  const Limit& own = isMinimum ? mMinimum : mMaximum;
  if (own.IsSet())
    return GetOwnLimit(aEvaluation, own, aFacet, aValue);
  Origin origin;
  if (KrResult result = PickOrigin(aEvaluation, origin); !result.IsOK())
    return result;
  Number limit = GetNativeLimit(aFacet);
  const auto narrow = [&](Node& aTarget) {
    Number targetLimit;
    KrResult result = GetTargetLimit(aEvaluation, aTarget, aFacet, targetLimit);
    if (!result.IsOK())
      return result;
    targetLimit = ToOwnLimit(aFacet, targetLimit);
    if (isMinimum ? IsLess(limit, targetLimit) : IsLess(targetLimit, limit))
      limit = targetLimit;
    return result;
  };
  KrResult result = origin.node ? narrow(*origin.node) : KrResult();
  for (const NodeLink& link : GetTargets()) {
    Node* copy = nullptr;
    if (result.IsOK())
      result = Follow(link, copy);
    if (result.IsOK() && copy != origin.node)
      result = narrow(*copy);
  }
  if (result.IsOK())
    aValue = limit;
  return result;
}

KrResult NumberNode::GetTargetLimit(Evaluation& aEvaluation, Node& aTarget, Facet aFacet, Number& aValue) {
  return aTarget.Get(aEvaluation, aFacet, aValue);
}

KrResult NumberNode::GetOwnLimit(Evaluation& aEvaluation, const Limit& aLimit, Facet aFacet, Number& aValue) {
  Number limit;
  if (aLimit.constant) {
    limit = *aLimit.constant;
  } else {
    Node* node = nullptr;
    if (KrResult result = Follow(aLimit.link, node); !result.IsOK())
      return result;
    if (KrResult result = node->GetValue(aEvaluation, limit); !result.IsOK())
      return result;
  }
  if (std::isnan(limit.ToFloat()))
    return MakeFault(aLimit.link.line, "a limit or increment is no number at the moment.");
  aValue = ToOwnLimit(aFacet, limit);
  return {};
}

KrResult NumberNode::GetValidValues(Evaluation& aEvaluation, std::vector<Number>& aValues) {
  std::vector<Number> values = mValidValues;
  if (values.empty()) {
    const Descent descent(aEvaluation, *this);
    Origin origin;
    KrResult result = descent.Check();
    if (result.IsOK())
      result = PickOrigin(aEvaluation, origin);
    if (result.IsOK() && origin.node)
      result = origin.node->GetValidValues(aEvaluation, values);
    if (!result.IsOK())
      return result;
  }
  aValues.clear();
  if (values.empty())
    return {};
  Number minimum;
  Number maximum;
  if (KrResult result = Get(aEvaluation, Facet::Minimum, minimum); !result.IsOK())
    return result;
  if (KrResult result = Get(aEvaluation, Facet::Maximum, maximum); !result.IsOK())
    return result;
  for (const Number& value : values) {
    const Number own = ToOwnLimit(Facet::Value, value);
    if (!IsLess(own, minimum) && !IsLess(maximum, own))
      aValues.push_back(own);
  }
  return {};
}

bool NumberNode::HasLimit(Evaluation& aEvaluation, Facet aFacet) {
  const Limit& own = aFacet == Facet::Minimum ? mMinimum : mMaximum;
  const Descent descent(aEvaluation, *this);
  Origin origin;
  const bool isHandedOn =
      !own.IsSet() && descent.Check().IsOK() && PickOrigin(aEvaluation, origin).IsOK() && origin.node;
  if (!isHandedOn || IsNarrow())
    return Node::HasLimit(aEvaluation, aFacet);
  return origin.node->HasLimit(aEvaluation, aFacet) || std::ranges::any_of(GetTargets(), [&](const NodeLink& aLink) {
           return aLink.node && aLink.node != origin.node && aLink.node->HasLimit(aEvaluation, aFacet);
         });
}

NodeShown NumberNode::GetShown(Evaluation& aEvaluation) {
  NodeShown shown = mShown;
  const Descent descent(aEvaluation, *this);
  Origin origin;
  if (!descent.Check().IsOK() || !PickOrigin(aEvaluation, origin).IsOK() || !origin.node)
    return shown;
  // What the node itself says wins over what the one behind it says.
  const NodeShown behind = origin.node->GetShown(aEvaluation);
  if (!FindProperty(PropertyKind::Representation))
    shown.representation = behind.representation;
  if (!FindProperty(PropertyKind::Unit))
    shown.unit = behind.unit;
  if (!FindProperty(PropertyKind::DisplayNotation))
    shown.notation = behind.notation;
  if (!FindProperty(PropertyKind::DisplayPrecision))
    shown.precision = behind.precision;
  return shown;
}

} // namespace krgenicam

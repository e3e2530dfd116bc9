#include "nodes/integernode.h"

#include "nodes/numbertext.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace krgenicam {

namespace {

// The first number above the largest one of 64 bits.
constexpr double kBeyond = 9223372036854775808.0;
constexpr std::int64_t kLargestIPv4 = 0xFFFFFFFF;
constexpr std::int64_t kLargestMAC = 0xFFFFFFFFFFFF;

} // namespace

Number IntegerNode::GetNativeLimit(Facet aFacet) const {
  const KrGenRepresentation representation = GetOwnRepresentation();
  const bool isMinimum = aFacet == Facet::Minimum;
  if (representation == KrGenRepresentation::IPV4Address)
    return Number(isMinimum ? 0 : kLargestIPv4);
  if (representation == KrGenRepresentation::MACAddress)
    return Number(isMinimum ? 0 : kLargestMAC);
  return Number(isMinimum ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max());
}

bool IntegerNode::IsNarrow() const {
  return GetOwnRepresentation() == KrGenRepresentation::IPV4Address ||
         GetOwnRepresentation() == KrGenRepresentation::MACAddress;
}

Number IntegerNode::ToOwnLimit(Facet aFacet, const Number& aLimit) const {
  if (!aLimit.IsFloat())
    return aLimit;
  // The whole numbers within the limits.
  const double limit = aLimit.ToFloat();
  if (aFacet == Facet::Minimum)
    return Number(Number(std::ceil(limit)).ToInteger());
  return Number(Number(aFacet == Facet::Maximum ? std::floor(limit) : limit).ToInteger());
}

KrResult IntegerNode::Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) {
  return aFacet == Facet::Increment ? ComputeIncrement(aEvaluation, aValue)
                                    : NumberNode::Compute(aEvaluation, aFacet, aValue);
}

KrResult IntegerNode::ComputeIncrement(Evaluation& aEvaluation, Number& aValue) {
  Number increment(1);
  if (GetIncrement().IsSet()) {
    if (KrResult result = GetOwnLimit(aEvaluation, GetIncrement(), Facet::Increment, increment); !result.IsOK())
      return result;
  } else {
    Origin origin;
    if (KrResult result = PickOrigin(aEvaluation, origin); !result.IsOK())
      return result;
    if (origin.node && origin.node->GetType() == KrGenType::Integer) {
      if (KrResult result = origin.node->Get(aEvaluation, Facet::Increment, increment); !result.IsOK())
        return result;
    }
  }
  aValue = Number(std::max<std::int64_t>(increment.ToInteger(), 1));
  return {};
}

bool IntegerNode::AreTargetsAlike(Evaluation& aEvaluation) {
  if (GetIncrement().IsSet())
    return true;
  std::int64_t first = 0;
  for (const NodeLink& link : GetTargets()) {
    Number increment(1);
    if (!link.node)
      return false;
    const bool hasIncrement = link.node->GetType() == KrGenType::Integer;
    if (hasIncrement && !link.node->Get(aEvaluation, Facet::Increment, increment).IsOK())
      return false;
    if (first != 0 && increment.ToInteger() != first)
      return false;
    first = increment.ToInteger();
  }
  return true;
}

KrResult IntegerNode::ReadTarget(Evaluation& aEvaluation, Node& aTarget, Number& aValue) {
  Number value;
  if (KrResult result = aTarget.GetValue(aEvaluation, value); !result.IsOK())
    return result;
  if (std::isnan(value.ToFloat()))
    return {KrResult::Code::BadData, "\"" + std::string(GetName()) + "\" has no value: \"" +
                                         std::string(aTarget.GetName()) + "\" is no number at the moment."};
  aValue = Number(value.ToInteger());
  return {};
}

KrResult IntegerNode::CheckValid(Evaluation& aEvaluation, std::int64_t aValue, bool& aIsListed) {
  constexpr std::size_t kMostNamed = 20;
  if (!CanHaveValidValues(0))
    return {};
  std::vector<Number> values;
  if (KrResult result = GetValidValues(aEvaluation, values); !result.IsOK())
    return result;
  aIsListed = !values.empty() || !GetOwnValidValues().empty();
  if (!aIsListed || std::ranges::find(values, Number(aValue)) != values.end())
    return {};
  std::string list;
  for (std::size_t i = 0; i < std::min(values.size(), kMostNamed); ++i)
    list += (i == 0 ? " " : ", ") + FormatNumber(values[i]);
  return {KrResult::Code::OutOfRange, "\"" + std::string(GetName()) + "\" cannot be set to " + std::to_string(aValue) +
                                          ": it takes only" + (values.empty() ? " what is out of its range" : list) +
                                          (values.size() > kMostNamed ? "…." : ".")};
}

KrResult IntegerNode::CheckWrite(Evaluation& aEvaluation, const Number& aValue) {
  const double number = aValue.ToFloat();
  // What has no 64 bits, or is no number, is compared as it is.
  const bool isWhole = !aValue.IsFloat() || (number >= -kBeyond && number < kBeyond);
  const Number value = isWhole ? Number(aValue.ToInteger()) : aValue;
  if (KrResult result = CheckNumber(aEvaluation, value); !result.IsOK())
    return result;
  bool isListed = false;
  if (KrResult result = CheckValid(aEvaluation, value.ToInteger(), isListed); !result.IsOK())
    return result;
  if (KrResult result = CheckRange(aEvaluation, value, !isListed); !result.IsOK())
    return result;
  return CheckWriteOrigin(aEvaluation, Number(value.ToInteger()));
}

KrResult IntegerNode::Write(Evaluation& aEvaluation, const Number& aValue) {
  return WriteOrigin(aEvaluation, Number(aValue.ToInteger()));
}

} // namespace krgenicam

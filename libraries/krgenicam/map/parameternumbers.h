#pragma once
// What the public classes of numbers ask alike, each as one operation on the map.

#include "map/nodemap.h"

#include <concepts>
#include <vector>

namespace krgenicam {

template <typename Value>
Value ToNumberOf(const Number& aNumber) {
  if constexpr (std::floating_point<Value>)
    return aNumber.ToFloat();
  else
    return aNumber.ToInteger();
}

template <typename Value>
KrResult GetNumber(NodeMap& aMap, Node& aNode, Value& aValue) {
  return aMap.Run([&](Evaluation& aEvaluation) {
    Number number;
    KrResult result = aNode.GetValue(aEvaluation, number);
    if (result.IsOK())
      aValue = ToNumberOf<Value>(number);
    return result;
  });
}

/// AccessDenied, with the reason, for what is neither readable nor writable at the moment.
inline KrResult CheckAvailable(Evaluation& aEvaluation, Node& aNode) {
  const KrGenAccessMode access = aNode.GetAccess(aEvaluation);
  return IsReadable(access) || IsWritable(access) ? KrResult() : aNode.ExplainAccess(aEvaluation, false);
}

/// Minimum, maximum or increment, of what is available.
template <typename Value>
KrResult GetLimit(NodeMap& aMap, Node& aNode, Facet aFacet, Value& aValue) {
  return aMap.Run([&](Evaluation& aEvaluation) {
    Number number;
    KrResult result = CheckAvailable(aEvaluation, aNode);
    if (result.IsOK())
      result = aNode.Get(aEvaluation, aFacet, number);
    if (result.IsOK())
      aValue = ToNumberOf<Value>(number);
    return result;
  });
}

template <typename Value>
KrResult GetValidNumbers(NodeMap& aMap, Node& aNode, std::vector<Value>& aValues) {
  return aMap.Run([&](Evaluation& aEvaluation) {
    std::vector<Number> numbers;
    KrResult result = CheckAvailable(aEvaluation, aNode);
    if (result.IsOK())
      result = aNode.GetValidValues(aEvaluation, numbers);
    if (!result.IsOK())
      return result;
    aValues.clear();
    for (const Number& number : numbers)
      aValues.push_back(ToNumberOf<Value>(number));
    return result;
  });
}

/// How the number is best shown; what cannot be found out is as where nothing is said.
template <typename Value, typename Take>
KrResult GetShown(NodeMap& aMap, Node& aNode, Value& aValue, Take aTake) {
  return aMap.Run([&](Evaluation& aEvaluation) {
    aValue = aTake(aNode.GetShown(aEvaluation));
    return KrResult();
  });
}

} // namespace krgenicam

#include "krgenicam/krgeninteger.h"

#include "map/parameternumbers.h"

#include <algorithm>

using krgenicam::Evaluation;
using krgenicam::Facet;
using krgenicam::NodeShown;
using krgenicam::Number;

KrResult KrGenInteger::GetValue(std::int64_t& aValue) {
  return krgenicam::GetNumber(mMap, mNode, aValue);
}

KrResult KrGenInteger::SetValue(std::int64_t aValue) {
  return mMap.Run([&](Evaluation& aEvaluation) { return mNode.SetValue(aEvaluation, Number(aValue)); });
}

KrResult KrGenInteger::GetMin(std::int64_t& aMin) {
  return krgenicam::GetLimit(mMap, mNode, Facet::Minimum, aMin);
}

KrResult KrGenInteger::GetMax(std::int64_t& aMax) {
  return krgenicam::GetLimit(mMap, mNode, Facet::Maximum, aMax);
}

KrResult KrGenInteger::GetIncrement(std::int64_t& aIncrement) {
  std::int64_t increment = 1;
  KrResult result = krgenicam::GetLimit(mMap, mNode, Facet::Increment, increment);
  if (result.IsOK())
    aIncrement = std::max<std::int64_t>(increment, 1);
  return result;
}

KrResult KrGenInteger::GetValidValues(std::vector<std::int64_t>& aValues) {
  return krgenicam::GetValidNumbers(mMap, mNode, aValues);
}

KrResult KrGenInteger::GetRepresentation(KrGenRepresentation& aRepresentation) {
  return krgenicam::GetShown(mMap, mNode, aRepresentation,
                             [](const NodeShown& aShown) { return aShown.representation; });
}

KrResult KrGenInteger::GetUnit(KrString& aUnit) {
  return krgenicam::GetShown(mMap, mNode, aUnit, [](const NodeShown& aShown) { return aShown.unit; });
}

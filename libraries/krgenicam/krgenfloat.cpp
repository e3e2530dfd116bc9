#include "krgenicam/krgenfloat.h"

#include "map/parameternumbers.h"

#include <cmath>
#include <string>

using krgenicam::Evaluation;
using krgenicam::Facet;
using krgenicam::NodeShown;
using krgenicam::Number;

KrResult KrGenFloat::GetValue(double& aValue) {
  return krgenicam::GetNumber(mMap, mNode, aValue);
}

KrResult KrGenFloat::SetValue(double aValue) {
  if (std::isnan(aValue))
    return {KrResult::Code::InvalidInput,
            "\"" + std::string(mNode.GetName()) + "\" cannot be set to what is no number (NaN)."};
  return mMap.Run([&](Evaluation& aEvaluation) { return mNode.SetValue(aEvaluation, Number(aValue)); });
}

KrResult KrGenFloat::GetMin(double& aMin) {
  return krgenicam::GetLimit(mMap, mNode, Facet::Minimum, aMin);
}

KrResult KrGenFloat::GetMax(double& aMax) {
  return krgenicam::GetLimit(mMap, mNode, Facet::Maximum, aMax);
}

bool KrGenFloat::HasIncrement() {
  double increment = 0.0;
  return GetIncrement(increment).IsOK();
}

KrResult KrGenFloat::GetIncrement(double& aIncrement) {
  return mMap.Run([&](Evaluation& aEvaluation) {
    Number increment;
    KrResult result = krgenicam::CheckAvailable(aEvaluation, mNode);
    if (result.IsOK() && !mNode.HasIncrement(aEvaluation))
      return KrResult(KrResult::Code::NotFound, "\"" + std::string(mNode.GetName()) + "\" has no increment.");
    if (result.IsOK())
      result = mNode.Get(aEvaluation, Facet::Increment, increment);
    if (result.IsOK())
      aIncrement = increment.ToFloat();
    return result;
  });
}

KrResult KrGenFloat::GetValidValues(std::vector<double>& aValues) {
  return krgenicam::GetValidNumbers(mMap, mNode, aValues);
}

KrResult KrGenFloat::GetRepresentation(KrGenRepresentation& aRepresentation) {
  return krgenicam::GetShown(mMap, mNode, aRepresentation,
                             [](const NodeShown& aShown) { return aShown.representation; });
}

KrResult KrGenFloat::GetUnit(KrString& aUnit) {
  return krgenicam::GetShown(mMap, mNode, aUnit, [](const NodeShown& aShown) { return aShown.unit; });
}

KrResult KrGenFloat::GetDisplayNotation(KrGenDisplayNotation& aNotation) {
  return krgenicam::GetShown(mMap, mNode, aNotation, [](const NodeShown& aShown) { return aShown.notation; });
}

KrResult KrGenFloat::GetDisplayPrecision(std::int64_t& aDigits) {
  return krgenicam::GetShown(mMap, mNode, aDigits, [](const NodeShown& aShown) { return aShown.precision; });
}

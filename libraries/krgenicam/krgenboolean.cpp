#include "krgenicam/krgenboolean.h"

#include "map/parameternumbers.h"

using krgenicam::Evaluation;
using krgenicam::Number;

KrResult KrGenBoolean::GetValue(bool& aValue) {
  std::int64_t value = 0;
  KrResult result = krgenicam::GetNumber(mMap, mNode, value);
  if (result.IsOK())
    aValue = value != 0;
  return result;
}

KrResult KrGenBoolean::SetValue(bool aValue) {
  return mMap.Run([&](Evaluation& aEvaluation) { return mNode.SetValue(aEvaluation, Number(aValue ? 1 : 0)); });
}

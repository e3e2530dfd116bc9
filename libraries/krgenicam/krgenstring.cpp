#include "krgenicam/krgenstring.h"

#include "map/parameternumbers.h"
#include "map/parametertext.h"

#include <string>

using krgenicam::Evaluation;

KrResult KrGenString::GetValue(KrString& aValue) {
  return mMap.Run([&](Evaluation& aEvaluation) {
    std::string text;
    KrResult result = krgenicam::GetText(aEvaluation, mNode, text);
    if (result.IsOK())
      aValue = text;
    return result;
  });
}

KrResult KrGenString::SetValue(const KrString& aValue) {
  return mMap.Run([&](Evaluation& aEvaluation) { return mNode.SetText(aEvaluation, aValue.ToUtf8()); });
}

KrResult KrGenString::GetMaxLength(std::int64_t& aLength) {
  return mMap.Run([&](Evaluation& aEvaluation) {
    std::int64_t length = 0;
    KrResult result = krgenicam::CheckAvailable(aEvaluation, mNode);
    if (result.IsOK())
      result = mNode.GetMaxTextLength(aEvaluation, length);
    if (result.IsOK())
      aLength = length;
    return result;
  });
}

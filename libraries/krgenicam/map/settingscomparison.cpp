#include "map/settingscomparison.h"

#include "description/lexical.h"
#include "krgenicam/krgenboolean.h"
#include "krgenicam/krgenenum.h"
#include "krgenicam/krgenenumentry.h"
#include "krgenicam/krgenfloat.h"
#include "krgenicam/krgeninteger.h"

#include <algorithm>
#include <cmath>

namespace krgenicam {

namespace {

bool IsSameFloat(KrGenFloat& aFloat, const std::string& aText, const std::string& aValue) {
  const std::optional<double> wanted = ParseFloat(aText);
  const std::optional<double> value = ParseFloat(aValue);
  if (!wanted || !value)
    return false;
  double increment = 0.0;
  if (!aFloat.HasIncrement() || !aFloat.GetIncrement(increment).IsOK())
    increment = 0.0;
  const double tolerance =
      std::max(kFloatTolerance * std::max(std::abs(*wanted), std::abs(*value)), std::abs(increment) / 2);
  return *wanted == *value || std::abs(*wanted - *value) <= tolerance;
}

bool IsSameEntry(KrGenEnum& aEnum, const std::string& aText) {
  const std::optional<std::int64_t> wanted = ParseInteger(aText);
  std::int64_t value = 0;
  return wanted && aEnum.GetValue(value).IsOK() && value == *wanted;
}

bool IsSame(KrGenParameter& aParameter, const std::string& aText, const std::string& aValue) {
  if (aText == aValue)
    return true;
  switch (aParameter.GetType()) {
  case KrGenType::Integer:
    return ParseInteger(aText) && ParseInteger(aText) == ParseInteger(aValue);
  case KrGenType::Boolean:
    return ParseYesNo(aText) && ParseYesNo(aText) == ParseYesNo(aValue);
  case KrGenType::Register:
    return EqualsIgnoringCase(aText, aValue);
  case KrGenType::Float:
    return IsSameFloat(dynamic_cast<KrGenFloat&>(aParameter), aText, aValue);
  case KrGenType::Enumeration:
    return IsSameEntry(dynamic_cast<KrGenEnum&>(aParameter), aText);
  case KrGenType::String:
  case KrGenType::Command:
  case KrGenType::Other:
    break;
  }
  return false;
}

} // namespace

KrResult CompareWithText(KrGenParameter& aParameter, const KrString& aText, bool& aIsSame, KrString& aValue) {
  if (KrResult read = aParameter.ToString(aValue); !read.IsOK())
    return read;
  aIsSame = IsSame(aParameter, aText.ToUtf8(), aValue.ToUtf8());
  return {};
}

} // namespace krgenicam

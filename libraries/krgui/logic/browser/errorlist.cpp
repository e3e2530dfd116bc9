#include "logic/browser/errorlist.h"

#include "logic/browser/treeitemdata.h"

#include <algorithm>

namespace krgui {

namespace {

constexpr int kMaxEntries = 16;

} // namespace

bool HasErrors(const ErrorSource& aSource) {
  return std::any_of(aSource.features->begin(), aSource.features->end(),
                     [](const auto& aFeature) { return aFeature->HasError(); });
}

KrString FormatErrors(const ErrorSource& aSource) {
  const KrString prefix = aSource.prefix.IsEmpty() ? KrString() : aSource.prefix + ", ";
  KrString text;
  int count = 0;
  for (const auto& feature : *aSource.features) {
    if (!feature->HasError())
      continue;
    if (count > 0)
      text += "\r\n";
    text += "[" + prefix + feature->GetName() + "] " + feature->GetError();
    if (++count == kMaxEntries) {
      // Whether more follow is not looked at.
      text += "...";
      break;
    }
  }
  return text;
}

} // namespace krgui

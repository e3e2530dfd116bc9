#include "logic/browser/errorlist.h"

#include "logic/browser/treeitemdata.h"

#include <optional>

namespace krgui {

namespace {

constexpr int kMaxEntries = 16;

} // namespace

KrString FormatErrors(const ErrorSource& aSource) {
  const KrString prefix = aSource.prefix.IsEmpty() ? KrString() : aSource.prefix + ", ";
  KrString text;
  int count = 0;
  for (const auto& feature : *aSource.features) {
    const std::optional<KrString> error = feature->FindError();
    if (!error)
      continue;
    if (count > 0)
      text += "\r\n";
    text += "[" + prefix + feature->GetName() + "] " + *error;
    if (++count == kMaxEntries) {
      // Whether more follow is not looked at.
      text += "...";
      break;
    }
  }
  return text;
}

} // namespace krgui

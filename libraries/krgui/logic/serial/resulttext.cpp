#include "logic/serial/resulttext.h"

#include <string>

namespace krgui {

namespace {

/// Without the source location that stands before the first blank; a text without a blank is left whole.
std::string CutSourceLocation(const std::string& aDescription) {
  if (aDescription.find(".cpp:") == std::string::npos)
    return aDescription;
  const std::size_t blank = aDescription.find(' ');
  return blank == std::string::npos ? aDescription : aDescription.substr(blank + 1);
}

} // namespace

KrString FormatResultError(const KrString& aText, const KrResult& aResult) {
  if (aResult.IsOK())
    return aText;
  return aText + "\r\n" + aResult.GetCodeString() + ": " + CutSourceLocation(aResult.GetDescription().ToUtf8());
}

} // namespace krgui

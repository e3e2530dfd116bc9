#include "logic/browser/shownvalue.h"

#include "krgenicam/krgenstring.h"
#include "logic/browser/valuetext.h"

#include <utility>

namespace krgui {

KrString GetShownValue(const RowSnapshot& aRow) {
  if (!aRow.isRead)
    return {};
  if (!aRow.access.isImplemented)
    return kNotImplementedText;
  return aRow.access.isAvailable ? aRow.value : KrString(kNotAvailableText);
}

bool HasShownValue(const RowSnapshot& aRow) {
  return aRow.isRead && aRow.access.isImplemented && aRow.access.isAvailable && !aRow.value.IsEmpty();
}

bool TakesValue(const RowSnapshot& aRow) {
  return aRow.access.isWritable && aRow.access.isAvailable;
}

bool IsEditable(const RowSnapshot& aRow) {
  return TakesValue(aRow) && !aRow.isTooLongToEdit;
}

std::optional<KrString> ReadCutText(const TreeItemData& aNode) {
  if (!aNode.GetSnapshot().isCut)
    return std::nullopt;
  auto* const string = dynamic_cast<KrGenString*>(aNode.GetParameter());
  KrString text;
  return string != nullptr && string->GetValue(text).IsOK() ? std::optional(std::move(text)) : std::nullopt;
}

} // namespace krgui

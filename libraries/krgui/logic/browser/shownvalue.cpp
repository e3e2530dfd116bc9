#include "logic/browser/shownvalue.h"

#include "logic/browser/valuetext.h"

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

bool IsEditable(const RowSnapshot& aRow) {
  return aRow.access.isWritable && aRow.access.isAvailable && !aRow.isCut;
}

} // namespace krgui

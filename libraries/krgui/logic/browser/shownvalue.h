#pragma once
// What a feature's row shows in the place of its value, and in which of the two colours.

#include "krbase/krstring.h"
#include "logic/browser/treeitemdata.h"

namespace krgui {

/// The value; the words for a feature that is not implemented or not available once it has been read.
KrString GetShownValue(const RowSnapshot& aRow);
/// Whether the row has a value of its own to show, rather than such words or nothing yet.
bool HasShownValue(const RowSnapshot& aRow);
/// Whether the user could change the value: shown as text that can be edited, else greyed. A text that was cut cannot
/// be.
bool IsEditable(const RowSnapshot& aRow);

} // namespace krgui

#pragma once
// What a feature's row shows in the place of its value, and in which of the two colours.

#include "krbase/krstring.h"
#include "logic/browser/treeitemdata.h"

#include <optional>

namespace krgui {

/// The value; the words for a feature that is not implemented or not available once it has been read.
KrString GetShownValue(const RowSnapshot& aRow);
/// Whether the row has a value of its own to show, rather than such words or nothing yet.
bool HasShownValue(const RowSnapshot& aRow);
/// Whether the feature takes another value.
bool TakesValue(const RowSnapshot& aRow);
/// Whether the user could change the value: shown as text that can be edited, else greyed. A text that is too long to
/// be edited cannot be.
bool IsEditable(const RowSnapshot& aRow);
/// The text that the device has, where the row has its beginning alone: asks the device, and waits for it. Nothing
/// where the row has it all, and where it cannot be read.
std::optional<KrString> ReadCutText(const TreeItemData& aNode);

} // namespace krgui

#pragma once
// What the user can copy of a row.

#include "krbase/krstring.h"

#include <optional>

namespace krgui {

class TreeItemData;

enum class RowPart {
  Row, ///< Name and value, or the name where there is no value; in a line of its own the error's text where there is
       ///< one.
  Name,
  Value,
  NameAndValue, ///< As "name = value".
  Error,
};

/// The text of a part, the name as the row shows it; nothing where the row has no such part: a category has no value,
/// and neither has a feature that was not read, is not implemented or not available.
std::optional<KrString> GetRowPart(const TreeItemData& aNode, RowPart aPart);
/// As GetRowPart, but with the whole of a text of which the row has the beginning alone: may wait for the device. What
/// it does not say stays cut.
std::optional<KrString> ReadRowPart(const TreeItemData& aNode, RowPart aPart);

} // namespace krgui

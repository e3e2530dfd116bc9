#pragma once
// Texts of devices as they may be written to a terminal, in columns.

#include "krbase/krstring.h"

#include <string>
#include <vector>

namespace krapps {

/// A text in one line as a cell: what a terminal would obey or a reader of columns stumble over is replaced — control
/// characters by '?', runs of blanks by one — and the empty text is "-".
std::string MakeCell(const KrString& aText);

/// A text in one line as a field between tabs: control characters, tabs and line ends among them, and marks that turn
/// or hide text become '?'; blanks stay, and the empty text stays empty.
std::string MakeField(const KrString& aText);

/// A number with so many digits behind a point, whatever the locale says of points.
std::string FormatFixed(double aValue, int aDigits);

/// Lines of cells, each column as wide as its widest cell and parted from the next by two blanks.
std::string AlignColumns(const std::vector<std::vector<std::string>>& aRows);

} // namespace krapps

#pragma once
// A node's rows as lines of text, so that a failing test shows them.

#include "logic/finder/treeiteminfo.h"

#include <string>
#include <vector>

inline std::string WriteColour(krgui::RowColour aColour) {
  switch (aColour) {
  case -1:
    return "";
  case 0xFFFFFF:
    return " [white]";
  case 0x00FFFF:
    return " [yellow]";
  case 0x0000D0:
    return " [red]";
  default:
    return " [colour " + std::to_string(aColour) + "]";
  }
}

/// "Caption = value [colour]"; without the brackets where the list's own colours stay.
inline std::vector<std::string> WriteRows(const krgui::TreeItemInfo& aNode) {
  std::vector<std::string> lines;
  for (const krgui::InfoRow& row : aNode.GetRows())
    lines.push_back(row.caption.ToUtf8() + " = " + row.value.ToUtf8() + WriteColour(row.colour));
  return lines;
}

/// The line of one caption; empty when there is none.
inline std::string WriteRow(const krgui::TreeItemInfo& aNode, const std::string& aCaption) {
  for (const std::string& line : WriteRows(aNode)) {
    if (line.starts_with(aCaption + " = "))
      return line;
  }
  return "";
}

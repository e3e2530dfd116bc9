#pragma once
// Which tooltip a point of the grid asks for, as a number, and its text; and the same for those who have no pointer.

#include "logic/browser/browsertree.h"

#include <cstdint>

namespace krgui {

inline constexpr std::int32_t kNoTool = -1;

/// A feature's index in its list, with kErrorToolFlag on the error icon of a row that is in error; a category's index
/// plus kCategoryToolBase. The part of an index that the flags leave no room for goes above them. kNoTool for an item
/// that is not there.
std::int32_t FindTool(const BrowserTree& aTree, GridItem aItem, bool aIsOnErrorIcon);
/// The error's text, or the tooltip with, after an empty line, why the feature is not what it might be; at most
/// kMostToolTipCharacters UTF-16 units. Empty where there is nothing to say.
KrString GetToolText(const BrowserTree& aTree, std::int32_t aTool);

/// What is wrong with a feature and why it is not what it might be, for those who see neither icon nor tooltip; empty
/// where all is well.
KrString GetTroubleText(const TreeItemData& aNode);
/// All that the tooltips of a row say, what is wrong with it first, cut like them. Empty where they say nothing.
KrString GetHelpText(const BrowserTree& aTree, GridItem aItem);

} // namespace krgui

#pragma once
// The text of the description pane for a feature or a category, with its mark-up ("\n" and <b>…</b>). Bounds and
// lengths are asked of the device, so this may wait as long as registers need.

#include "krbase/krstring.h"

namespace krgui {

class TreeItemData;

/// The display name, cut to a KiB.
KrString FormatDescriptionTitle(const TreeItemData& aNode);

/// Empty for a node that has neither feature nor category. Of what a camera says beyond 256 KiB there is the beginning.
KrString FormatDescription(const TreeItemData& aNode);

} // namespace krgui

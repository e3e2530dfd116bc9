#pragma once
// What a user chooses of a feature browser, and the words under which it is kept in property lists.

#include "krgenicam/krgentypes.h"
#include "krgui/krgenrefresh.h"
#include "krpersistence/krpropertylist.h"

namespace krgui {

struct BrowserOptions {
  bool showsDisplayNames = false; ///< Else feature names.
  bool isTree = true;             ///< Else an alphabetical list.
  KrGenRefresh refreshMode = KrGenRefresh::Automatic;
  KrGenVisibility visibility = KrGenVisibility::Beginner;
  friend bool operator==(const BrowserOptions&, const BrowserOptions&) = default;
};

/// Empties the list, then adds "Visibilty", "Names", "View" and "Refresh".
void SaveBrowserOptions(const BrowserOptions& aOptions, KrPropertyList& aList);
/// Takes what the list has; a missing property leaves its option as it is.
void LoadBrowserOptions(const KrPropertyList& aList, BrowserOptions& aOptions);

} // namespace krgui

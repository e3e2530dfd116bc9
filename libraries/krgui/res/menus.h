#pragma once
// The context menus of all windows as tables. What their commands do is left to the windows.

#include <span>
#include <string_view>

namespace krgui {

struct MenuItemTemplate {
  std::string_view text;
  int commandID;
};

/// A submenu with its items in their order.
struct SubmenuTemplate {
  std::string_view text;
  std::span<const MenuItemTemplate> items;
};

struct MenuTemplate {
  int id;
  std::span<const SubmenuTemplate> submenus; ///< At least one; windows show the first.
};

/// The menu of a number, or null.
const MenuTemplate* FindMenu(int aID);

inline constexpr int kDisplayMenuID = 1511;
inline constexpr int kDeviceFinderMenuID = 1505;

/// Of the property grid where no window gives it another one.
inline constexpr int kPropertiesGridMenuID = 1508;
/// Of the property grid in the feature browser.
inline constexpr int kGenBrowserMenuID = 1509;

/// Of the serial terminal's transcript.
inline constexpr int kTranscriptMenuID = 1513;

inline constexpr int kSetIPAddressCommandID = 32771;

// The commands that the property grid performs itself in whichever menu they are.
inline constexpr int kCopyNameCommandID = 32801;
inline constexpr int kCopyValueCommandID = 32802;
inline constexpr int kCopyNameAndValueCommandID = 32803;
inline constexpr int kCopyErrorCommandID = 32804;
inline constexpr int kCopyRowCommandID = 32807;

inline constexpr int kSaveFeaturesCommandID = 32805;
inline constexpr int kRestoreFeaturesCommandID = 32806;

// In menus of texts, which have no rows: the number is kCopyRowCommandID's.
inline constexpr int kCopyTextCommandID = 32807;
inline constexpr int kSelectAllCommandID = 32808;

} // namespace krgui

#include "res/menus.h"

#include "logic/display/viewcommand.h"

#include <algorithm>
#include <array>

namespace krgui {

namespace {

constexpr MenuItemTemplate MakeItem(std::string_view aText, ViewCommand aCommand) {
  return {aText, static_cast<int>(aCommand)};
}

constexpr std::array kDisplayMainItems = {
    MakeItem("Zoom 1:1", ViewCommand::ZoomOneToOne),  MakeItem("Zoom Fit", ViewCommand::ZoomFit),
    MakeItem("Zoom In", ViewCommand::ZoomIn),         MakeItem("Zoom Out", ViewCommand::ZoomOut),
    MakeItem("Center Here", ViewCommand::CentreHere),
};
constexpr std::array kDisplaySubmenus = {SubmenuTemplate{"Main", kDisplayMainItems}};

constexpr std::array kDeviceFinderItems = {MenuItemTemplate{"Set IP Address...", kSetIPAddressCommandID}};
constexpr std::array kDeviceFinderSubmenus = {SubmenuTemplate{"Device Finder", kDeviceFinderItems}};

constexpr std::array kPropertiesGridItems = {
    MenuItemTemplate{"&Copy", kCopyRowCommandID},
    MenuItemTemplate{"Copy \"N&ame = Value\"", kCopyNameAndValueCommandID},
    MenuItemTemplate{"Copy &Name", kCopyNameCommandID},
    MenuItemTemplate{"Copy &Value", kCopyValueCommandID},
    MenuItemTemplate{"Copy &Error Text", kCopyErrorCommandID},
};
constexpr std::array kPropertiesGridSubmenus = {SubmenuTemplate{"Feature", kPropertiesGridItems}};

constexpr std::array kGenBrowserItems = {
    kPropertiesGridItems[0],
    kPropertiesGridItems[1],
    kPropertiesGridItems[2],
    kPropertiesGridItems[3],
    kPropertiesGridItems[4],
    MenuItemTemplate{"&Save Features...", kSaveFeaturesCommandID},
    MenuItemTemplate{"&Restore Features...", kRestoreFeaturesCommandID},
};
static_assert(kGenBrowserItems.size() == kPropertiesGridItems.size() + 2);
constexpr std::array kGenBrowserSubmenus = {SubmenuTemplate{"Feature Browser", kGenBrowserItems}};

constexpr std::array kTranscriptItems = {
    MenuItemTemplate{"Copy", kCopyTextCommandID},
    MenuItemTemplate{"Select All", kSelectAllCommandID},
};
constexpr std::array kTranscriptSubmenus = {SubmenuTemplate{"Transcript", kTranscriptItems}};

constexpr std::array kMenus = {
    MenuTemplate{kDisplayMenuID, kDisplaySubmenus},
    MenuTemplate{kDeviceFinderMenuID, kDeviceFinderSubmenus},
    MenuTemplate{kPropertiesGridMenuID, kPropertiesGridSubmenus},
    MenuTemplate{kGenBrowserMenuID, kGenBrowserSubmenus},
    MenuTemplate{kTranscriptMenuID, kTranscriptSubmenus},
};

static_assert(std::none_of(kMenus.begin(), kMenus.end(),
                           [](const MenuTemplate& aMenu) { return aMenu.submenus.empty(); }));

} // namespace

const MenuTemplate* FindMenu(int aID) {
  const auto found =
      std::find_if(kMenus.begin(), kMenus.end(), [aID](const MenuTemplate& aMenu) { return aMenu.id == aID; });
  return found == kMenus.end() ? nullptr : &*found;
}

} // namespace krgui

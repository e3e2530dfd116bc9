#pragma once
// The dialog templates of all windows, and which window uses which within which limits: one table each.

#include "platform/dialogtemplate.h"

#include <array>
#include <span>

namespace krgui {

/// The template of a number, or null.
const DialogTemplate* FindTemplate(int aID);
std::span<const DialogTemplate> GetTemplates();

/// Dialogs inside the device finder.
inline constexpr int kForceIPTemplateID = 1505;
inline constexpr int kSelectFromIPTemplateID = 1506;
/// The options dialog of the feature browser.
inline constexpr int kBrowserOptionsTemplateID = 1507;
/// Dialogs inside the serial bridge manager.
inline constexpr int kCOMPortConfigTemplateID = 1519;
inline constexpr int kBaudRateSelectionTemplateID = 1520;

/// A window's templates and tracking limits in pixels.
struct WindowTraits {
  const char* name; ///< The implementation class.
  int modalTemplate;
  int popupTemplate;
  int childTemplate;
  int minWidth;
  int maxWidth;
  int minHeight;
  int maxHeight;
};

inline constexpr WindowTraits kDeviceFinderTraits = {"DeviceFinderWnd", 1504, 1504, 1504, 500, 800, 300, 600};
inline constexpr WindowTraits kDisplayTraits = {"DisplayWnd", 1021, 1021, 1028, 30, 32768, 20, 32768};
inline constexpr WindowTraits kGenBrowserTraits = {"GenBrowserWnd", 1079, 1079, 1081, 300, 32768, 300, 32768};
inline constexpr WindowTraits kSerialTerminalTraits = {"SerialTerminalWnd", 1512, 1512, 1512, 608, 608, 350, 2000};
inline constexpr WindowTraits kSerialBridgeManagerTraits = {
    "SerialBridgeManagerWnd", 1518, 1518, 1518, 500, 800, 300, 600};
/// The modal path uses the serial bridge manager's template; the pairing is meant.
inline constexpr WindowTraits kCameraBridgeManagerTraits = {
    "CameraBridgeManagerWnd", 1518, 1530, 1530, 775, 1600, 582, 2500};

/// All of them.
inline constexpr std::array kWindowTraits = {kDeviceFinderTraits,        kDisplayTraits,
                                             kGenBrowserTraits,          kSerialTerminalTraits,
                                             kSerialBridgeManagerTraits, kCameraBridgeManagerTraits};

} // namespace krgui

#include "res/templates.h"

#include "platform/buttonids.h"

#include <algorithm>
#include <array>

namespace krgui {

namespace {

constexpr int kHorizontalBarID = 1044;
constexpr int kVerticalBarID = 1046;

constexpr std::array kDisplayPopupControls = {
    ControlTemplate{
        ControlClass::HorizontalScrollBar, kHorizontalBarID, "", {0, 215, 322, 10}, kMoveDown | kGrowRight, true},
    ControlTemplate{
        ControlClass::VerticalScrollBar, kVerticalBarID, "", {322, 0, 10, 215}, kMoveRight | kGrowDown, true},
};

constexpr std::array kDisplayChildControls = {
    ControlTemplate{
        ControlClass::HorizontalScrollBar, kHorizontalBarID, "", {0, 92, 198, 10}, kMoveDown | kGrowRight, true},
    ControlTemplate{
        ControlClass::VerticalScrollBar, kVerticalBarID, "", {198, 0, 10, 92}, kMoveRight | kGrowDown, true},
};

constexpr int kTreeID = 1049;
constexpr int kInterfaceListID = 1030;
constexpr int kDeviceListID = 1033;

/// The tree takes what a resize gives or takes away; in the order of the focus.
constexpr std::array kDeviceFinderControls = {
    ControlTemplate{ControlClass::Label, 1034, "Available Devices", {7, 7, 205, 8}},
    ControlTemplate{ControlClass::Tree, kTreeID, "", {7, 19, 296, 302}, kGrowRight | kGrowDown},
    ControlTemplate{ControlClass::Label, 1035, "Interface Information", {307, 7, 221, 8}, kMoveRight},
    ControlTemplate{ControlClass::List, kInterfaceListID, "", {307, 19, 221, 80}, kMoveRight},
    ControlTemplate{ControlClass::Label, 1036, "Device Information", {307, 100, 221, 8}, kMoveRight},
    ControlTemplate{ControlClass::List, kDeviceListID, "", {307, 111, 221, 210}, kMoveRight | kGrowDown},
    ControlTemplate{ControlClass::CheckBox, 1040, "Show unreachable Network Devices", {7, 324, 130, 10}, kMoveDown},
    // Beside what is shown: the row below has no room for it in the smallest window.
    ControlTemplate{
        ControlClass::Button, 1139, "Why is my camera not here?", {380, 322, 148, 16}, kMoveRight | kMoveDown},
    ControlTemplate{ControlClass::Button, 1002, "Set IP Address...", {7, 342, 104, 16}, kMoveDown, false, true},
    ControlTemplate{ControlClass::Button, 1011, "Select from IP Address...", {115, 342, 104, 16}, kMoveDown},
    ControlTemplate{ControlClass::DefaultButton, kOKID, "OK", {425, 342, 50, 16}, kMoveRight | kMoveDown},
    ControlTemplate{ControlClass::Button, kCancelID, "Cancel", {478, 342, 50, 16}, kMoveRight | kMoveDown},
};

constexpr std::array kForceIPControls = {
    ControlTemplate{ControlClass::GroupBox, -1, "NIC Configuration", {7, 7, 188, 83}},
    ControlTemplate{ControlClass::Label, -1, "MAC Address", {14, 23, 62, 8}},
    ControlTemplate{ControlClass::ReadOnlyEdit, 1037, "", {78, 19, 99, 14}},
    ControlTemplate{ControlClass::Label, -1, "IP Address", {14, 39, 62, 8}},
    // Closed; the 30 units that it has open are its list's.
    ControlTemplate{ControlClass::ComboBox, 1123, "", {78, 35, 99, 14}},
    ControlTemplate{ControlClass::Label, -1, "Subnet Mask", {14, 55, 62, 8}},
    ControlTemplate{ControlClass::ReadOnlyEdit, 1050, "", {78, 51, 99, 14}},
    ControlTemplate{ControlClass::Label, -1, "Gateways", {14, 71, 62, 8}},
    ControlTemplate{ControlClass::ReadOnlyEdit, 1052, "", {78, 68, 99, 14}},
    ControlTemplate{ControlClass::GroupBox, -1, "GigE Vision Device IP Configuration", {7, 91, 188, 87}},
    ControlTemplate{ControlClass::Label, -1, "MAC Address", {14, 110, 62, 8}},
    ControlTemplate{ControlClass::ReadOnlyEdit, 1045, "", {78, 105, 99, 14}},
    ControlTemplate{ControlClass::Label, -1, "IP Address", {14, 126, 62, 8}},
    ControlTemplate{ControlClass::IPAddress, 1038, "", {78, 121, 99, 15}},
    ControlTemplate{ControlClass::ErrorIndicator, 1003, "", {180, 122, 12, 12}},
    ControlTemplate{ControlClass::Label, -1, "Subnet Mask", {14, 143, 62, 8}},
    ControlTemplate{ControlClass::IPAddress, 1041, "", {78, 138, 99, 15}},
    ControlTemplate{ControlClass::ErrorIndicator, 1008, "", {180, 138, 12, 12}},
    ControlTemplate{ControlClass::Label, -1, "Default Gateway", {14, 159, 62, 8}},
    ControlTemplate{ControlClass::IPAddress, 1043, "", {78, 155, 99, 15}},
    ControlTemplate{ControlClass::ErrorIndicator, 1013, "", {180, 155, 12, 12}},
    ControlTemplate{ControlClass::Button, 1140, "Propose a free address", {7, 196, 82, 16}},
    ControlTemplate{ControlClass::DefaultButton, kOKID, "OK", {93, 196, 50, 16}},
    ControlTemplate{ControlClass::Button, kCancelID, "Cancel", {145, 196, 50, 16}},
};

constexpr std::array kSelectFromIPControls = {
    ControlTemplate{ControlClass::WrappedLabel,
                    -1,
                    "If a device cannot be detected, you can still attempt to select it from its IP address.",
                    {7, 7, 191, 21}},
    ControlTemplate{ControlClass::Label, -1, "IP Address", {7, 37, 45, 8}},
    ControlTemplate{ControlClass::IPAddress, 1125, "", {71, 35, 99, 15}},
    ControlTemplate{ControlClass::DefaultButton, kOKID, "OK", {94, 75, 50, 14}},
    ControlTemplate{ControlClass::Button, kCancelID, "Cancel", {148, 75, 50, 14}},
};

/// The grid takes what a resize gives. In the order of the focus.
constexpr auto MakeBrowserControls(int aWidth, int aHeight) {
  constexpr std::uint8_t kGrow = kGrowRight | kGrowDown;
  return std::array{
      ControlTemplate{ControlClass::Place, 1082, "", {4, 4, 16, 16}},
      ControlTemplate{ControlClass::Place, 1083, "", {21, 4, 16, 16}},
      ControlTemplate{ControlClass::Place, 1084, "", {38, 4, 16, 16}},
      ControlTemplate{ControlClass::Place, 1085, "", {55, 4, 16, 16}},
      ControlTemplate{ControlClass::Label, 1086, "Visibility", {80, 8, 38, 8}},
      ControlTemplate{ControlClass::ComboBox, 1087, "", {120, 5, 80, 14}},
      ControlTemplate{ControlClass::Place, 1088, "", {aWidth - 20, 4, 16, 16}, kMoveRight},
      ControlTemplate{ControlClass::Label, 1089, "Search", {4, 28, 30, 8}, kStay, true},
      ControlTemplate{ControlClass::Place, 1090, "", {36, 24, aWidth - 176, 16}, kGrowRight, true},
      ControlTemplate{ControlClass::Button, 1091, "\u25C4", {aWidth - 138, 24, 16, 16}, kMoveRight, true},
      ControlTemplate{ControlClass::Button, 1092, "\u25BA", {aWidth - 121, 24, 16, 16}, kMoveRight, true},
      ControlTemplate{ControlClass::Button, 1093, "\u2715", {aWidth - 104, 24, 16, 16}, kMoveRight, true},
      ControlTemplate{ControlClass::Label, 1094, "", {aWidth - 84, 28, 80, 8}, kMoveRight, true},
      ControlTemplate{ControlClass::Place, 1095, "", {4, 44, aWidth - 8, aHeight - 118}, kGrow},
      ControlTemplate{ControlClass::Place, 1096, "", {4, aHeight - 70, aWidth - 8, 66}, kGrowRight | kMoveDown},
  };
}
constexpr auto kBrowserPopupControls = MakeBrowserControls(253, 330);
constexpr auto kBrowserChildControls = MakeBrowserControls(260, 317);

constexpr std::array kBrowserOptionsControls = {
    ControlTemplate{ControlClass::Label, -1, "Names", {7, 10, 40, 8}},
    ControlTemplate{ControlClass::ComboBox, 1141, "", {54, 7, 105, 14}},
    ControlTemplate{ControlClass::Label, 1142, "View", {7, 30, 40, 8}},
    ControlTemplate{ControlClass::ComboBox, 1143, "", {54, 27, 105, 14}},
    ControlTemplate{ControlClass::Label, -1, "Refresh", {7, 50, 40, 8}},
    ControlTemplate{ControlClass::ComboBox, 1144, "", {54, 47, 105, 14}},
    ControlTemplate{ControlClass::DefaultButton, kOKID, "OK", {55, 73, 50, 14}},
    ControlTemplate{ControlClass::Button, kCancelID, "Cancel", {109, 73, 50, 14}},
};

/// The transcript takes what a resize gives or takes away; in the order of the focus. Of the controls, those from 1181
/// to 1187 are for what is under way: nothing moves when they come to be used.
constexpr std::array kSerialTerminalControls = {
    ControlTemplate{ControlClass::GroupBox, -1, "Port Selection", {7, 0, 379, 30}},
    ControlTemplate{ControlClass::Label, 1188, "&Port", {14, 15, 26, 8}},
    ControlTemplate{ControlClass::ComboBox, 1048, "", {42, 12, 60, 14}},
    ControlTemplate{ControlClass::Label, 1189, "Sp&eed", {106, 15, 33, 8}},
    ControlTemplate{ControlClass::ComboBox, 1126, "", {140, 12, 86, 14}},
    ControlTemplate{ControlClass::CheckBox, 1169, "&Loopback", {230, 13, 64, 10}},
    ControlTemplate{ControlClass::Label, 1187, "", {300, 15, 79, 8}},
    ControlTemplate{ControlClass::GroupBox, -1, "Send", {7, 31, 379, 54}},
    ControlTemplate{ControlClass::Label, 1190, "Send as", {14, 43, 42, 8}},
    ControlTemplate{ControlClass::RadioButton, 1055, "&ASCII", {60, 41, 46, 10}},
    ControlTemplate{ControlClass::RadioButton, 1056, "&Hexadecimal", {112, 41, 74, 10}},
    ControlTemplate{ControlClass::Label, 1191, "&Data", {14, 56, 42, 8}},
    ControlTemplate{ControlClass::Edit, 1057, "", {60, 53, 256, 14}},
    ControlTemplate{ControlClass::Button, 1004, "&Send", {322, 53, 57, 14}},
    ControlTemplate{ControlClass::Label, 1192, "Append", {14, 72, 42, 8}},
    ControlTemplate{ControlClass::CheckBox, 1059, "CR", {60, 70, 30, 10}},
    ControlTemplate{ControlClass::CheckBox, 1060, "LF", {94, 70, 30, 10}},
    ControlTemplate{ControlClass::CheckBox, 1061, "NULL", {128, 70, 42, 10}},
    ControlTemplate{ControlClass::CheckBox, 1064, "&Other", {176, 70, 46, 10}},
    ControlTemplate{ControlClass::Edit, 1065, "", {228, 69, 88, 14}},
    ControlTemplate{ControlClass::Label, 1062, "He&x", {322, 72, 30, 8}},
    ControlTemplate{ControlClass::GroupBox, -1, "Send From File", {7, 86, 379, 42}},
    ControlTemplate{ControlClass::Label, 1193, "&File", {14, 101, 42, 8}},
    ControlTemplate{ControlClass::Edit, 1180, "", {60, 98, 176, 14}},
    ControlTemplate{ControlClass::Button, 1000, "...", {239, 98, 17, 14}},
    ControlTemplate{ControlClass::Button, 1166, "Se&nd file", {262, 98, 57, 14}},
    ControlTemplate{ControlClass::Button, 1181, "S&top", {322, 98, 57, 14}, kStay, false, true},
    ControlTemplate{ControlClass::CheckBox, 1160, "Loopbac&k validation", {60, 115, 92, 10}},
    ControlTemplate{ControlClass::Place, 1182, "", {188, 116, 48, 10}, kStay, true},
    ControlTemplate{ControlClass::Label, 1183, "", {240, 117, 139, 8}, kStay, true},
    ControlTemplate{ControlClass::GroupBox, 1063, "Transcript", {7, 129, 379, 219}, kGrowRight | kGrowDown},
    ControlTemplate{ControlClass::Label, 1194, "Display format", {14, 141, 78, 8}},
    ControlTemplate{ControlClass::RadioButton, 1051, "ASC&II", {96, 139, 46, 10}},
    ControlTemplate{ControlClass::RadioButton, 1053, "Hexadeci&mal", {148, 139, 74, 10}},
    ControlTemplate{ControlClass::RadioButton, 1054, "H&ybrid", {230, 139, 50, 10}},
    ControlTemplate{ControlClass::CheckBox, 1069, "E&cho sent data", {14, 152, 82, 10}},
    ControlTemplate{ControlClass::CheckBox, 1184, "Pa&use", {126, 152, 46, 10}},
    ControlTemplate{ControlClass::Button, 1009, "Clea&r", {262, 151, 57, 14}},
    ControlTemplate{ControlClass::Button, 1185, "Sa&ve...", {322, 151, 57, 14}},
    ControlTemplate{ControlClass::Place, 1058, "", {14, 166, 365, 179}, kGrowRight | kGrowDown},
};

/// In the order of the focus.
constexpr std::array kSerialBridgeControls = {
    ControlTemplate{ControlClass::GroupBox, 1200, "Port Selection", {7, 4, 297, 36}},
    ControlTemplate{ControlClass::ComboBox, 1049, "", {14, 18, 84, 14}},
    ControlTemplate{ControlClass::GroupBox, 1201, "Bridge Setup", {7, 46, 297, 116}},
    ControlTemplate{ControlClass::RadioButton, 1071, "&None", {14, 60, 84, 10}},
    ControlTemplate{ControlClass::RadioButton, 1073, "&Serial COM Port Link", {14, 78, 100, 10}},
    ControlTemplate{ControlClass::ElidedLabel, 1087, "&Port", {122, 79, 22, 8}},
    ControlTemplate{ControlClass::ComboBox, 1048, "", {146, 76, 60, 14}},
    ControlTemplate{ControlClass::Button, 1017, "C&onfigure...", {212, 76, 60, 14}},
    ControlTemplate{ControlClass::ElidedLabel, 1101, "No parity, 8 bits, 1 stop bit", {24, 98, 276, 8}},
    ControlTemplate{ControlClass::RadioButton, 1075, "&Camera Link DLL", {14, 116, 100, 10}},
    ControlTemplate{ControlClass::ElidedLabel, 1099, "Inactive", {122, 117, 178, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1196, "", {14, 144, 286, 8}},
    ControlTemplate{ControlClass::GroupBox, 1202, "Available/Selected Baud Rates", {7, 168, 297, 41}},
    ControlTemplate{ControlClass::ElidedLabel, 1210, "9600 baud", {14, 183, 56, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1211, "14400 baud", {72, 183, 56, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1212, "19200 baud", {130, 183, 56, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1213, "28800 baud", {188, 183, 56, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1214, "38400 baud", {246, 183, 56, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1215, "57600 baud", {14, 199, 56, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1216, "115200 baud", {72, 199, 56, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1217, "230400 baud", {130, 199, 56, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1218, "460800 baud", {188, 199, 56, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1219, "921600 baud", {246, 199, 56, 8}},
    ControlTemplate{ControlClass::GroupBox, 1203, "Statistics", {7, 215, 297, 36}},
    ControlTemplate{ControlClass::ElidedLabel, 1097, "Bytes sent: 0", {14, 232, 100, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1098, "Bytes received: 0", {122, 232, 110, 8}},
    ControlTemplate{ControlClass::Button, 1010, "&Reset", {240, 230, 57, 14}},
};

constexpr std::array kCOMPortConfigControls = {
    ControlTemplate{ControlClass::Label, -1, "&Baud Rate", {7, 10, 50, 8}},
    ControlTemplate{ControlClass::ComboBox, 1220, "", {64, 7, 95, 14}},
    ControlTemplate{ControlClass::Label, -1, "&Parity", {7, 30, 50, 8}},
    ControlTemplate{ControlClass::ComboBox, 1221, "", {64, 27, 95, 14}},
    ControlTemplate{ControlClass::Label, -1, "Byte si&ze", {7, 50, 50, 8}},
    ControlTemplate{ControlClass::ComboBox, 1222, "", {64, 47, 95, 14}},
    ControlTemplate{ControlClass::Label, -1, "&Stop bits", {7, 70, 50, 8}},
    ControlTemplate{ControlClass::ComboBox, 1223, "", {64, 67, 95, 14}},
    ControlTemplate{ControlClass::DefaultButton, kOKID, "OK", {55, 93, 50, 14}},
    ControlTemplate{ControlClass::Button, kCancelID, "Cancel", {109, 93, 50, 14}},
};

constexpr std::array kBaudRateSelectionControls = {
    ControlTemplate{ControlClass::WrappedLabel,
                    1225,
                    "The baud rate of the device serial port cannot be accessed through its GenICam "
                    "interface.\n\nSelect the baud rate of the device serial port:",
                    {7, 7, 206, 42}},
    ControlTemplate{ControlClass::ComboBox, 1224, "", {7, 52, 95, 14}},
    ControlTemplate{ControlClass::DefaultButton, kOKID, "OK", {109, 78, 50, 14}},
    ControlTemplate{ControlClass::Button, kCancelID, "Cancel", {163, 78, 50, 14}},
};

/// In the order of the focus; the feature browser's place is the last.
constexpr std::array kCameraBridgeControls = {
    ControlTemplate{ControlClass::GroupBox, 1159, "Bridge Setup", {7, 4, 196, 246}},
    ControlTemplate{ControlClass::ComboBox, 1048, "", {14, 16, 182, 14}},
    ControlTemplate{ControlClass::RadioButton, 1145, "&None", {14, 33, 140, 10}},
    ControlTemplate{ControlClass::RadioButton, 1146, "GenICam &CL Protocol", {14, 46, 140, 10}},
    ControlTemplate{ControlClass::ElidedLabel, 1155, "&Template", {24, 61, 36, 8}},
    ControlTemplate{ControlClass::ComboBox, 1127, "", {62, 58, 86, 14}},
    ControlTemplate{ControlClass::Button, 1141, "&Probe", {152, 58, 44, 14}},
    ControlTemplate{ControlClass::ElidedLabel, 1154, "Not found", {24, 75, 172, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1156, "&XML", {24, 89, 36, 8}},
    ControlTemplate{ControlClass::ComboBox, 1129, "", {62, 86, 86, 14}},
    ControlTemplate{ControlClass::Button, 1140, "C&onnect", {152, 86, 44, 14}},
    ControlTemplate{ControlClass::ElidedLabel, 1151, "Not initialized", {24, 103, 172, 8}},
    ControlTemplate{ControlClass::RadioButton, 1147, "&GenCP", {14, 115, 140, 10}},
    ControlTemplate{ControlClass::ElidedLabel, 1157, "X&ML", {24, 131, 36, 8}},
    ControlTemplate{ControlClass::ComboBox, 1134, "", {62, 128, 86, 14}},
    ControlTemplate{ControlClass::Button, 1142, "Conn&ect", {152, 128, 44, 14}},
    ControlTemplate{ControlClass::ElidedLabel, 1153, "Not initialized", {24, 145, 172, 8}},
    ControlTemplate{ControlClass::RadioButton, 1148, "Tolvan Camera &File", {14, 157, 140, 10}},
    ControlTemplate{ControlClass::ElidedLabel, 1150, "P&ath", {24, 173, 36, 8}},
    ControlTemplate{ControlClass::ReadOnlyEdit, 1131, "", {62, 170, 66, 14}},
    ControlTemplate{ControlClass::Button, 1136, "...", {131, 170, 17, 14}},
    ControlTemplate{ControlClass::Button, 1138, "&Load", {152, 170, 44, 14}},
    ControlTemplate{ControlClass::ElidedLabel, 1152, "Not initialized", {24, 187, 172, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1099, "&Source", {14, 207, 46, 8}},
    ControlTemplate{ControlClass::ComboBox, 1126, "", {62, 204, 134, 14}},
    ControlTemplate{ControlClass::CheckBox, 1160, "Frame Grabber Parameters S&ynchronization", {14, 222, 186, 10}},
    ControlTemplate{ControlClass::ElidedLabel, 1163, "", {14, 236, 182, 8}},
    ControlTemplate{ControlClass::GroupBox, 1158, "Statistics", {7, 254, 196, 38}},
    ControlTemplate{ControlClass::ElidedLabel, 1097, "Bytes sent: 0", {14, 267, 130, 8}},
    ControlTemplate{ControlClass::ElidedLabel, 1098, "Bytes received: 0", {14, 278, 130, 8}},
    ControlTemplate{ControlClass::Button, 1010, "&Reset", {152, 270, 44, 14}},
    ControlTemplate{ControlClass::CheckBox, 1161, "Po&wer Over Camera Link (PoCL)", {14, 298, 186, 10}},
    ControlTemplate{ControlClass::Frame, 1144, "", {208, 4, 320, 328}, kGrowRight | kGrowDown},
};

constexpr std::array kTemplates = {
    DialogTemplate{1021, "Display", DialogKind::SizingPopup, 332, 225, kDisplayPopupControls},
    DialogTemplate{1028, "", DialogKind::Child, 208, 102, kDisplayChildControls},
    DialogTemplate{1079, "GenICam Explorer", DialogKind::SizingPopup, 253, 330, kBrowserPopupControls, true},
    DialogTemplate{1081, "", DialogKind::Child, 260, 317, kBrowserChildControls, true},
    DialogTemplate{1504, "Device Selection", DialogKind::FixedPopup, 535, 365, kDeviceFinderControls},
    DialogTemplate{kForceIPTemplateID, "Set IP Address", DialogKind::FixedPopup, 202, 219, kForceIPControls},
    DialogTemplate{kSelectFromIPTemplateID, "Select From IP Address", DialogKind::FixedPopup, 205, 96,
                   kSelectFromIPControls},
    DialogTemplate{kBrowserOptionsTemplateID, "Browser Options", DialogKind::FixedPopup, 166, 94,
                   kBrowserOptionsControls},
    DialogTemplate{1512, "Device Serial Communication", DialogKind::SizingPopup, 393, 352, kSerialTerminalControls},
    DialogTemplate{1518, "Serial Communication Bridge", DialogKind::FixedPopup, 311, 255, kSerialBridgeControls, true},
    DialogTemplate{kCOMPortConfigTemplateID, "Serial COM Port Configuration", DialogKind::FixedPopup, 166, 114,
                   kCOMPortConfigControls},
    DialogTemplate{kBaudRateSelectionTemplateID, "Device Serial Port Baud Rate", DialogKind::FixedPopup, 220, 99,
                   kBaudRateSelectionControls},
    DialogTemplate{1530, "Camera Bridge", DialogKind::SizingPopup, 535, 336, kCameraBridgeControls, true},
};

constexpr const DialogTemplate* FindInTable(int aID) {
  const auto found = std::find_if(kTemplates.begin(), kTemplates.end(),
                                  [aID](const DialogTemplate& aTemplate) { return aTemplate.id == aID; });
  return found == kTemplates.end() ? nullptr : &*found;
}

constexpr bool AreTemplateIDsUnique() {
  return std::all_of(kTemplates.begin(), kTemplates.end(),
                     [](const DialogTemplate& aTemplate) { return FindInTable(aTemplate.id) == &aTemplate; });
}

/// -1 may repeat: nobody looks those up.
constexpr bool AreControlIDsUnique(const DialogTemplate& aTemplate) {
  return std::all_of(aTemplate.controls.begin(), aTemplate.controls.end(), [&](const ControlTemplate& aControl) {
    return aControl.id == -1 ||
           std::count_if(aTemplate.controls.begin(), aTemplate.controls.end(),
                         [&](const ControlTemplate& aOther) { return aOther.id == aControl.id; }) == 1;
  });
}

constexpr bool AreControlsInside(const DialogTemplate& aTemplate) {
  return std::all_of(aTemplate.controls.begin(), aTemplate.controls.end(), [&](const ControlTemplate& aControl) {
    return Encloses({0, 0, aTemplate.width, aTemplate.height}, aControl.rect);
  });
}

constexpr bool IsOnlyOKDefault(const DialogTemplate& aTemplate) {
  return std::all_of(aTemplate.controls.begin(), aTemplate.controls.end(), [](const ControlTemplate& aControl) {
    return aControl.controlClass != ControlClass::DefaultButton || aControl.id == kOKID;
  });
}

constexpr bool HasTemplates(const WindowTraits& aTraits) {
  return FindInTable(aTraits.modalTemplate) != nullptr && FindInTable(aTraits.popupTemplate) != nullptr &&
         FindInTable(aTraits.childTemplate) != nullptr;
}

constexpr bool AreLimitsInOrder(const WindowTraits& aTraits) {
  return aTraits.minWidth <= aTraits.maxWidth && aTraits.minHeight <= aTraits.maxHeight;
}

static_assert(AreTemplateIDsUnique());
static_assert(std::all_of(kTemplates.begin(), kTemplates.end(), AreControlIDsUnique));
static_assert(std::all_of(kTemplates.begin(), kTemplates.end(), AreControlsInside));
static_assert(std::all_of(kTemplates.begin(), kTemplates.end(), IsOnlyOKDefault));
static_assert(std::all_of(kWindowTraits.begin(), kWindowTraits.end(), HasTemplates));
static_assert(std::all_of(kWindowTraits.begin(), kWindowTraits.end(), AreLimitsInOrder));

} // namespace

const DialogTemplate* FindTemplate(int aID) {
  return FindInTable(aID);
}

std::span<const DialogTemplate> GetTemplates() {
  return kTemplates;
}

} // namespace krgui

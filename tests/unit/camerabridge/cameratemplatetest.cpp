// The camera bridge manager's dialog template: what is in it, and in which order.

#include "res/templates.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

namespace krgui {

namespace {

struct Row {
  int id;
  ControlClass controlClass;
  std::string_view text; ///< Without the mark of its mnemonic.
};

using enum ControlClass;

/// By hand, in their order.
constexpr Row kRows[] = {
    {1159, GroupBox, "Bridge Setup"},
    {1048, ComboBox, ""},
    {1145, RadioButton, "None"},
    {1146, RadioButton, "GenICam CL Protocol"},
    {1155, ElidedLabel, "Template"},
    {1127, ComboBox, ""},
    {1141, Button, "Probe"},
    {1154, ElidedLabel, "Not found"},
    {1156, ElidedLabel, "XML"},
    {1129, ComboBox, ""},
    {1140, Button, "Connect"},
    {1151, ElidedLabel, "Not initialized"},
    {1147, RadioButton, "GenCP"},
    {1157, ElidedLabel, "XML"},
    {1134, ComboBox, ""},
    {1142, Button, "Connect"},
    {1153, ElidedLabel, "Not initialized"},
    {1148, RadioButton, "Tolvan Camera File"},
    {1150, ElidedLabel, "Path"},
    {1131, ReadOnlyEdit, ""},
    {1136, Button, "..."},
    {1138, Button, "Load"},
    {1152, ElidedLabel, "Not initialized"},
    {1099, ElidedLabel, "Source"},
    {1126, ComboBox, ""},
    {1160, CheckBox, "Frame Grabber Parameters Synchronization"},
    {1163, ElidedLabel, ""},
    {1158, GroupBox, "Statistics"},
    {1097, ElidedLabel, "Bytes sent: 0"},
    {1098, ElidedLabel, "Bytes received: 0"},
    {1010, Button, "Reset"},
    {1161, CheckBox, "Power Over Camera Link (PoCL)"},
    {1144, Frame, ""},
};

} // namespace

TEST(CameraTemplate, Controls_AreAsDescribed) {
  const DialogTemplate& dialog = *FindTemplate(1530);

  ASSERT_EQ(dialog.controls.size(), std::size(kRows));
  for (std::size_t index = 0; index < std::size(kRows); ++index) {
    const ControlTemplate& control = dialog.controls[index];
    std::string text(control.text);
    std::erase(text, '&');
    EXPECT_EQ(control.id, kRows[index].id);
    EXPECT_EQ(control.controlClass, kRows[index].controlClass) << control.id;
    EXPECT_EQ(text, kRows[index].text) << control.id;
  }
}

TEST(CameraTemplate, Mnemonics_AreEachOfOneControl) {
  std::string letters;
  for (const ControlTemplate& control : FindTemplate(1530)->controls) {
    const std::size_t mark = control.text.find('&');
    if (mark != std::string_view::npos)
      letters += static_cast<char>(std::tolower(control.text.at(mark + 1)));
  }
  std::sort(letters.begin(), letters.end());

  EXPECT_EQ(std::adjacent_find(letters.begin(), letters.end()), letters.end()) << letters;
}

} // namespace krgui

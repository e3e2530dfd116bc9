// The serial terminal's dialog template: what is in it, in which order, and what follows a resize.

#include "res/templates.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace krgui {

namespace {

struct Row {
  ControlClass controlClass;
  int id;
  std::string_view text; ///< Without the mark of its mnemonic.
};

using enum ControlClass;

/// By hand, in their order, group by group; the labels of a field come before it.
const Row kRows[] = {
    {GroupBox, -1, "Port Selection"},
    {Label, 1188, "Port"},
    {ComboBox, 1048, ""},
    {Label, 1189, "Speed"},
    {ComboBox, 1126, ""},
    {CheckBox, 1169, "Loopback"},
    {GroupBox, -1, "Send"},
    {Label, 1190, "Send as"},
    {RadioButton, 1055, "ASCII"},
    {RadioButton, 1056, "Hexadecimal"},
    {Label, 1191, "Data"},
    {Edit, 1057, ""},
    {Button, 1004, "Send"},
    {Label, 1192, "Append"},
    {CheckBox, 1059, "CR"},
    {CheckBox, 1060, "LF"},
    {CheckBox, 1061, "NULL"},
    {CheckBox, 1064, "Other"},
    {Edit, 1065, ""},
    {Label, 1062, "Hex"},
    {GroupBox, -1, "Send From File"},
    {Label, 1193, "File"},
    {Edit, 1180, ""},
    {Button, 1000, "..."},
    {Button, 1166, "Send file"},
    {CheckBox, 1160, "Loopback validation"},
    {GroupBox, 1063, "Transcript"},
    {Label, 1194, "Display format"},
    {RadioButton, 1051, "ASCII"},
    {RadioButton, 1053, "Hexadecimal"},
    {RadioButton, 1054, "Hybrid"},
    {CheckBox, 1069, "Echo sent data"},
    {Button, 1009, "Clear"},
    {Place, 1058, ""},
};

/// Besides them: the port's words, what belongs to a transfer that is under way, pausing and saving.
const Row kFurtherRows[] = {
    {Label, 1187, ""}, {Button, 1181, "Stop"},    {Place, 1182, ""},
    {Label, 1183, ""}, {CheckBox, 1184, "Pause"}, {Button, 1185, "Save..."},
};

std::string GetPlainText(const ControlTemplate& aControl) {
  std::string text(aControl.text);
  std::erase(text, '&');
  return text;
}

const Row* FindFurther(int aID) {
  for (const Row& row : kFurtherRows) {
    if (row.id == aID)
      return &row;
  }
  return nullptr;
}

} // namespace

TEST(TerminalTemplate, Controls_AreThereInTheirOrder) {
  std::size_t index = 0;
  std::size_t further = 0;
  for (const ControlTemplate& control : FindTemplate(1512)->controls) {
    const Row* row = FindFurther(control.id);
    if (row != nullptr) {
      ++further;
    } else {
      ASSERT_LT(index, std::size(kRows)) << control.id;
      row = &kRows[index++];
    }

    EXPECT_EQ(control.id, row->id) << row->text;
    EXPECT_EQ(control.controlClass, row->controlClass) << row->id;
    EXPECT_EQ(GetPlainText(control), row->text) << row->id;
  }
  EXPECT_EQ(index, std::size(kRows));
  EXPECT_EQ(further, std::size(kFurtherRows));
}

TEST(TerminalTemplate, Transcript_AloneFollowsAResize) {
  for (const ControlTemplate& control : FindTemplate(1512)->controls) {
    const bool isTranscript = control.id == 1058 || control.id == 1063;
    EXPECT_EQ(control.follow, isTranscript ? kGrowRight | kGrowDown : kStay) << control.id;
  }
}

TEST(TerminalTemplate, ControlsOfAGroup_LieWithinIt) {
  const ControlTemplate* group = nullptr;
  for (const ControlTemplate& control : FindTemplate(1512)->controls) {
    if (control.controlClass == GroupBox) {
      group = &control;
      continue;
    }
    ASSERT_NE(group, nullptr);
    const auto& [x, y, width, height] = control.rect;
    EXPECT_GE(x, group->rect.x) << control.id;
    EXPECT_GE(y, group->rect.y) << control.id;
    EXPECT_LE(x + width, group->rect.x + group->rect.width) << control.id;
    EXPECT_LE(y + height, group->rect.y + group->rect.height) << control.id;
  }
}

} // namespace krgui

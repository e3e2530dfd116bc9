#include "res/templates.h"

#include <gmock/gmock.h>

namespace krgui {

namespace {

struct TemplateRow {
  int id;
  std::string_view caption;
  DialogKind kind;
  int width, height;
};

constexpr TemplateRow kRows[] = {
    {1021, "Display", DialogKind::SizingPopup, 332, 225},
    {1028, "", DialogKind::Child, 208, 102},
    {1079, "GenICam Explorer", DialogKind::SizingPopup, 253, 330},
    {1081, "", DialogKind::Child, 260, 317},
    {1504, "Device Selection", DialogKind::FixedPopup, 535, 365},
    {1505, "Set IP Address", DialogKind::FixedPopup, 202, 219},
    {1506, "Select From IP Address", DialogKind::FixedPopup, 205, 96},
    {1507, "Browser Options", DialogKind::FixedPopup, 166, 94},
    {1512, "Device Serial Communication", DialogKind::SizingPopup, 393, 352},
    {1518, "Serial Communication Bridge", DialogKind::FixedPopup, 311, 255},
    {1519, "Serial COM Port Configuration", DialogKind::FixedPopup, 166, 114},
    {1520, "Device Serial Port Baud Rate", DialogKind::FixedPopup, 220, 99},
    {1530, "Camera Bridge", DialogKind::SizingPopup, 535, 336},
};

/// By hand, as the windows are described: modal, popup and child template, then the tracking limits.
constexpr WindowTraits kExpectedTraits[] = {
    {"DeviceFinderWnd", 1504, 1504, 1504, 500, 800, 300, 600},
    {"DisplayWnd", 1021, 1021, 1028, 30, 32768, 20, 32768},
    {"GenBrowserWnd", 1079, 1079, 1081, 300, 32768, 300, 32768},
    {"SerialTerminalWnd", 1512, 1512, 1512, 608, 608, 350, 2000},
    {"SerialBridgeManagerWnd", 1518, 1518, 1518, 500, 800, 300, 600},
    {"CameraBridgeManagerWnd", 1518, 1530, 1530, 775, 1600, 582, 2500},
};

const ControlTemplate* FindControl(const DialogTemplate& aTemplate, int aID) {
  for (const ControlTemplate& control : aTemplate.controls) {
    if (control.id == aID) {
      return &control;
    }
  }
  return nullptr;
}

} // namespace

TEST(Templates, EachNumber_HasItsCaptionKindAndSize) {
  for (const TemplateRow& row : kRows) {
    const DialogTemplate* found = FindTemplate(row.id);

    ASSERT_NE(found, nullptr) << row.id;
    EXPECT_EQ(found->id, row.id);
    EXPECT_EQ(found->caption, row.caption) << row.id;
    EXPECT_EQ(found->kind, row.kind) << row.id;
    EXPECT_EQ(found->width, row.width) << row.id;
    EXPECT_EQ(found->height, row.height) << row.id;
  }
  EXPECT_EQ(GetTemplates().size(), std::size(kRows));
}

TEST(Templates, UnknownNumber_GivesNull) {
  EXPECT_EQ(FindTemplate(0), nullptr);
  EXPECT_EQ(FindTemplate(-1), nullptr);
  EXPECT_EQ(FindTemplate(1022), nullptr);
}

struct ControlRow {
  int id;
  ControlClass controlClass;
  std::string_view text;
  UnitRect rect;
};

/// By hand, as the dialogs are described; labels have no number.
constexpr ControlRow kForceIPRows[] = {
    {1037, ControlClass::ReadOnlyEdit, "", {78, 19, 99, 14}},
    {1123, ControlClass::ComboBox, "", {78, 35, 99, 14}},
    {1050, ControlClass::ReadOnlyEdit, "", {78, 51, 99, 14}},
    {1052, ControlClass::ReadOnlyEdit, "", {78, 68, 99, 14}},
    {1045, ControlClass::ReadOnlyEdit, "", {78, 105, 99, 14}},
    {1038, ControlClass::IPAddress, "", {78, 121, 99, 15}},
    {1003, ControlClass::ErrorIndicator, "", {180, 122, 12, 12}},
    {1041, ControlClass::IPAddress, "", {78, 138, 99, 15}},
    {1008, ControlClass::ErrorIndicator, "", {180, 138, 12, 12}},
    {1043, ControlClass::IPAddress, "", {78, 155, 99, 15}},
    {1013, ControlClass::ErrorIndicator, "", {180, 155, 12, 12}},
    {1140, ControlClass::Button, "Propose a free address", {7, 196, 82, 16}},
    {1, ControlClass::DefaultButton, "OK", {93, 196, 50, 16}},
    {2, ControlClass::Button, "Cancel", {145, 196, 50, 16}},
};
constexpr ControlRow kSelectFromIPRows[] = {
    {1125, ControlClass::IPAddress, "", {71, 35, 99, 15}},
    {1, ControlClass::DefaultButton, "OK", {94, 75, 50, 14}},
    {2, ControlClass::Button, "Cancel", {148, 75, 50, 14}},
};

TEST(Templates, DialogsOfTheFinder_HaveTheirControlsInTheirPlaces) {
  const struct {
    int id;
    std::span<const ControlRow> rows;
  } dialogs[] = {{kForceIPTemplateID, kForceIPRows}, {kSelectFromIPTemplateID, kSelectFromIPRows}};
  for (const auto& dialog : dialogs) {
    for (const ControlRow& row : dialog.rows) {
      const ControlTemplate* control = FindControl(*FindTemplate(dialog.id), row.id);

      ASSERT_NE(control, nullptr) << row.id;
      EXPECT_EQ(control->controlClass, row.controlClass) << row.id;
      EXPECT_EQ(control->text, row.text) << row.id;
      EXPECT_EQ(control->rect.x, row.rect.x) << row.id;
      EXPECT_EQ(control->rect.y, row.rect.y) << row.id;
      EXPECT_EQ(control->rect.width, row.rect.width) << row.id;
      EXPECT_EQ(control->rect.height, row.rect.height) << row.id;
    }
  }
}

/// In their order, as they have no number.
constexpr ControlRow kForceIPLabels[] = {
    {-1, ControlClass::GroupBox, "NIC Configuration", {7, 7, 188, 83}},
    {-1, ControlClass::Label, "MAC Address", {14, 23, 62, 8}},
    {-1, ControlClass::Label, "IP Address", {14, 39, 62, 8}},
    {-1, ControlClass::Label, "Subnet Mask", {14, 55, 62, 8}},
    {-1, ControlClass::Label, "Gateways", {14, 71, 62, 8}},
    {-1, ControlClass::GroupBox, "GigE Vision Device IP Configuration", {7, 91, 188, 87}},
    {-1, ControlClass::Label, "MAC Address", {14, 110, 62, 8}},
    {-1, ControlClass::Label, "IP Address", {14, 126, 62, 8}},
    {-1, ControlClass::Label, "Subnet Mask", {14, 143, 62, 8}},
    {-1, ControlClass::Label, "Default Gateway", {14, 159, 62, 8}},
};
constexpr ControlRow kSelectFromIPLabels[] = {
    {-1,
     ControlClass::WrappedLabel,
     "If a device cannot be detected, you can still attempt to select it from its IP address.",
     {7, 7, 191, 21}},
    {-1, ControlClass::Label, "IP Address", {7, 37, 45, 8}},
};

TEST(Templates, DialogsOfTheFinder_HaveTheirLabelsAndGroupsInTheirPlaces) {
  const struct {
    int id;
    std::span<const ControlRow> rows;
  } dialogs[] = {{kForceIPTemplateID, kForceIPLabels}, {kSelectFromIPTemplateID, kSelectFromIPLabels}};
  for (const auto& dialog : dialogs) {
    std::size_t index = 0;
    for (const ControlTemplate& control : FindTemplate(dialog.id)->controls) {
      if (control.id != -1) {
        continue;
      }
      ASSERT_LT(index, dialog.rows.size()) << control.text;
      const ControlRow& row = dialog.rows[index++];

      EXPECT_EQ(control.controlClass, row.controlClass) << row.text;
      EXPECT_EQ(control.text, row.text);
      EXPECT_EQ(control.rect.x, row.rect.x) << row.text;
      EXPECT_EQ(control.rect.y, row.rect.y) << row.text;
      EXPECT_EQ(control.rect.width, row.rect.width) << row.text;
      EXPECT_EQ(control.rect.height, row.rect.height) << row.text;
    }
    EXPECT_EQ(index, dialog.rows.size()) << dialog.id;
  }
}

TEST(Templates, BothDisplayTemplates_HaveTheTwoScrollBarsHiddenAtStart) {
  for (const int id : {1021, 1028}) {
    const ControlTemplate* horizontal = FindControl(*FindTemplate(id), 1044);
    const ControlTemplate* vertical = FindControl(*FindTemplate(id), 1046);

    ASSERT_NE(horizontal, nullptr) << id;
    ASSERT_NE(vertical, nullptr) << id;
    EXPECT_EQ(horizontal->controlClass, ControlClass::HorizontalScrollBar) << id;
    EXPECT_EQ(vertical->controlClass, ControlClass::VerticalScrollBar) << id;
    EXPECT_TRUE(horizontal->startsHidden) << id;
    EXPECT_TRUE(vertical->startsHidden) << id;
  }
}

TEST(Templates, DeviceSelection_HasOKAsDefaultAndCancel) {
  const DialogTemplate& finder = *FindTemplate(1504);

  const ControlTemplate* ok = FindControl(finder, 1);
  const ControlTemplate* cancel = FindControl(finder, 2);

  ASSERT_NE(ok, nullptr);
  ASSERT_NE(cancel, nullptr);
  EXPECT_EQ(ok->text, "OK");
  EXPECT_EQ(ok->controlClass, ControlClass::DefaultButton);
  EXPECT_EQ(cancel->text, "Cancel");
  EXPECT_EQ(cancel->controlClass, ControlClass::Button);
}

TEST(Templates, EachWindow_HasItsTemplatesAndLimits) {
  ASSERT_EQ(kWindowTraits.size(), std::size(kExpectedTraits));
  for (std::size_t row = 0; row < kWindowTraits.size(); ++row) {
    const WindowTraits& found = kWindowTraits[row];
    const WindowTraits& expected = kExpectedTraits[row];
    EXPECT_STREQ(found.name, expected.name);
    EXPECT_EQ(found.modalTemplate, expected.modalTemplate) << expected.name;
    EXPECT_EQ(found.popupTemplate, expected.popupTemplate) << expected.name;
    EXPECT_EQ(found.childTemplate, expected.childTemplate) << expected.name;
    EXPECT_EQ(found.minWidth, expected.minWidth) << expected.name;
    EXPECT_EQ(found.maxWidth, expected.maxWidth) << expected.name;
    EXPECT_EQ(found.minHeight, expected.minHeight) << expected.name;
    EXPECT_EQ(found.maxHeight, expected.maxHeight) << expected.name;
  }
}

TEST(Templates, CameraBridgeManager_ShowsAnotherTemplateOnItsModalPath) {
  EXPECT_EQ(kCameraBridgeManagerTraits.modalTemplate, 1518);
  EXPECT_EQ(kCameraBridgeManagerTraits.popupTemplate, 1530);
  EXPECT_EQ(kCameraBridgeManagerTraits.childTemplate, 1530);
}

} // namespace krgui

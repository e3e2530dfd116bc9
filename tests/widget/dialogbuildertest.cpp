#include "platform/dialogbuilder.h"
#include "platform/ipaddresscontrol.h"
#include "res/templates.h"
#include "windowwait.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyleOptionButton>
#include <QTest>

#include <gmock/gmock.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace krgui {

namespace {

constexpr int kPointSizes[] = {9, 12};
constexpr QSize kNoLimit(32768, 32768);
constexpr QSize kTightLimit(560, 420);

/// Every class of control, with texts that need more room than a tight maximum gives their rectangles.
constexpr std::array kAllControls = {
    ControlTemplate{ControlClass::GroupBox, 50, "Port Selection and its Setup", {7, 7, 200, 90}, kGrowRight},
    ControlTemplate{ControlClass::Label, 51, "Available <b>Ports</b>:", {14, 20, 60, 8}},
    ControlTemplate{ControlClass::ComboBox, 52, "", {140, 18, 60, 12}},
    ControlTemplate{ControlClass::Label, 53, "&Name:", {14, 36, 40, 8}},
    ControlTemplate{ControlClass::Edit, 54, "first", {60, 34, 60, 12}, kGrowRight},
    ControlTemplate{ControlClass::RadioButton, 55, "None", {14, 52, 30, 10}},
    ControlTemplate{ControlClass::RadioButton, 56, "Serial COM Port Link", {14, 64, 50, 10}},
    ControlTemplate{ControlClass::ReadOnlyEdit, 57, "", {120, 62, 60, 12}},
    ControlTemplate{ControlClass::Button, 58, "Refresh the List...", {14, 78, 60, 14}},
    ControlTemplate{ControlClass::RadioButton, 59, "ASCII", {220, 20, 40, 10}},
    ControlTemplate{ControlClass::RadioButton, 60, "Hexadecimal", {220, 34, 40, 10}},
    ControlTemplate{ControlClass::CheckBox, 61, "Show unreachable Devices", {7, 104, 80, 10}, kMoveDown},
    ControlTemplate{ControlClass::Button, 62, "Not yet", {220, 50, 50, 14}, kStay, false, true},
    ControlTemplate{ControlClass::Tree, 63, "", {7, 118, 120, 40}, kGrowDown},
    ControlTemplate{ControlClass::Label, -1, "Information", {140, 108, 60, 8}},
    ControlTemplate{ControlClass::List, 64, "", {140, 118, 120, 40}, kGrowRight | kGrowDown},
    ControlTemplate{ControlClass::HorizontalScrollBar, 65, "", {0, 164, 100, 8}, kMoveDown, true},
    ControlTemplate{ControlClass::VerticalScrollBar, 66, "", {290, 0, 8, 100}, kMoveRight},
    ControlTemplate{ControlClass::Frame, 67, "", {210, 70, 70, 20}},
    ControlTemplate{ControlClass::DefaultButton, 1, "OK", {180, 164, 50, 14}, kMoveRight | kMoveDown},
    ControlTemplate{ControlClass::Button, 2, "Cancel", {236, 164, 50, 14}, kMoveRight | kMoveDown},
};
constexpr DialogTemplate kAllClasses = {1, "All", DialogKind::SizingPopup, 300, 180, kAllControls};

QFont MakeFont(int aPointSize) {
  return {QStringLiteral("DejaVu Sans"), aPointSize};
}

/// A dialog as an opening makes it.
struct Opening {
  explicit Opening(const DialogTemplate& aTemplate, int aPointSize = 9, const QSize& aMaximum = kNoLimit)
      : dialog(MakeDialog(aPointSize)), controls(aTemplate, *dialog, aMaximum) {
    dialog->resize(controls.GetTemplateSize());
  }

  static std::unique_ptr<QDialog> MakeDialog(int aPointSize) {
    auto made = std::make_unique<QDialog>();
    made->setFont(MakeFont(aPointSize));
    return made;
  }

  template <typename Control>
  Control* Get(int aID) const {
    return qobject_cast<Control*>(controls.Get(aID));
  }

  /// Without painting, as no test looks at pixels: the toolkit fills large areas in threads, and as it is built without
  /// the thread sanitizer, that sees no order between them.
  void Show() const {
    dialog->setUpdatesEnabled(false);
    dialog->show();
  }

  std::unique_ptr<QDialog> dialog;
  DialogControls controls;
};

/// Where a button's, check box' or radio button's text is drawn, as its style says.
QRect GetTextRect(const QAbstractButton& aButton, QStyle::SubElement aElement) {
  QStyleOptionButton option;
  option.initFrom(&aButton);
  return aButton.style()->subElementRect(aElement, &option, &aButton);
}

QRect GetTextRect(const QWidget& aWidget) {
  if (const auto* button = qobject_cast<const QPushButton*>(&aWidget)) {
    return GetTextRect(*button, QStyle::SE_PushButtonContents);
  }
  if (const auto* checkBox = qobject_cast<const QCheckBox*>(&aWidget)) {
    return GetTextRect(*checkBox, QStyle::SE_CheckBoxContents);
  }
  if (const auto* radioButton = qobject_cast<const QRadioButton*>(&aWidget)) {
    return GetTextRect(*radioButton, QStyle::SE_RadioButtonContents);
  }
  return aWidget.contentsRect();
}

QString GetText(const QWidget& aWidget) {
  const QString title = aWidget.property("title").toString();
  return title.isEmpty() ? aWidget.property("text").toString() : title;
}

/// The room that a widget's text takes; one that breaks its lines takes as many as its width makes.
QSize MeasureText(const QWidget& aWidget) {
  const auto* label = qobject_cast<const QLabel*>(&aWidget);
  if (label != nullptr && label->wordWrap()) {
    return {0, label->heightForWidth(label->width())};
  }
  const auto* address = qobject_cast<const IPAddressControl*>(&aWidget);
  return address != nullptr ? address->minimumSizeHint()
                            : aWidget.fontMetrics().size(Qt::TextShowMnemonic, GetText(aWidget));
}

/// The object names of the controls whose text does not fit into the place where it is drawn.
std::vector<std::string> FindClipped(const QDialog& aDialog) {
  std::vector<std::string> clipped;
  for (const QWidget* widget : aDialog.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
    const QSize text = MeasureText(*widget);
    const QSize place = GetTextRect(*widget).size();
    const bool isLine = qobject_cast<const QLineEdit*>(widget) != nullptr;
    if (text.height() > place.height() || (!isLine && text.width() > place.width())) {
      clipped.push_back(widget->objectName().toStdString() + " " + GetText(*widget).toStdString());
    }
  }
  return clipped;
}

bool IsBox(const QWidget& aWidget) {
  return qobject_cast<const QGroupBox*>(&aWidget) != nullptr || aWidget.metaObject() == &QFrame::staticMetaObject;
}

/// Pairs of controls that share pixels, but for what is drawn around others.
std::vector<std::string> FindOverlaps(const QDialog& aDialog) {
  std::vector<std::string> overlaps;
  const auto widgets = aDialog.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
  for (const QWidget* one : widgets) {
    for (const QWidget* other : widgets) {
      if (one < other && !IsBox(*one) && !IsBox(*other) && one->geometry().intersects(other->geometry())) {
        overlaps.push_back(one->objectName().toStdString() + " " + other->objectName().toStdString());
      }
    }
  }
  return overlaps;
}

/// A window's three ways of showing, each with a template.
std::array<int, 3> GetTemplateIDs(const WindowTraits& aWindow) {
  return {aWindow.modalTemplate, aWindow.popupTemplate, aWindow.childTemplate};
}

} // namespace

// All templates of all windows.

TEST(DialogBuilder, EveryTemplateAtSmallAndLargeFont_ClipsNoTextAndOverlapsNothing) {
  for (const WindowTraits& window : kWindowTraits) {
    for (const int id : GetTemplateIDs(window)) {
      for (const int pointSize : kPointSizes) {
        SCOPED_TRACE(testing::Message() << window.name << " " << id << " at " << pointSize);

        const Opening opening(*FindTemplate(id), pointSize, {window.maxWidth, window.maxHeight});

        EXPECT_THAT(FindClipped(*opening.dialog), testing::IsEmpty());
        EXPECT_THAT(FindOverlaps(*opening.dialog), testing::IsEmpty());
      }
    }
  }
}

TEST(DialogBuilder, EveryTemplateAtSmallAndLargeFont_StaysWithinItsWindowsMaximum) {
  for (const WindowTraits& window : kWindowTraits) {
    for (const int id : GetTemplateIDs(window)) {
      for (const int pointSize : kPointSizes) {
        SCOPED_TRACE(testing::Message() << window.name << " " << id << " at " << pointSize);

        const Opening opening(*FindTemplate(id), pointSize, {window.maxWidth, window.maxHeight});
        const QSize size = opening.controls.GetTemplateSize();

        EXPECT_LE(size.width(), window.maxWidth);
        EXPECT_LE(size.height(), window.maxHeight);
        EXPECT_GT(size.width(), FindTemplate(id)->width) << "a unit is more than a pixel at these fonts";
        EXPECT_GT(size.height(), FindTemplate(id)->height);
      }
    }
  }
}

TEST(DialogBuilder, EveryTemplateWithoutLimit_ClipsNoTextAndOverlapsNothing) {
  ASSERT_FALSE(GetTemplates().empty());
  for (const DialogTemplate& each : GetTemplates()) {
    for (const int pointSize : kPointSizes) {
      SCOPED_TRACE(testing::Message() << each.id << " at " << pointSize);

      const Opening opening(each, pointSize);

      EXPECT_THAT(FindClipped(*opening.dialog), testing::IsEmpty());
      EXPECT_THAT(FindOverlaps(*opening.dialog), testing::IsEmpty());
    }
  }
}

TEST(DialogBuilder, DeviceSelection_IsAsLargeAsItsMaximumAllows) {
  const DialogTemplate& finder = *FindTemplate(1504);

  const QSize unlimited = Opening(finder).controls.GetTemplateSize();
  const QSize limited = Opening(finder, 9, {800, 600}).controls.GetTemplateSize();

  EXPECT_GT(unlimited.width(), 800);
  EXPECT_GT(unlimited.height(), 600);
  EXPECT_EQ(limited, QSize(800, 600));
}

TEST(DialogBuilder, TightMaximum_TextsGetTheRoomThatTheyNeed) {
  for (const int pointSize : kPointSizes) {
    const Opening opening(kAllClasses, pointSize, kTightLimit);

    EXPECT_THAT(FindClipped(*opening.dialog), testing::IsEmpty()) << pointSize;
    EXPECT_THAT(FindOverlaps(*opening.dialog), testing::IsEmpty()) << pointSize;
  }
}

TEST(DialogBuilder, MaximumTooTightForItsTexts_StillOverlapsNothing) {
  const Opening opening(kAllClasses, 12, {300, 200});

  EXPECT_THAT(FindClipped(*opening.dialog), testing::Not(testing::IsEmpty()));
  EXPECT_THAT(FindOverlaps(*opening.dialog), testing::IsEmpty());
}

// Finding controls.

TEST(DialogBuilder, EveryControlWithAnID_IsFoundByIDNameAndProperty) {
  const Opening opening(kAllClasses);

  for (const ControlTemplate& control : kAllControls) {
    if (control.id == -1) {
      continue;
    }
    QWidget* found = opening.controls.Get(control.id);

    ASSERT_NE(found, nullptr) << control.id;
    EXPECT_EQ(found->parentWidget(), opening.dialog.get()) << control.id;
    EXPECT_EQ(found, opening.dialog->findChild<QWidget*>(QStringLiteral("control%1").arg(control.id)));
    EXPECT_EQ(found->property("controlID").toInt(), control.id);
  }
}

TEST(DialogBuilder, IDThatTheTemplateLacks_GivesNull) {
  const Opening opening(kAllClasses);

  EXPECT_EQ(opening.controls.Get(9999), nullptr);
  EXPECT_EQ(opening.controls.Get(0), nullptr);
  EXPECT_EQ(opening.controls.Get(-1), nullptr) << "the number of those that nobody looks up";
}

TEST(DialogBuilder, ControlThatTheWindowDeleted_GivesNullAndIsLeftOutOfTheLayout) {
  Opening opening(kAllClasses);

  delete opening.controls.Get(54);
  opening.controls.Layout({800, 600});

  EXPECT_EQ(opening.controls.Get(54), nullptr);
  EXPECT_NE(opening.controls.Get(55), nullptr);
}

TEST(DialogBuilder, DisplayTemplates_HaveTheirScrollBars) {
  for (const int id : {1021, 1028}) {
    const Opening opening(*FindTemplate(id));

    ASSERT_NE(opening.Get<QScrollBar>(1044), nullptr) << id;
    ASSERT_NE(opening.Get<QScrollBar>(1046), nullptr) << id;
    EXPECT_EQ(opening.Get<QScrollBar>(1044)->orientation(), Qt::Horizontal) << id;
    EXPECT_EQ(opening.Get<QScrollBar>(1046)->orientation(), Qt::Vertical) << id;
  }
}

// How controls start.

TEST(DialogBuilder, ShownDialog_HidesAndDisablesWhatStartsSo) {
  const Opening opening(kAllClasses);

  opening.Show();

  EXPECT_FALSE(opening.controls.Get(65)->isVisible());
  EXPECT_TRUE(opening.controls.Get(66)->isVisible());
  EXPECT_FALSE(opening.controls.Get(62)->isEnabled());
  EXPECT_TRUE(opening.controls.Get(58)->isEnabled());
}

TEST(DialogBuilder, Buttons_NeverBecomeDefaultByTheFocusAndOnlyOneIsIt) {
  const Opening opening(kAllClasses);

  std::vector<int> defaults;
  for (const QPushButton* button : opening.dialog->findChildren<QPushButton*>()) {
    EXPECT_FALSE(button->autoDefault()) << button->text().toStdString();
    if (button->isDefault()) {
      defaults.push_back(button->property("controlID").toInt());
    }
  }

  EXPECT_THAT(defaults, testing::ElementsAre(1));
}

TEST(DialogBuilder, DefaultButtonWithAnotherID_IsNoDefault) {
  static constexpr std::array kControls = {ControlTemplate{ControlClass::DefaultButton, 5, "Go", {0, 0, 50, 14}}};
  const DialogTemplate other = {2, "", DialogKind::SizingPopup, 100, 50, kControls};

  const Opening opening(other);

  EXPECT_FALSE(opening.Get<QPushButton>(5)->isDefault());
}

TEST(DialogBuilder, ButtonBeyondTheEdge_WidensTheDialogUnlessItsWindowLaysItOut) {
  static constexpr std::array kControls = {ControlTemplate{ControlClass::Button, 5, "Go", {150, 0, 50, 14}}};
  DialogTemplate wide = {2, "", DialogKind::SizingPopup, 200, 50, kControls};
  const Opening widened(wide);
  const int least = widened.controls.FindLeastWidth(30, 1000);
  wide.isLaidOutByWindow = true;
  const Opening laidOut(wide);

  EXPECT_EQ(least, widened.controls.Get(5)->geometry().right() + 1);
  EXPECT_EQ(laidOut.controls.FindLeastWidth(30, 1000), 30);
}

TEST(DialogBuilder, LabelWithMarkup_ShowsItAsPlainText) {
  const Opening opening(kAllClasses);

  const QLabel* label = opening.Get<QLabel>(51);

  EXPECT_EQ(label->textFormat(), Qt::PlainText);
  EXPECT_EQ(label->text(), QStringLiteral("Available <b>Ports</b>:"));
}

TEST(DialogBuilder, Edits_AreReadOnlyAsTheTemplateSays) {
  const Opening opening(kAllClasses);

  EXPECT_FALSE(opening.Get<QLineEdit>(54)->isReadOnly());
  EXPECT_EQ(opening.Get<QLineEdit>(54)->text(), QStringLiteral("first"));
  EXPECT_TRUE(opening.Get<QLineEdit>(57)->isReadOnly());
}

// What the user does.

TEST(DialogBuilder, RadioButtons_ExcludeOnlyThoseInTheSameGroupBox) {
  const Opening opening(kAllClasses);
  opening.Show();

  for (const int id : {55, 59, 56}) {
    QTest::mouseClick(opening.controls.Get(id), Qt::LeftButton, {}, {8, opening.controls.Get(id)->height() / 2});
  }

  EXPECT_FALSE(opening.Get<QRadioButton>(55)->isChecked());
  EXPECT_TRUE(opening.Get<QRadioButton>(56)->isChecked());
  EXPECT_TRUE(opening.Get<QRadioButton>(59)->isChecked());
  EXPECT_FALSE(opening.Get<QRadioButton>(60)->isChecked());
}

TEST(DialogBuilder, ControlInsideAGroupBox_GetsTheMouse) {
  const Opening opening(kAllClasses);
  opening.Show();

  QWidget* button = opening.controls.Get(58);

  EXPECT_EQ(opening.dialog->childAt(button->geometry().center()), button);
}

TEST(DialogBuilder, TabKey_GoesThroughTheControlsInTemplateOrder) {
  const Opening opening(kAllClasses);
  opening.Show();
  opening.dialog->activateWindow();
  ASSERT_TRUE(krtest::AwaitActive(opening.dialog.get()));
  // A checked radio button stands for its group.
  opening.Get<QRadioButton>(55)->setChecked(true);
  opening.Get<QRadioButton>(59)->setChecked(true);
  opening.controls.Get(52)->setFocus();

  std::vector<int> visited;
  for (int step = 0; step < 11; ++step) {
    visited.push_back(QApplication::focusWidget()->property("controlID").toInt());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }

  EXPECT_THAT(visited, testing::ElementsAre(52, 54, 55, 57, 58, 59, 61, 63, 64, 1, 2));
  EXPECT_EQ(QApplication::focusWidget(), opening.controls.Get(52)) << "and round again";
}

TEST(DialogBuilder, AssistiveTechnology_FindsEveryControlByAName) {
  const Opening opening(kAllClasses);
  const struct {
    int id;
    const char* name;
  } rows[] = {{1, "OK"},
              {52, "Available <b>Ports</b>"},
              {54, "Name"},
              {61, "Show unreachable Devices"},
              {64, "Information"},
              {65, "Horizontal scroll bar"},
              {66, "Vertical scroll bar"}};

  for (const auto& row : rows) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(opening.controls.Get(row.id));

    ASSERT_NE(accessible, nullptr) << row.id;
    EXPECT_EQ(accessible->text(QAccessible::Name).toStdString(), row.name);
  }
}

TEST(DialogBuilder, LabelBeforeAnEdit_GivesItTheFocusByItsShortcut) {
  const Opening opening(kAllClasses);

  EXPECT_EQ(opening.Get<QLabel>(53)->buddy(), opening.controls.Get(54));
}

// Sizes, fonts and texts that change.

TEST(DialogBuilder, LargerDialog_ControlsFollowAndReturn) {
  Opening opening(kAllClasses);
  const QSize size = opening.controls.GetTemplateSize();
  const QRect ok = opening.controls.Get(1)->geometry();
  const QRect list = opening.controls.Get(64)->geometry();

  opening.controls.Layout(size + QSize(100, 50));
  const QRect movedOK = opening.controls.Get(1)->geometry();
  const QRect grownList = opening.controls.Get(64)->geometry();
  opening.controls.Layout(size);

  EXPECT_EQ(movedOK, ok.translated(100, 50));
  EXPECT_EQ(grownList, list.adjusted(0, 0, 100, 50));
  EXPECT_EQ(opening.controls.Get(1)->geometry(), ok);
  EXPECT_EQ(opening.controls.Get(64)->geometry(), list);
}

TEST(DialogBuilder, TinyDialog_GivesNoNegativeSizes) {
  Opening opening(kAllClasses);

  opening.controls.Layout({1, 1});

  for (const QWidget* widget : opening.dialog->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
    EXPECT_GE(widget->width(), 0) << widget->objectName().toStdString();
    EXPECT_GE(widget->height(), 0) << widget->objectName().toStdString();
  }
}

TEST(DialogBuilder, FontChangesAndLaysOutAgain_IsAsIfMadeWithTheNewFont) {
  Opening changed(kAllClasses, 9);
  const Opening made(kAllClasses, 12);

  changed.dialog->setFont(MakeFont(12));
  changed.controls.Layout(changed.controls.GetTemplateSize());

  EXPECT_EQ(changed.controls.GetTemplateSize(), made.controls.GetTemplateSize());
  for (const ControlTemplate& control : kAllControls) {
    if (control.id != -1) {
      EXPECT_EQ(changed.controls.Get(control.id)->geometry(), made.controls.Get(control.id)->geometry()) << control.id;
    }
  }
}

TEST(DialogBuilder, LabelsTextBecomesLongerAndShorter_ItsRoomFollowsAtTheNextLayout) {
  Opening opening(kAllClasses, 9, kTightLimit);
  QLabel* label = opening.Get<QLabel>(53);
  const QRect before = label->geometry();
  const QRect edit = opening.controls.Get(54)->geometry();

  label->setText(QStringLiteral("Name that does not fit:"));
  opening.controls.Layout(opening.controls.GetTemplateSize());
  const QRect longer = label->geometry();
  label->setText(QStringLiteral("Name:"));
  opening.controls.Layout(opening.controls.GetTemplateSize());

  EXPECT_GT(longer.width(), before.width());
  EXPECT_LT(longer.right(), edit.left());
  EXPECT_EQ(label->geometry(), before);
}

} // namespace krgui

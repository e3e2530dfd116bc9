// Which editor a row gets, what it begins with, where it stands, and who has the focus.

#include "editorsfixture.h"

#include <QScrollBar>

namespace krgui {

namespace {

/// Counts the Escape keys that come through to a window, which would close by them.
class KeyWatch final : public QObject {
public:
  int escapes = 0;

protected:
  bool eventFilter(QObject*, QEvent* aEvent) override {
    escapes += aEvent->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(aEvent)->key() == Qt::Key_Escape ? 1 : 0;
    return false;
  }
};

TEST_F(EditorsTest, SelectedInteger_HasEditBoxAndUpDownControlWithoutFocus) {
  SetRegister(0x100, {9});
  Select("BinningHorizontal");

  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_EQ(NumberBox()->text(), "9");
  EXPECT_NE(UpDown(), nullptr);
  EXPECT_FALSE(NumberBox()->hasFocus());
  EXPECT_TRUE(grid->hasFocus());
}

TEST_F(EditorsTest, SelectedFloat_HasEditBoxWithoutUpDownControl) {
  Select("ExposureTime");

  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_EQ(NumberBox()->text(), "0");
  EXPECT_EQ(UpDown(), nullptr);
}

TEST_F(EditorsTest, FloatAfterInteger_HidesUpDownControl) {
  Select("OffsetX");
  ASSERT_NE(UpDown(), nullptr);

  Select("ExposureTime");

  EXPECT_EQ(UpDown(), nullptr);
}

TEST_F(EditorsTest, SelectedHexadecimal_ShowsPrefixAndDigits) {
  SetRegister(0x104, {0xAB});
  Select("LineMask");

  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_EQ(NumberBox()->text(), "0xAB");
}

TEST_F(EditorsTest, SelectedMACAddress_IsEditedAsNumber) {
  SetRegister(0x110, {0x10, 0x27});
  Select("GevMACAddress");

  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_EQ(NumberBox()->text(), "10000");
}

TEST_F(EditorsTest, SelectedIPAddress_IsEditedAsDottedText) {
  SetRegister(0x10C, {1, 0, 168, 192});
  Select("GevCurrentIPAddress");

  ASSERT_NE(TextBox(), nullptr);
  EXPECT_EQ(TextBox()->text(), "192.168.0.1");
}

TEST_F(EditorsTest, SelectedString_IsSelectedWholeWithoutFocus) {
  SetRegister(0x140, {'a', 'b'});
  Select("DeviceUserID");

  ASSERT_NE(TextBox(), nullptr);
  EXPECT_EQ(TextBox()->selectedText(), "ab");
  EXPECT_FALSE(TextBox()->hasFocus());
}

TEST_F(EditorsTest, ClickInValueCell_FocusesTheEditorWhichEscapeLeavesAlone) {
  struct {
    const char* kind;
    const char* feature;
    const char* editor;
  } constexpr kRows[] = {
      {"text", "DeviceUserID", "textEditor"},         {"address", "GevCurrentIPAddress", "textEditor"},
      {"integer", "OffsetX", "numberEditor"},         {"number", "ExposureTime", "numberEditor"},
      {"enumeration", "PixelFormat", "choiceEditor"}, {"boolean", "ReverseX", "choiceEditor"},
      {"command", "DeviceReset", "commandEditor"},
  };
  KeyWatch watch;
  window->installEventFilter(&watch);

  for (const auto& row : kRows) {
    SCOPED_TRACE(row.kind);
    elsewhere->setFocus();
    ClickValue(row.feature);
    ASSERT_NE(Find<QWidget>(row.editor), nullptr);
    EXPECT_TRUE(Find<QWidget>(row.editor)->hasFocus());

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    Pump();

    EXPECT_TRUE(grid->hasFocus());
    EXPECT_EQ(watch.escapes, 0);
  }
}

TEST_F(EditorsTest, ClickOnName_LeavesFocusInGrid) {
  ClickName("DeviceUserID");

  ASSERT_NE(TextBox(), nullptr);
  EXPECT_TRUE(grid->hasFocus());
}

TEST_F(EditorsTest, EnterOnGrid_FocusesEditorAndSelectsItsText) {
  SetRegister(0x108, {42});
  Enter("OffsetX");

  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_TRUE(NumberBox()->hasFocus());
  EXPECT_EQ(NumberBox()->selectedText(), "42");
}

TEST_F(EditorsTest, EnterOnGrid_FocusesEditorAlsoAfterAnEnterThatWasReleasedInAnEditor) {
  Select("OffsetX");
  QTest::keyPress(grid, Qt::Key_Return);
  Pump();
  ASSERT_TRUE(NumberBox() != nullptr && NumberBox()->hasFocus());
  QTest::keyRelease(NumberBox(), Qt::Key_Return);
  ClickName("BinningHorizontal");
  ASSERT_TRUE(grid->hasFocus());

  QTest::keyPress(grid, Qt::Key_Return);
  Pump();

  EXPECT_TRUE(NumberBox()->hasFocus());
}

TEST_F(EditorsTest, FeatureThatBecomesUnlockedAfterAClick_LeavesTheFocusWhereTheUserWorks) {
  SetRegister(0x180, {1});
  ClickValue("LineMask");
  elsewhere->setFocus();
  Pump();

  ChangeRegister(0x180, {0}, "LineMask");

  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_TRUE(elsewhere->hasFocus());
}

TEST_F(EditorsTest, SelectedBoolean_OffersFalseAndTrueAndShowsItsValue) {
  SetRegister(0x11C, {1});
  Select("ReverseX");

  ASSERT_NE(Combo(), nullptr);
  ASSERT_EQ(Combo()->count(), 2);
  EXPECT_EQ(Combo()->itemText(0), "False");
  EXPECT_EQ(Combo()->currentText(), "True");
}

TEST_F(EditorsTest, SelectedEnumeration_OffersAvailableAndVisibleEntriesWithTooltips) {
  grid->SetVisibility(KrGenVisibility::Guru);
  Select("PixelFormat");

  ASSERT_NE(Combo(), nullptr);
  ASSERT_EQ(Combo()->count(), 3);
  EXPECT_EQ(Combo()->itemText(0), "Mono8");
  EXPECT_EQ(Combo()->itemText(2), "RGB8");
  EXPECT_EQ(Combo()->currentIndex(), 0);
  EXPECT_EQ(Combo()->GetList().GetToolText(1), "Eight bits");
  EXPECT_EQ(Combo()->GetList().GetToolText(2), "Twelve <b>bits</b>");
}

TEST_F(EditorsTest, EnumerationAtInvisible_OffersInvisibleEntries) {
  grid->SetVisibility(KrGenVisibility::Invisible);
  Select("PixelFormat");

  ASSERT_NE(Combo(), nullptr);
  EXPECT_EQ(Combo()->count(), 4);
}

TEST_F(EditorsTest, DisplayNames_AreThoseOfEntriesAndOfEditors) {
  showsDisplayNames = true;
  Fill();

  Select("PixelFormat");
  ASSERT_NE(Combo(), nullptr);
  EXPECT_EQ(Combo()->itemText(0), "Mono 8");
  Select("DeviceUserID");
  ASSERT_NE(TextBox(), nullptr);
  EXPECT_EQ(TextBox()->accessibleName(), "Device User ID");
}

TEST_F(EditorsTest, SelectedCommand_HasButtonWithItsName) {
  Select("DeviceReset");

  ASSERT_NE(Button(), nullptr);
  EXPECT_EQ(Button()->text(), "DeviceReset");
  EXPECT_FALSE(Button()->hasFocus());
}

TEST_F(EditorsTest, RegisterAndReadOnlyFeature_HaveNoEditor) {
  for (const char* name : {"FileAccessBuffer", "SensorWidth"}) {
    Enter(name);

    EXPECT_EQ(NumberBox(), nullptr) << name;
    EXPECT_EQ(TextBox(), nullptr) << name;
    EXPECT_EQ(Button(), nullptr) << name;
    EXPECT_EQ(Combo(), nullptr) << name;
  }
}

TEST_F(EditorsTest, Register_IsNotReadAgainWheneverItsRowIsShown) {
  Select("FileAccessBuffer");
  (void)camera.port.TakeRecords();

  grid->HandleMessage({kRowChangedMessage, Item("FileAccessBuffer"), 1});
  grid->HandleMessage({kRepositionEditorMessage, 0, 0});

  EXPECT_TRUE(camera.port.TakeRecords().empty());
}

TEST_F(EditorsTest, Editors_AreNamedAfterTheirFeature) {
  Select("OffsetX");
  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_EQ(NumberBox()->accessibleName(), "OffsetX");
  EXPECT_EQ(Arrow("up")->accessibleName(), "Increase OffsetX");
  EXPECT_EQ(Arrow("down")->accessibleName(), "Decrease OffsetX");
  Select("PixelFormat");
  ASSERT_NE(Combo(), nullptr);
  EXPECT_EQ(Combo()->accessibleName(), "PixelFormat");
  Select("DeviceReset");
  ASSERT_NE(Button(), nullptr);
  EXPECT_EQ(Button()->accessibleName(), "DeviceReset");
}

TEST_F(EditorsTest, OpenEditor_CoversItsValueCell) {
  Select("DeviceUserID");

  // From the boundary to the row's end, and one pixel above and below the row.
  ASSERT_EQ(grid->FindRow(Item("DeviceUserID")), QRect(QPoint(0, 54), QPoint(535, 71)));
  ASSERT_NE(TextBox(), nullptr);
  EXPECT_EQ(TextBox()->geometry(), QRect(QPoint(220, 53), QPoint(535, 72)));
}

TEST_F(EditorsTest, UpDownControl_StandsBesideEditBoxInTheCell) {
  Select("DeviceUserID");
  ASSERT_NE(TextBox(), nullptr);
  const int cellRight = TextBox()->geometry().right();

  Select("OffsetX");

  ASSERT_NE(UpDown(), nullptr);
  EXPECT_EQ(NumberBox()->geometry().right() + 1, UpDown()->geometry().left());
  EXPECT_EQ(UpDown()->geometry().right(), cellRight);
  EXPECT_EQ(UpDown()->height(), NumberBox()->height());
}

TEST_F(EditorsTest, RightToLeft_UpDownControlStandsOnTheLeft) {
  window->setLayoutDirection(Qt::RightToLeft);
  Pump();
  Select("OffsetX");

  ASSERT_NE(UpDown(), nullptr);
  EXPECT_EQ(UpDown()->geometry().right() + 1, NumberBox()->geometry().left());
}

TEST_F(EditorsTest, OnlyOneEditor_IsOpenAtATime) {
  Select("DeviceUserID");
  ASSERT_NE(TextBox(), nullptr);

  Select("PixelFormat");

  EXPECT_NE(Combo(), nullptr);
  EXPECT_EQ(TextBox(), nullptr);
}

TEST_F(EditorsTest, SelectionOfCategoryOrNone_ClosesEditor) {
  Select("DeviceUserID");
  ASSERT_NE(TextBox(), nullptr);

  grid->Select(kNoItem);
  Pump();

  EXPECT_EQ(TextBox(), nullptr);
}

TEST_F(EditorsTest, FeatureThatBecomesLocked_LosesEditorAndGridGetsFocus) {
  Enter("LineMask");
  ASSERT_NE(NumberBox(), nullptr);
  ChangeRegister(0x180, {1}, "LineMask");

  EXPECT_EQ(NumberBox(), nullptr);
  EXPECT_TRUE(grid->hasFocus());
  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(EditorsTest, FeatureThatBecomesUnlocked_GetsEditor) {
  SetRegister(0x180, {1});
  Select("LineMask");
  ASSERT_EQ(NumberBox(), nullptr);

  ChangeRegister(0x180, {0}, "LineMask");

  EXPECT_NE(NumberBox(), nullptr);
}

TEST_F(EditorsTest, NewValue_IsShownInEditorThatNobodyUses) {
  Select("OffsetX");
  ASSERT_NE(NumberBox(), nullptr);
  ChangeRegister(0x108, {77}, "OffsetX");

  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_EQ(NumberBox()->text(), "77");
}

TEST_F(EditorsTest, NewValue_LeavesWhatTheUserTypes) {
  Enter("OffsetX");
  ASSERT_NE(NumberBox(), nullptr);
  QTest::keyClicks(NumberBox(), "5");
  ChangeRegister(0x108, {77}, "OffsetX");

  EXPECT_EQ(Value("OffsetX"), "77 ");
  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_EQ(NumberBox()->text(), "5");
  EXPECT_TRUE(NumberBox()->hasFocus());
}

TEST_F(EditorsTest, RowScrolledAway_KeepsFocusAndTypedTextAndComesBack) {
  window->resize(560, 180);
  Pump();
  Enter("BinningHorizontal");
  ASSERT_NE(NumberBox(), nullptr);
  QTest::keyClicks(NumberBox(), "6");

  grid->scrollToBottom();
  Pump();
  const bool hadFocus = NumberBox() != nullptr && NumberBox()->hasFocus();
  const bool wasInSight = NumberBox() != nullptr && NumberBox()->geometry().intersects(grid->viewport()->rect());
  grid->scrollToTop();
  Pump();

  EXPECT_TRUE(hadFocus);
  EXPECT_FALSE(wasInSight);
  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_EQ(NumberBox()->text(), "6");
  EXPECT_TRUE(NumberBox()->geometry().intersects(grid->viewport()->rect()));
  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(EditorsTest, EnterOnARowScrolledAway_BringsItBackWithItsEditor) {
  window->resize(560, 180);
  Pump();
  Select("BinningHorizontal");
  grid->scrollToBottom();
  Pump();
  ASSERT_FALSE(grid->FindRow(Item("BinningHorizontal")).intersects(grid->viewport()->rect()));

  QTest::keyClick(grid, Qt::Key_Return);
  Pump();

  EXPECT_TRUE(grid->viewport()->rect().contains(grid->FindRow(Item("BinningHorizontal"))));
  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_TRUE(NumberBox()->hasFocus());
  EXPECT_TRUE(NumberBox()->geometry().contains(QPoint(300, grid->FindRow(Item("BinningHorizontal")).center().y())));
}

TEST_F(EditorsTest, EnterOnARowScrolledAwayByHalf_ShowsItWhole) {
  window->resize(560, 180);
  Pump();
  Select("BinningHorizontal");
  grid->verticalScrollBar()->setValue(5);
  Pump();
  ASSERT_LT(grid->FindRow(Item("BinningHorizontal")).top(), 0);

  QTest::keyClick(grid, Qt::Key_Return);
  Pump();

  EXPECT_EQ(grid->FindRow(Item("BinningHorizontal")).top(), 0);
  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_TRUE(NumberBox()->hasFocus());
}

TEST_F(EditorsTest, EnterInAGridWithoutRoomForARow_LeavesTheFocusInTheGrid) {
  Select("BinningHorizontal");
  grid->setFixedHeight(2 * grid->frameWidth());
  Pump();

  QTest::keyClick(grid, Qt::Key_Return);
  Pump();
  EXPECT_TRUE(grid->hasFocus());
  grid->setFixedHeight(300);
  Pump();

  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_TRUE(grid->hasFocus());
}

TEST_F(EditorsTest, FocusWantedForAnEditorThatIsStillToBeWritten_IsForgottenWithItsRow) {
  Enter("OffsetX");
  Type(NumberBox(), "7", Qt::Key_Return);
  grid->HandleMessage({kRepositionEditorMessage, 1, 0});

  Select("BinningHorizontal");

  EXPECT_EQ(Integer("OffsetX"), 7);
  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_TRUE(grid->hasFocus());
}

} // namespace

} // namespace krgui

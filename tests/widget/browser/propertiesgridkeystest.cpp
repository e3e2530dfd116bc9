// The property grid by keyboard alone.

#include "gridfixture.h"
#include "windowwait.h"

#include <QClipboard>
#include <QLineEdit>
#include <QVBoxLayout>

namespace krgui {

namespace {

class GridKeysTest : public GridTest {
protected:
  void SetUp() override {
    Fill();
    Show();
    ReadAll();
  }
  bool IsEditorFocused() const { return mGrid->viewport()->isAncestorOf(QApplication::focusWidget()); }
};

} // namespace

TEST_F(GridKeysTest, Focus_SelectsNothingByItself) {
  EXPECT_EQ(mGrid->GetSelected(), kNoItem);
}

TEST_F(GridKeysTest, ArrowsHomeEndAndPages_MoveTheSelection) {
  Press(Qt::Key_Down);
  EXPECT_EQ(GetSelectedName(), "Analog");
  Press(Qt::Key_Down);
  EXPECT_EQ(GetSelectedName(), "Gain");
  Press(Qt::Key_Up);
  EXPECT_EQ(GetSelectedName(), "Analog");
  Press(Qt::Key_End);
  EXPECT_EQ(GetSelectedName(), "Empty");
  Press(Qt::Key_Home);
  EXPECT_EQ(GetSelectedName(), "Analog");

  mGrid->resize(500, 110);
  Press(Qt::Key_PageDown);
  const std::string below = GetSelectedName();
  EXPECT_NE(below, "Analog");
  EXPECT_NE(below, "Empty");
  Press(Qt::Key_PageUp);
  EXPECT_EQ(GetSelectedName(), "Analog");
}

TEST_F(GridKeysTest, LeftAndRight_OpenCloseAndStep) {
  mGrid->Select(Item("Analog"));

  Press(Qt::Key_Left);
  EXPECT_FALSE(IsOpen("Analog"));
  Press(Qt::Key_Left);
  EXPECT_EQ(GetSelectedName(), "Analog");
  Press(Qt::Key_Right);
  EXPECT_TRUE(IsOpen("Analog"));
  Press(Qt::Key_Right);
  EXPECT_EQ(GetSelectedName(), "Gain");
  Press(Qt::Key_Right);
  EXPECT_EQ(GetSelectedName(), "Gain");
  Press(Qt::Key_Left);
  EXPECT_EQ(GetSelectedName(), "Analog");
}

TEST_F(GridKeysTest, MirroredLeftAndRight_ChangePlaces) {
  mGrid->setLayoutDirection(Qt::RightToLeft);
  mGrid->Select(Item("Analog"));

  Press(Qt::Key_Right);
  EXPECT_FALSE(IsOpen("Analog"));
  Press(Qt::Key_Left);
  EXPECT_TRUE(IsOpen("Analog"));
}

TEST_F(GridKeysTest, PlusMinusAndAsterisk_OpenAndClose) {
  mGrid->Select(Item("DeviceControl"));

  Press(Qt::Key_Minus);
  EXPECT_FALSE(IsOpen("DeviceControl"));
  Press(Qt::Key_Plus, Qt::KeypadModifier);
  EXPECT_TRUE(IsOpen("DeviceControl"));
  mGrid->CollapseAll();
  mGrid->SetOpen(Item("Inner"), false);
  Press(Qt::Key_Asterisk, Qt::ShiftModifier);

  EXPECT_TRUE(IsOpen("DeviceControl"));
  EXPECT_TRUE(IsOpen("Inner"));
  EXPECT_FALSE(IsOpen("Analog"));
  EXPECT_TRUE(Node("Hebrew").IsOnScreen());
}

TEST_F(GridKeysTest, Letters_SelectTheRowWhoseNameBeginsWithThem) {
  QTest::keyClicks(mGrid.get(), "brok");

  EXPECT_EQ(GetSelectedName(), "Broken");
}

TEST_F(GridKeysTest, ControlWithLeftAndRight_MovesTheBoundaryWithinItsLimits) {
  mGrid->Select(Item("Analog"));
  Press(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(FindBoundary(), 230);
  Press(Qt::Key_Left, Qt::ControlModifier);
  Press(Qt::Key_Left, Qt::ControlModifier | Qt::KeypadModifier);
  EXPECT_EQ(FindBoundary(), 210);

  for (int press = 0; press < 60; ++press)
    Press(Qt::Key_Left, Qt::ControlModifier);
  EXPECT_EQ(FindBoundary(), 100);
  for (int press = 0; press < 60; ++press)
    Press(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(FindBoundary(), mGrid->width() - 50);

  EXPECT_EQ(GetSelectedName(), "Analog");
  EXPECT_TRUE(IsOpen("Analog"));
}

TEST_F(GridKeysTest, BoundaryWithoutASelection_MovesToo) {
  Press(Qt::Key_Left, Qt::ControlModifier);

  EXPECT_EQ(FindBoundary(), 210);
  EXPECT_EQ(mGrid->GetSelected(), kNoItem);
}

TEST_F(GridKeysTest, MirroredBoundary_GoesWhereTheArrowPoints) {
  mGrid->setLayoutDirection(Qt::RightToLeft);

  Press(Qt::Key_Left, Qt::ControlModifier);

  EXPECT_EQ(FindBoundary(), mGrid->viewport()->width() - 1 - 230);
}

TEST_F(GridKeysTest, BoundaryMovedByKey_TakesTheEditorAlong) {
  mGrid->Select(Item("Plain"));
  Settle();
  ASSERT_EQ(mGrid->GetEdited(), Item("Plain"));

  Press(Qt::Key_Left, Qt::ControlModifier);

  bool hasEditor = false;
  for (const QWidget* editor : mGrid->viewport()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
    hasEditor = hasEditor || (editor->isVisible() && editor->x() == 210);
  EXPECT_TRUE(hasEditor);
}

TEST_F(GridKeysTest, Enter_GivesTheFocusToTheEditor) {
  mGrid->Select(Item("Plain"));
  Settle();
  ASSERT_TRUE(mGrid->hasFocus());

  QTest::keyPress(mGrid.get(), Qt::Key_Return);
  Settle();

  EXPECT_TRUE(IsEditorFocused());
}

TEST_F(GridKeysTest, EnterThatIsHeld_IsTakenOnceUntilItIsReleased) {
  mGrid->Select(Item("Fixed"));
  Settle();
  const auto post = [this](QEvent::Type aType, bool aIsRepeat) {
    QKeyEvent event(aType, Qt::Key_Return, {}, QString(), aIsRepeat);
    QCoreApplication::sendEvent(mGrid.get(), &event);
    const bool hasPosted = !mGrid->GetQueue()->IsEmpty();
    Settle();
    return hasPosted;
  };

  EXPECT_TRUE(post(QEvent::KeyPress, false));
  EXPECT_FALSE(post(QEvent::KeyPress, true));
  EXPECT_FALSE(post(QEvent::KeyRelease, true));
  EXPECT_FALSE(post(QEvent::KeyPress, false));
  EXPECT_FALSE(post(QEvent::KeyRelease, false));
  EXPECT_TRUE(post(QEvent::KeyPress, false));
}

TEST_F(GridKeysTest, Escape_IsLeftToTheWindow) {
  QKeyEvent event(QEvent::KeyPress, Qt::Key_Escape, {});
  event.accept();

  QCoreApplication::sendEvent(mGrid.get(), &event);

  EXPECT_FALSE(event.isAccepted());
}

TEST_F(GridKeysTest, Tab_LeavesTheGridInBothDirections) {
  auto window = std::make_unique<QWidget>();
  auto* layout = new QVBoxLayout(window.get());
  auto* before = new QLineEdit(window.get());
  auto* after = new QLineEdit(window.get());
  layout->addWidget(before);
  layout->addWidget(mGrid.get());
  layout->addWidget(after);
  QWidget::setTabOrder(before, mGrid.get());
  QWidget::setTabOrder(mGrid.get(), after);
  window->show();
  window->activateWindow();
  mGrid->Select(Item("Plain"));
  Settle();
  mGrid->setFocus();
  ASSERT_TRUE(krtest::AwaitCondition([this] { return mGrid->hasFocus(); }));

  QTest::keyClick(mGrid.get(), Qt::Key_Tab);
  EXPECT_TRUE(after->hasFocus());
  mGrid->setFocus();
  QTest::keyClick(mGrid.get(), Qt::Key_Backtab, Qt::ShiftModifier);

  EXPECT_TRUE(before->hasFocus());
  mGrid->setParent(nullptr);
}

TEST_F(GridKeysTest, Copy_PutsNameAndValueIntoTheClipboard) {
  const struct {
    const char* name;
    const char* expected;
  } rows[] = {{"Gain", "Gain = 0 dB"}, {"Fixed", "Fixed = 0"}, {"Analog", "Analog"}, {"Missing", "Missing"}};
  for (const auto& row : rows) {
    mGrid->Select(Item(row.name));

    Press(Qt::Key_C, Qt::ControlModifier);

    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), row.expected);
  }
}

TEST_F(GridKeysTest, CopyOfARowInError_HasItsTextInALineOfItsOwn) {
  Node("Plain").SetError("Parameter out of range");
  const std::map<std::string, std::string> rows = {{"Plain", "Plain = 0\nParameter out of range"},
                                                   {"Broken", "Broken\n" + Node("Broken").GetError().ToUtf8()}};
  for (const auto& [name, expected] : rows) {
    mGrid->Select(Item(name));

    Press(Qt::Key_C, Qt::ControlModifier);

    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), expected);
  }
}

TEST_F(GridKeysTest, CopyWithoutASelection_LeavesTheClipboard) {
  QApplication::clipboard()->setText("before");

  Press(Qt::Key_C, Qt::ControlModifier);

  EXPECT_EQ(QApplication::clipboard()->text(), "before");
}

} // namespace krgui

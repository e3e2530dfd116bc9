// The mouse on the property grid's rows and on the boundary between its columns.

#include "gridfixture.h"
#include "windowwait.h"

#include <QLineEdit>

#include <functional>

namespace krgui {

namespace {

class GridMouseTest : public GridTest {
protected:
  void SetUp() override {
    Fill();
    Show();
    ReadAll();
  }
  QWidget* Viewport() const { return mGrid->viewport(); }
  bool ShowsSizingCursor() const { return Viewport()->cursor().shape() == Qt::SizeHorCursor; }
  void Drag(int aFrom, int aTo) {
    QTest::mousePress(Viewport(), Qt::LeftButton, {}, PointIn("Fixed", aFrom));
    QTest::mouseMove(Viewport(), PointIn("Fixed", aTo));
    QMouseEvent move(QEvent::MouseMove, PointIn("Fixed", aTo), Viewport()->mapToGlobal(PointIn("Fixed", aTo)),
                     Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(Viewport(), &move);
    QTest::mouseRelease(Viewport(), Qt::LeftButton, {}, PointIn("Fixed", aTo));
    Settle();
  }
  void DoubleClick(QPoint aPoint) {
    Click(aPoint);
    QTest::mouseDClick(Viewport(), Qt::LeftButton, {}, aPoint);
    QTest::mouseRelease(Viewport(), Qt::LeftButton, {}, aPoint);
  }
  /// The user goes into the value of Plain and types there.
  void TypeIntoPlain(const char* aText) {
    Click(PointIn("Plain", 300));
    Settle();
    auto* const editBox = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_NE(editBox, nullptr);
    editBox->selectAll();
    QTest::keyClicks(editBox, QLatin1String(aText));
    (void)mCamera.port.TakeRecords();
  }
  static void Send(QObject& aReceiver, QEvent::Type aType) {
    QEvent event(aType);
    QCoreApplication::sendEvent(&aReceiver, &event);
  }
  void MoveHeld(int aX) {
    QMouseEvent move(QEvent::MouseMove, PointIn("Fixed", aX), Viewport()->mapToGlobal(PointIn("Fixed", aX)),
                     Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(Viewport(), &move);
    Settle();
  }
  void Hover(int aX) {
    QMouseEvent move(QEvent::MouseMove, PointIn("Fixed", aX), Viewport()->mapToGlobal(PointIn("Fixed", aX)),
                     Qt::NoButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(Viewport(), &move);
  }
};

} // namespace

TEST_F(GridMouseTest, ClickOnAGlyph_TogglesItsCategoryOnceAndSelectsIt) {
  Click(GlyphOf("Analog"));
  EXPECT_FALSE(IsOpen("Analog"));
  EXPECT_EQ(GetSelectedName(), "Analog");
  EXPECT_FALSE(Node("Gain").IsOnScreen());

  Click(GlyphOf("Inner"));
  EXPECT_FALSE(IsOpen("Inner"));
  EXPECT_EQ(GetSelectedName(), "Inner");
}

TEST_F(GridMouseTest, ClickBesideAGlyph_SelectsAlone) {
  Click(PointIn("Analog", 60));

  EXPECT_TRUE(IsOpen("Analog"));
  EXPECT_EQ(GetSelectedName(), "Analog");
}

TEST_F(GridMouseTest, GlyphBox_EndsWhereItIsSaidTo) {
  const struct {
    const char* name;
    int x;
    int fromCentre;
    bool isIn;
  } rows[] = {{"left edge", 3, 0, true},  {"right edge", 12, 0, true}, {"before it", 2, 0, false},
              {"after it", 13, 0, false}, {"top", 7, -4, true},        {"bottom", 7, 4, true},
              {"above it", 7, -5, false}, {"below it", 7, 5, false}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const bool wasOpen = IsOpen("Analog");
    const QRect place = Row("Analog");
    QTest::mousePress(Viewport(), Qt::LeftButton, {}, QPoint(row.x, place.top() + place.height() / 2 + row.fromCentre));
    QTest::mouseRelease(Viewport(), Qt::LeftButton, {}, place.center());

    EXPECT_EQ(IsOpen("Analog") != wasOpen, row.isIn);
  }
}

TEST_F(GridMouseTest, DoubleClickOnACategory_TogglesItOnce) {
  DoubleClick(PointIn("Analog", 150));
  EXPECT_FALSE(IsOpen("Analog"));

  DoubleClick(PointIn("Analog", 350));
  EXPECT_TRUE(IsOpen("Analog"));
  DoubleClick(PointIn("Analog", 221));
  EXPECT_FALSE(IsOpen("Analog"));
}

TEST_F(GridMouseTest, DoubleClickOnAGlyph_TogglesAtEachPress) {
  Click(GlyphOf("Analog"));
  EXPECT_FALSE(IsOpen("Analog"));

  QTest::mouseDClick(Viewport(), Qt::LeftButton, {}, GlyphOf("Analog"));

  EXPECT_TRUE(IsOpen("Analog"));
}

TEST_F(GridMouseTest, CategoryWithoutRows_CannotBeToggled) {
  DoubleClick(PointIn("Empty", 150));

  EXPECT_EQ(GetSelectedName(), "Empty");
}

TEST_F(GridMouseTest, ClickOnACategory_ClosesTheEditorWithoutWriting) {
  for (const QPoint point : {PointIn("Analog", 60), GlyphOf("Analog")}) {
    TypeIntoPlain("77");

    Click(point);
    Settle();

    EXPECT_EQ(GetSelectedName(), "Analog");
    EXPECT_EQ(mGrid->GetEdited(), kNoItem);
    EXPECT_TRUE(mGrid->hasFocus());
    EXPECT_EQ(mCamera.port.CountWrites(), 0U);
  }
}

TEST_F(GridMouseTest, ClickElsewhereBeforeACategory_WritesWhatWasTyped) {
  TypeIntoPlain("77");

  Click(PointIn("Gain", 60));
  Click(PointIn("Analog", 60));
  Settle();

  EXPECT_EQ(mCamera.port.CountWrites(), 1U);
}

TEST_F(GridMouseTest, PressOfAnotherButton_WritesWhatWasTyped) {
  TypeIntoPlain("77");

  QTest::mouseClick(Viewport(), Qt::RightButton, {}, PointIn("Analog", 60));
  Click(PointIn("Analog", 60));
  Settle();

  EXPECT_EQ(mCamera.port.CountWrites(), 1U);
}

TEST_F(GridMouseTest, CategoryClosedWhileEditing_ClosesTheEditorWithoutWriting) {
  TypeIntoPlain("77");

  mGrid->SetOpen(Item("DeviceControl"), false);
  Settle();

  EXPECT_EQ(GetSelectedName(), "DeviceControl");
  EXPECT_EQ(mGrid->GetEdited(), kNoItem);
  EXPECT_TRUE(mGrid->hasFocus());
  EXPECT_EQ(mCamera.port.CountWrites(), 0U);
}

TEST_F(GridMouseTest, KeysThatCloseCategories_TypeWhileEditing) {
  TypeIntoPlain("77");

  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left);
  QTest::keyClicks(QApplication::focusWidget(), "-");
  Settle();
  const QString typed = static_cast<QLineEdit*>(QApplication::focusWidget())->text();
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
  Press(Qt::Key_Left);
  Settle();

  EXPECT_EQ(typed, "7-7");
  EXPECT_EQ(GetSelectedName(), "DeviceControl");
  EXPECT_TRUE(IsOpen("DeviceControl"));
  EXPECT_EQ(mGrid->GetEdited(), kNoItem);
  EXPECT_EQ(mCamera.port.CountWrites(), 0U);
}

TEST_F(GridMouseTest, ClickInTheNameCell_SelectsAndLeavesTheFocusToTheGrid) {
  Click(PointIn("Plain", 60));
  Settle();

  EXPECT_EQ(GetSelectedName(), "Plain");
  EXPECT_EQ(mGrid->GetEdited(), Item("Plain"));
  EXPECT_TRUE(mGrid->hasFocus());
}

TEST_F(GridMouseTest, ClickInTheValueCell_GivesTheFocusToTheEditor) {
  Click(PointIn("Plain", 300));
  Settle();

  EXPECT_EQ(GetSelectedName(), "Plain");
  EXPECT_TRUE(Viewport()->isAncestorOf(QApplication::focusWidget()));
}

TEST_F(GridMouseTest, ClickBelowTheRows_LeavesTheSelection) {
  mGrid->Select(Item("Fixed"));

  Click(QPoint(60, Viewport()->height() - 3));

  EXPECT_EQ(GetSelectedName(), "Fixed");
}

TEST_F(GridMouseTest, RightButton_TogglesAndSelectsNothing) {
  QTest::mouseClick(Viewport(), Qt::RightButton, {}, GlyphOf("Analog"));

  EXPECT_TRUE(IsOpen("Analog"));
  EXPECT_EQ(mGrid->GetSelected(), kNoItem);
}

TEST_F(GridMouseTest, MovingWithTheButtonHeld_DoesNotSelect) {
  QTest::mousePress(Viewport(), Qt::LeftButton, {}, PointIn("Gain", 60));
  QMouseEvent move(QEvent::MouseMove, PointIn("Fixed", 60), Viewport()->mapToGlobal(PointIn("Fixed", 60)), Qt::NoButton,
                   Qt::LeftButton, {});
  QCoreApplication::sendEvent(Viewport(), &move);
  QTest::mouseRelease(Viewport(), Qt::LeftButton, {}, PointIn("Fixed", 60));

  EXPECT_EQ(GetSelectedName(), "Gain");
}

TEST_F(GridMouseTest, Boundary_StartsAt220AndFollowsTheMouseWithinItsLimits) {
  const int right = mGrid->width();
  EXPECT_EQ(FindBoundary(), 220);

  Drag(220, 150);
  EXPECT_EQ(FindBoundary(), 150);
  Drag(150, 20);
  EXPECT_EQ(FindBoundary(), 100);
  Drag(100, right - 10);
  EXPECT_EQ(FindBoundary(), right - 50);
  EXPECT_EQ(mGrid->GetSelected(), kNoItem);
}

TEST_F(GridMouseTest, Boundary_MayBeAsFarOutBesideAScrollBar) {
  mGrid->resize(500, 150);
  Settle();
  ASSERT_LE(Viewport()->width(), 490) << "The scroll bar is there.";

  Drag(220, 480);

  EXPECT_EQ(FindBoundary(), 450);
}

TEST_F(GridMouseTest, Boundary_IsTakenFromFewerThanThreePixelsAway) {
  Drag(217, 150);
  EXPECT_EQ(FindBoundary(), 220);
  Drag(223, 150);
  EXPECT_EQ(FindBoundary(), 220);
  Drag(218, 160);
  EXPECT_EQ(FindBoundary(), 160);
  Drag(162, 170);
  EXPECT_EQ(FindBoundary(), 170);
}

TEST_F(GridMouseTest, DraggedBoundary_TakesTheEditorAlong) {
  mGrid->Select(Item("Plain"));
  Settle();

  Drag(220, 150);

  bool hasEditor = false;
  for (const QWidget* editor : Viewport()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
    hasEditor = hasEditor || (editor->isVisible() && editor->x() == 150 && editor->y() == Row("Plain").top() - 1);
  }
  EXPECT_TRUE(hasEditor);
}

TEST_F(GridMouseTest, HoveringOverTheBoundary_ShowsTheSizingCursor) {
  Hover(100);
  EXPECT_FALSE(ShowsSizingCursor());
  Hover(221);
  EXPECT_TRUE(ShowsSizingCursor());
  Hover(230);
  EXPECT_FALSE(ShowsSizingCursor());
}

TEST_F(GridMouseTest, ReleaseElsewhere_EndsTheDrag) {
  QTest::mousePress(Viewport(), Qt::LeftButton, {}, PointIn("Fixed", 220));

  Hover(150);

  EXPECT_EQ(FindBoundary(), 220);
}

TEST_F(GridMouseTest, DragWhosePointerIsLost_Ends) {
  const struct {
    const char* name;
    std::function<void()> action;
  } rows[] = {
      {"it left and its button was released elsewhere",
       [this] {
         QWidget elsewhere;
         QTest::mouseRelease(&elsewhere, Qt::LeftButton);
         Send(*Viewport(), QEvent::Leave);
       }},
      {"another took it", [this] { Send(*Viewport(), QEvent::UngrabMouse); }},
      {"another window became the active one", [this] { Send(*mGrid, QEvent::WindowDeactivate); }},
      {"the grid was disabled",
       [this] {
         mGrid->setEnabled(false);
         mGrid->setEnabled(true);
       }},
      {"the grid was hidden",
       [this] {
         mGrid->hide();
         mGrid->show();
       }},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    QTest::mousePress(Viewport(), Qt::LeftButton, {}, PointIn("Fixed", 220));

    row.action();
    MoveHeld(150);

    EXPECT_EQ(FindBoundary(), 220);
    QTest::mouseRelease(Viewport(), Qt::LeftButton, {}, PointIn("Fixed", 220));
  }
}

TEST_F(GridMouseTest, DragThatLeavesTheGridWithItsButtonHeld_GoesOn) {
  const QPoint point = Viewport()->mapTo(mGrid->window(), PointIn("Fixed", 220));
  QTest::mousePress(mGrid->window()->windowHandle(), Qt::LeftButton, {}, point);
  ASSERT_TRUE(krtest::AwaitCondition([] { return QApplication::mouseButtons() == Qt::LeftButton; }));

  Send(*Viewport(), QEvent::Leave);
  MoveHeld(150);
  EXPECT_EQ(FindBoundary(), 150);

  QTest::mouseRelease(mGrid->window()->windowHandle(), Qt::LeftButton, {}, QPoint(-50, -50));
  EXPECT_EQ(FindBoundary(), 100) << "It followed the pointer to where the button was released.";
  MoveHeld(170);
  EXPECT_EQ(FindBoundary(), 100) << "The release outside has ended it.";
}

TEST_F(GridMouseTest, MirroredGrid_TakesGlyphsAndBoundaryFromTheOtherSide) {
  mGrid->setLayoutDirection(Qt::RightToLeft);
  Settle();

  Click(GlyphOf("Inner"));
  EXPECT_FALSE(IsOpen("Inner"));
  Drag(220, 150);

  EXPECT_EQ(FindBoundary(), Viewport()->width() - 1 - 150);
}

} // namespace krgui

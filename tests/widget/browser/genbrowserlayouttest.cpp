// How the feature browser's window lays out its controls, its boundary, its keys, and what it tells assistive
// technology.

#include "browser/browsersplitter.h"
#include "browserfixture.h"
#include "paintcounter.h"
#include "windowwait.h"

#include <QAccessible>

namespace krgui {

namespace {

class Layout : public GenBrowserTest {
protected:
  /// The template's controls, which lie side by side in the window.
  std::vector<QWidget*> GetShownControls() const {
    std::vector<QWidget*> controls;
    for (QWidget* widget : mWindow.GetWidget()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
      if (widget->property("controlID").isValid() && widget->isVisible())
        controls.push_back(widget);
    }
    return controls;
  }
  /// Pairs that share pixels, and those that lie outside.
  std::vector<std::string> FindFaults() const {
    std::vector<std::string> faults;
    const auto controls = GetShownControls();
    for (const QWidget* one : controls) {
      if (!one->geometry().isEmpty() && !mWindow.GetWidget()->rect().contains(one->geometry()))
        faults.push_back(one->objectName().toStdString() + " is outside");
      for (const QWidget* other : controls) {
        if (one < other && one->geometry().intersects(other->geometry()))
          faults.push_back(one->objectName().toStdString() + " " + other->objectName().toStdString());
      }
    }
    return faults;
  }
  BrowserSplitter& GetSplitter() const { return mWindow.Find<BrowserSplitter>(); }
  int GetBoundary() const { return mWindow.GetControl(1095)->geometry().bottom() + 1; }
  int GetDescriptionHeight() const { return mWindow.GetControl(1096)->height(); }
  /// Drags the boundary from a point beside it by so many pixels.
  void Drag(int aBeside, int aBy) const {
    BrowserSplitter& splitter = GetSplitter();
    const QPoint from(100, GetBoundary() + aBeside - splitter.y());
    QTest::mousePress(&splitter, Qt::LeftButton, Qt::NoModifier, from);
    QMouseEvent move(QEvent::MouseMove, from + QPoint(0, aBy), splitter.mapToGlobal(from + QPoint(0, aBy)),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&splitter, &move);
    QTest::mouseRelease(&splitter, Qt::LeftButton);
  }
};

} // namespace

TEST_F(Layout, WindowOfItsOwn_IsAtLeast390By550) {
  Open();
  mWindow.GetWidget()->resize(100, 100);

  EXPECT_EQ(mWindow.GetWidget()->size(), QSize(390, 550));
  EXPECT_EQ(mWindow.GetMinWidth(), 300);
  EXPECT_EQ(mWindow.GetMinHeight(), 300);
}

TEST_F(Layout, SetPosition_ClampsTo300AndTheWindowIsStillItsLeastSize) {
  mWindow.SetPosition(10, 20, 5, 5);
  EXPECT_EQ(GetPosition(mWindow), (Position{10, 20, 300, 300}));

  Open();

  EXPECT_EQ(mWindow.GetWidget()->size(), QSize(390, 550));
}

TEST_F(Layout, CaptionOfAWindowWithoutTitle_IsEmptyInPlaceOfTheTemplates) {
  Open();

  ASSERT_EQ(FindTemplate(mWindow.GetPopupTemplateID())->caption, "GenICam Explorer");
  EXPECT_EQ(mWindow.GetWidget()->windowTitle(), "");
}

TEST_F(Layout, Caption_IsTheTitleWhenOneIsSet) {
  mWindow.SetTitle("Camera 1");
  Open();

  EXPECT_EQ(mWindow.GetWidget()->windowTitle(), "Camera 1");
}

TEST_F(Layout, EverySizeWithAndWithoutSearchRow_OverlapsNothing) {
  QWidget host;
  mWindow.SetGenParameterArray(mCamera.array.get());
  ASSERT_TRUE(mWindow.CreateIn(&host).IsOK());
  host.resize(1200, 1200);
  host.show();
  ASSERT_TRUE(krtest::AwaitActive(&host));
  for (const bool hasSearchRow : {false, true}) {
    if (hasSearchRow) {
      mWindow.GetGrid().setFocus();
      Press(Qt::Key_F, Qt::ControlModifier);
      ASSERT_TRUE(mWindow.GetSearchBar().isVisible());
    }
    for (const int width : {1, 20, 60, 110, 160, 230, 300, 390, 600, 1200}) {
      for (const int height : {1, 20, 60, 100, 200, 300, 550, 1200}) {
        mWindow.GetWidget()->resize(width, height);

        EXPECT_THAT(FindFaults(), testing::IsEmpty()) << width << " x " << height << (hasSearchRow ? " searching" : "");
      }
    }
  }
}

TEST_F(Layout, LeastSizeOfAWindow_ShowsEveryControlWhole) {
  Open();
  mWindow.GetWidget()->resize(390, 550);
  Press(Qt::Key_F, Qt::ControlModifier);

  for (const QWidget* control : GetShownControls()) {
    EXPECT_GT(control->width(), 15) << control->objectName().toStdString();
    EXPECT_GT(control->height(), 9) << control->objectName().toStdString();
  }
  EXPECT_GE(mWindow.GetControl(1086)->width(), mWindow.GetControl(1086)->sizeHint().width());
  EXPECT_GE(mWindow.GetControl(1089)->width(), mWindow.GetControl(1089)->sizeHint().width());
  EXPECT_THAT(FindFaults(), testing::IsEmpty());
}

TEST_F(Layout, Resize_IsTheGridsAndTheDescriptionKeepsItsHeight) {
  Open();
  mWindow.GetWidget()->resize(500, 600);
  const int gridHeight = mWindow.GetControl(1095)->height();
  const int descriptionHeight = GetDescriptionHeight();

  mWindow.GetWidget()->resize(700, 800);

  EXPECT_EQ(mWindow.GetControl(1095)->height(), gridHeight + 200);
  EXPECT_EQ(GetDescriptionHeight(), descriptionHeight);
}

TEST_F(Layout, BoundaryPressedThreePixelsBesideIt_IsDragged) {
  Open();
  for (const int beside : {-3, 0, 3}) {
    const int boundary = GetBoundary();
    const int height = GetDescriptionHeight();

    Drag(beside, -40);

    EXPECT_EQ(GetBoundary(), boundary - 40) << "it keeps its distance from the pointer";
    EXPECT_EQ(GetDescriptionHeight(), height + 40);
  }
}

TEST_F(Layout, BoundaryPressedBesideIt_StaysUntilThePointerMoves) {
  Open();
  for (const int beside : {-3, 3}) {
    const int boundary = GetBoundary();

    Drag(beside, 0);

    EXPECT_EQ(GetBoundary(), boundary);
  }
}

TEST_F(Layout, PressFurtherAway_IsNoneOfTheBoundarys) {
  Open();
  const int boundary = GetBoundary();
  for (const int beside : {-4, 4}) {
    const QPoint point(100, boundary + beside);
    QWidget* pressed = mWindow.GetWidget()->childAt(point);
    pressed = pressed != nullptr ? pressed : mWindow.GetWidget();
    EXPECT_NE(pressed, &GetSplitter());

    QTest::mousePress(pressed, Qt::LeftButton, Qt::NoModifier, pressed->mapFrom(mWindow.GetWidget(), point));
    QTest::mouseMove(pressed, pressed->mapFrom(mWindow.GetWidget(), point - QPoint(0, 40)));
    QTest::mouseRelease(pressed, Qt::LeftButton);

    EXPECT_EQ(GetBoundary(), boundary) << beside;
  }
  EXPECT_EQ(mWindow.GetWidget()->childAt(100, boundary - kSplitterReach), &GetSplitter());
  EXPECT_EQ(mWindow.GetWidget()->childAt(100, boundary + kSplitterReach), &GetSplitter());
  EXPECT_EQ(GetSplitter().cursor().shape(), Qt::SizeVerCursor);
}

/// Notes what comes to a widget, and keeps it from it.
class EventNotes : public QObject {
public:
  explicit EventNotes(QWidget& aWidget) : QObject(&aWidget) { aWidget.installEventFilter(this); }
  std::vector<QEvent::Type> mTypes;
  std::vector<QPoint> mPoints;

private:
  bool eventFilter(QObject*, QEvent* aEvent) override {
    const bool isContextMenu = aEvent->type() == QEvent::ContextMenu;
    const bool isMouse = aEvent->type() == QEvent::MouseButtonPress || aEvent->type() == QEvent::MouseButtonRelease;
    if (!isContextMenu && !isMouse && aEvent->type() != QEvent::Wheel)
      return false;
    mTypes.push_back(aEvent->type());
    if (isMouse)
      mPoints.push_back(static_cast<const QMouseEvent*>(aEvent)->pos());
    return true;
  }
};

TEST_F(Layout, RightButtonAndWheelOverTheBoundary_AreThoseOfWhatLiesBeneath) {
  Open();
  BrowserSplitter& splitter = GetSplitter();
  const int boundary = GetBoundary();
  QWidget& viewport = *mWindow.GetGrid().viewport();
  EventNotes notes(viewport);
  const QPoint point(100, boundary - kSplitterReach - splitter.y());
  const QPoint global = splitter.mapToGlobal(point);

  QTest::mouseClick(&splitter, Qt::RightButton, Qt::NoModifier, point);
  QContextMenuEvent menu(QContextMenuEvent::Mouse, point, global);
  QApplication::sendEvent(&splitter, &menu);
  QWheelEvent wheel(point, global, {}, {0, -120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&splitter, &wheel);

  EXPECT_THAT(notes.mTypes, testing::ElementsAre(QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
                                                 QEvent::ContextMenu, QEvent::Wheel));
  EXPECT_THAT(notes.mPoints, testing::Each(viewport.mapFromGlobal(global)));
  EXPECT_EQ(GetBoundary(), boundary);
}

TEST_F(Layout, ToolButtonUnderTheMouse_IsRedrawn) {
  Open();
  QAbstractButton& button = mWindow.GetButton("Properties");
  QTest::mouseMove(mWindow.GetWidget(), {200, 300});
  QApplication::processEvents();
  PaintCounter counter(button);

  QTest::mouseMove(&button, {10, 10});
  EXPECT_TRUE(WaitFor([&] { return counter.mCount > 0; }));
  counter.mCount = 0;
  QTest::mouseMove(mWindow.GetWidget(), {200, 300});
  EXPECT_TRUE(WaitFor([&] { return counter.mCount > 0; }));
}

TEST_F(Layout, SymbolFont_IsAskedForByItsNameAndHeight) {
  Open();
  Press(Qt::Key_F, Qt::ControlModifier);
  for (const char* button : {"Move to previous occurence", "Move to next occurence", "Close search"}) {
    const QFont font = mWindow.GetButton(button).font();

    EXPECT_EQ(font.families().value(0), "Segoe UI Symbol") << button;
    EXPECT_GT(font.families().size(), 1) << button << ": the texts' font comes after it";
    EXPECT_EQ(font.pixelSize(), 14) << button;
    EXPECT_EQ(font.weight(), QFont::Normal) << button;
  }
}

TEST_F(Layout, BoundaryDraggedOutOfTheWindow_LeavesGridAndDescriptionTheirLeast) {
  Open();

  Drag(0, -2000);
  EXPECT_EQ(mWindow.GetControl(1095)->height(), kLeastGridHeight);
  Drag(0, 2000);
  EXPECT_EQ(GetDescriptionHeight(), kLeastDescriptionHeight);
}

TEST_F(Layout, DescriptionsHeight_IsKeptForTheNextOpening) {
  Open();
  Drag(0, -50);
  const int height = GetDescriptionHeight();
  ASSERT_TRUE(mWindow.Close().IsOK());

  Open();

  EXPECT_EQ(GetDescriptionHeight(), height);
}

TEST_F(Layout, F8AndArrowKeys_MoveTheBoundaryAndEscapeGivesTheFocusBack) {
  Open();
  const int boundary = GetBoundary();

  Press(Qt::Key_F8);
  EXPECT_TRUE(GetSplitter().hasFocus());
  Press(Qt::Key_Up);
  Press(Qt::Key_Up);
  Press(Qt::Key_Down);
  EXPECT_EQ(GetBoundary(), boundary - 10);
  Press(Qt::Key_Escape);

  EXPECT_TRUE(mWindow.IsOpen());
  EXPECT_TRUE(mWindow.GetGrid().hasFocus());
}

TEST_F(Layout, F6_GoesFromTheGridToTheDescriptionAndBack) {
  Open();
  EXPECT_TRUE(mWindow.GetGrid().hasFocus()) << "it begins there";

  Press(Qt::Key_F6);
  EXPECT_TRUE(mWindow.GetDescription().hasFocus());
  Press(Qt::Key_F6);
  EXPECT_TRUE(mWindow.GetGrid().hasFocus());
}

TEST_F(Layout, TabKey_GoesFromTheToolsOverTheSearchRowToGridAndDescription) {
  mWindow.SetRefreshMode(KrGenRefresh::Manual);
  Open();
  Press(Qt::Key_F, Qt::ControlModifier);
  mWindow.GetButton("Properties").setFocus();

  std::vector<std::string> order;
  for (int step = 0; step < 12; ++step) {
    QWidget* focus = mWindow.GetWidget()->focusWidget();
    while (focus->parentWidget() != nullptr && focus->accessibleName().isEmpty())
      focus = focus->parentWidget();
    order.push_back(focus->accessibleName().toStdString());
    if (focus == &mWindow.GetDescription())
      break;
    Press(Qt::Key_Tab);
  }

  EXPECT_THAT(order, testing::ElementsAre("Properties", "Expand", "Collapse", "Refresh", "Visibility", "Errors",
                                          "Search", "Move to previous occurence", "Move to next occurence",
                                          "Close search", "Features", "Description"));
}

TEST_F(Layout, EveryControlThatTakesTheFocus_HasANameForAssistiveTechnology) {
  Open();
  Press(Qt::Key_F, Qt::ControlModifier);

  int count = 0;
  for (QWidget* widget : mWindow.GetWidget()->findChildren<QWidget*>()) {
    if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible() || widget->focusProxy())
      continue;
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
    ASSERT_NE(accessible, nullptr);
    ++count;
    EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << widget->metaObject()->className();
  }
  EXPECT_GE(count, 11);
}

TEST_F(Layout, ToolButtons_HaveTheirToolTips) {
  Open();

  std::vector<std::string> toolTips;
  for (const ToolBarButton* button : mWindow.FindAll<ToolBarButton>())
    toolTips.push_back(button->toolTip().toStdString());

  EXPECT_THAT(toolTips, testing::ElementsAre("Properties", "Expand", "Collapse", "Refresh"));
}

} // namespace krgui

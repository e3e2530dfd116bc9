// The display's context menu: what it offers, where it opens, and what its commands do.

#include "displayfixture.h"
#include "windowwait.h"

#include <QContextMenuEvent>
#include <QMenu>

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr QSize kImage(1800, 1400);

class KrDisplayWndMenuTest : public KrDisplayWndTest {
protected:
  void SetUp() override {
    Open(400, 300);
    ASSERT_TRUE(mWindow.Display(mImage, false).IsOK());
    Grab();
  }

  // Presses the right button and opens the menu there, as the toolkit does.
  void OpenMenuAt(QPoint aPoint) {
    QTest::mousePress(&GetView(), Qt::RightButton, {}, aPoint);
    QContextMenuEvent event(QContextMenuEvent::Mouse, aPoint, GetView().mapToGlobal(aPoint));
    QCoreApplication::sendEvent(&GetView(), &event);
    QTest::mouseRelease(&GetView(), Qt::RightButton, {}, aPoint);
  }
  void OpenMenuByKeyboard() {
    const QPoint middle = GetView().rect().center();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, middle, GetView().mapToGlobal(middle));
    QCoreApplication::sendEvent(&GetView(), &event);
  }
  QMenu* FindMenu() const { return mWindow.GetWidget()->findChild<QMenu*>("menu1511"); }

  void Choose(int aCommandID) {
    QMenu* menu = FindMenu();
    ASSERT_NE(menu, nullptr);
    for (QAction* action : menu->actions())
      if (action->data().toInt() == aCommandID)
        action->trigger();
    menu->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_EQ(FindMenu(), nullptr);
  }

  int GetHorizontalExtent(double aFactor) const {
    return plainpicture::ScrolledView(GetDeviceSize(), kImage, aFactor, int(std::lround(18 * GetRatio())))
        .GetHorizontalExtent();
  }

  const KrBuffer mImage = MakeNoise(1800, 1400);
};

constexpr int kZoomOneToOne = 32777;
constexpr int kCentreHere = 32778;
constexpr int kZoomOut = 32779;
constexpr int kZoomIn = 32780;
constexpr int kZoomFit = 32781;

} // namespace

TEST_F(KrDisplayWndMenuTest, Menu_AtAPoint_HasTheCommandsInTheirOrder) {
  const QPoint point(120, 90);

  OpenMenuAt(point);

  QMenu* menu = FindMenu();
  ASSERT_NE(menu, nullptr);
  EXPECT_TRUE(menu->isVisible());
  EXPECT_EQ(menu->title(), "Main");
  EXPECT_EQ(menu->parentWidget(), mWindow.GetWidget());
  EXPECT_EQ(menu->pos(), GetView().mapToGlobal(point));
  const struct {
    const char* text;
    int id;
  } rows[] = {{"Zoom 1:1", kZoomOneToOne},
              {"Zoom Fit", kZoomFit},
              {"Zoom In", kZoomIn},
              {"Zoom Out", kZoomOut},
              {"Center Here", kCentreHere}};
  ASSERT_EQ(menu->actions().size(), qsizetype(std::size(rows)));
  for (qsizetype i = 0; i < menu->actions().size(); ++i) {
    EXPECT_EQ(menu->actions()[i]->text(), rows[i].text);
    EXPECT_EQ(menu->actions()[i]->data().toInt(), rows[i].id);
  }
}

TEST_F(KrDisplayWndMenuTest, Commands_OfZooming_DoAsTheOperationsDo) {
  OpenMenuAt({10, 10});
  Choose(kZoomOneToOne);
  Grab();
  EXPECT_EQ(GetHorizontalBar().maximum(), GetHorizontalExtent(1.0));

  OpenMenuAt({10, 10});
  Choose(kZoomIn);
  Grab();
  EXPECT_EQ(GetHorizontalBar().maximum(), GetHorizontalExtent(1.5));

  OpenMenuAt({10, 10});
  Choose(kZoomOut);
  Grab();
  EXPECT_EQ(GetHorizontalBar().maximum(), GetHorizontalExtent(1.0));

  OpenMenuAt({10, 10});
  Choose(kZoomFit);
  Grab();
  EXPECT_FALSE(GetHorizontalBar().isVisible());
}

TEST_F(KrDisplayWndMenuTest, CentreHere_AfterARightClick_BringsThatPointIntoTheMiddle) {
  mWindow.Zoom1_1();
  Grab();
  const int horizontal = mWindow.GetHScrollPos();
  const int vertical = mWindow.GetVScrollPos();
  const QPoint clicked(300, 80);

  OpenMenuAt(clicked);
  Choose(kCentreHere);

  Grab();
  const QSize client = GetDeviceSize();
  const int right = int(std::floor(clicked.x() * GetRatio())) - client.width() / 2;
  const int down = int(std::floor(clicked.y() * GetRatio())) - client.height() / 2;
  EXPECT_EQ(mWindow.GetHScrollPos(), horizontal + right);
  EXPECT_EQ(mWindow.GetVScrollPos(), vertical + down);
  EXPECT_EQ(GetHorizontalBar().value(), horizontal + right);
  const plainpicture::ScrolledView view(client, kImage, 1.0, int(std::lround(18 * GetRatio())));
  EXPECT_EQ(
      plainpicture::Compare(Grab().copy(QRect(QPoint(0, 0), view.view)),
                            plainpicture::ComputeScrolled(view, ToQImage(mImage), horizontal + right, vertical + down)),
      "");
}

TEST_F(KrDisplayWndMenuTest, ByKeyboard_MenuOpensInTheMiddleAndTheContextPointStays) {
  mWindow.Zoom1_1();
  Grab();
  const int horizontal = mWindow.GetHScrollPos();
  OpenMenuAt({300, 80});
  Choose(kZoomOneToOne);

  OpenMenuByKeyboard();

  ASSERT_NE(FindMenu(), nullptr);
  EXPECT_EQ(FindMenu()->pos(), GetView().mapToGlobal(GetView().rect().center()));
  Choose(kCentreHere);
  Grab();
  EXPECT_EQ(mWindow.GetHScrollPos(), horizontal + int(std::floor(300 * GetRatio())) - GetDeviceSize().width() / 2);
}

TEST_F(KrDisplayWndMenuTest, CentreHere_InAWindowOpenedAgain_GoesByTheLastRightClickOfAll) {
  OpenMenuAt({300, 80});
  Choose(kZoomOneToOne);
  Grab();
  ASSERT_TRUE(mWindow.Close().IsOK());
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
  ASSERT_TRUE(krtest::AwaitExposed(mWindow.GetWidget()));
  Grab();
  const int horizontal = mWindow.GetHScrollPos();
  const int vertical = mWindow.GetVScrollPos();

  OpenMenuByKeyboard();
  Choose(kCentreHere);

  const QSize client = GetDeviceSize();
  EXPECT_EQ(mWindow.GetHScrollPos(), horizontal + int(std::floor(300 * GetRatio())) - client.width() / 2);
  EXPECT_EQ(mWindow.GetVScrollPos(), vertical + int(std::floor(80 * GetRatio())) - client.height() / 2);
}

TEST_F(KrDisplayWndMenuTest, CentreHere_BeforeAnyRightClick_BringsTheUpperLeftCornerIntoTheMiddle) {
  mWindow.Zoom1_1();
  Grab();
  const int horizontal = mWindow.GetHScrollPos();
  const int vertical = mWindow.GetVScrollPos();

  OpenMenuByKeyboard();
  Choose(kCentreHere);

  EXPECT_EQ(mWindow.GetHScrollPos(), horizontal - GetDeviceSize().width() / 2);
  EXPECT_EQ(mWindow.GetVScrollPos(), vertical - GetDeviceSize().height() / 2);
}

TEST_F(KrDisplayWndMenuTest, ShiftAndF10_OpenTheMenu) {
  QTest::keyClick(&GetView(), Qt::Key_F10, Qt::ShiftModifier);

  ASSERT_NE(FindMenu(), nullptr);
  EXPECT_EQ(FindMenu()->pos(), GetView().mapToGlobal(GetView().rect().center()));
}

TEST_F(KrDisplayWndMenuTest, Opening_DoesNotWait) {
  OpenMenuAt({10, 10});

  // Frames go on below it.
  EXPECT_TRUE(mWindow.Display(MakeGrey(1800, 1400, 77), false).IsOK());
  const QImage picture = Grab();
  EXPECT_EQ(picture.pixelColor(picture.rect().center()), QColor(77, 77, 77));
}

TEST_F(KrDisplayWndMenuTest, Window_ClosedOrDeletedUnderItsMenu_TakesItAlong) {
  OpenMenuAt({10, 10});
  const QPointer<QMenu> menu = FindMenu();
  ASSERT_FALSE(menu.isNull());

  EXPECT_TRUE(mWindow.Close().IsOK());

  EXPECT_TRUE(krtest::AwaitCondition([&] { return menu.isNull() || !menu->isVisible(); }));
  EXPECT_EQ(mWindow.GetHandle(), 0u);
}

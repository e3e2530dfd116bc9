// The display on a screen where windows cover each other, change their size, vanish and move to other windows.

#include "displayscreen.h"
#include "windowwait.h"

#include <QHBoxLayout>
#include <QMenu>

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace {

constexpr QColor kGrey(0x80, 0x80, 0x80);

using DisplayExposed = DisplayOnScreen;

} // namespace

TEST_F(DisplayExposed, Covered_WhileFramesCome_IsNotDrawnOverAndThenShowsTheLast) {
  Open(320, 240);
  ASSERT_TRUE(mWindow.Display(MakeGrey(320, 240, 10), false).IsOK());
  ExpectFitted(MakeGrey(320, 240, 10), kGrey);
  const QRect client = GetClient();
  const QRect covered(client.x() + 100, client.y() + 80, 60, 40);
  const KrBuffer last = MakeNoise(320, 240);
  {
    QWidget cover(nullptr, Qt::ToolTip);
    cover.setStyleSheet("background: #ff0000");
    cover.setGeometry(covered);
    cover.show();
    const auto isRed = [&] {
      return plainpicture::Count(GrabScreen(covered), {0, 0, 60, 40}, QColor(255, 0, 0)) == 60 * 40;
    };
    Await(isRed, "the window above");

    for (int i = 0; i < 20; ++i)
      ASSERT_TRUE(mWindow.Display(MakeGrey(320, 240, static_cast<std::uint8_t>(20 + i)), false).IsOK());
    ASSERT_TRUE(mWindow.Display(last, false).IsOK());

    EXPECT_TRUE(isRed());
  }

  ExpectFitted(last, kGrey, "uncovered");
}

TEST_F(DisplayExposed, Menu_AboveFramesThatCome_IsNotDrawnOver) {
  Open(320, 240);
  ASSERT_TRUE(mWindow.Display(MakeGrey(320, 240, 10), false).IsOK());
  ExpectFitted(MakeGrey(320, 240, 10), kGrey);
  MoveMouse({50, 50});
  krtest::MoveHands({"click", "3"});
  Await([] { return QApplication::activePopupWidget() != nullptr; }, "the menu");
  QWidget* menu = QApplication::activePopupWidget();
  ASSERT_TRUE(krtest::AwaitExposed(menu));

  for (int i = 0; i < 20; ++i)
    ASSERT_TRUE(mWindow.Display(MakeGrey(320, 240, 77), false).IsOK());

  Await([&] { return GrabClient({300, 220, 1, 1}).pixelColor(0, 0) == QColor(77, 77, 77); }, "the frames beside it");
  const QRect inner = menu->geometry().adjusted(1, 1, -1, -1) & GetClient();
  const QImage seen = GrabScreen(inner);
  // Some edge of a letter may have this grey.
  EXPECT_LT(plainpicture::Count(seen, seen.rect(), QColor(77, 77, 77)), inner.width() * inner.height() / 100);
  menu->close();
  ExpectFitted(MakeGrey(320, 240, 77), kGrey, "without the menu");
}

TEST_F(DisplayExposed, Resized_ToManySizes_ShowsTheImageFittedWithoutLeftovers) {
  Open(320, 240);
  const KrBuffer image = MakeNoise(200, 100);
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  for (const QSize size : {QSize(500, 200), QSize(200, 400), QSize(321, 239), QSize(640, 480), QSize(60, 50)}) {
    mWindow.SetPosition(50, 50, size.width(), size.height());
    Await([&] { return GetView().size() == size; }, "the size");

    ExpectFitted(image, kGrey, std::to_string(size.width()) + "x" + std::to_string(size.height()));
  }
}

TEST_F(DisplayExposed, Resized_WhileScrolled_KeepsBarsAndImageRight) {
  Open(320, 240);
  const KrBuffer image = MakeNoise(900, 800);
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  mWindow.Zoom1_1();
  ExpectScrolled(image, 1.0);
  for (const QSize size : {QSize(500, 200), QSize(200, 400), QSize(333, 333)}) {
    mWindow.SetPosition(50, 50, size.width(), size.height());
    Await([&] { return GetHorizontalBar().geometry() == QRect(0, size.height() - 18, size.width() - 18, 18); },
          "the horizontal bar");
    Await([&] { return GetVerticalBar().geometry() == QRect(size.width() - 18, 0, 18, size.height() - 18); },
          "the vertical bar");

    ExpectScrolled(image, 1.0, std::to_string(size.width()) + "x" + std::to_string(size.height()));
  }
}

TEST_F(DisplayExposed, Minimised_AndRestored_ShowsTheImageOfMeanwhile) {
  Open(320, 240);
  ASSERT_TRUE(mWindow.Display(MakeGrey(320, 240, 10), false).IsOK());
  ExpectFitted(MakeGrey(320, 240, 10), kGrey);
  const KrBuffer image = MakeNoise(320, 240);

  mWindow.GetWidget()->showMinimized();
  Await([&] { return !mWindow.GetWidget()->windowHandle()->isExposed(); }, "the window gone from the screen");
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  mWindow.GetWidget()->showNormal();

  ExpectFitted(image, kGrey, "restored");
}

TEST_F(DisplayExposed, Embedded_InALayoutThatMoves_ShowsTheImageWhereItIsAndLeavesWidgetsAsTheyAre) {
  QWidget window;
  window.setGeometry(300, 200, 500, 400);
  auto* box = new QWidget(&window);
  box->setGeometry(20, 30, 320, 240);
  ASSERT_TRUE(mWindow.CreateIn(box).IsOK());
  mWindow.SetPosition(0, 0, 320, 240);
  window.show();
  ASSERT_TRUE(krtest::AwaitExposed(&window));
  const KrBuffer image = MakeNoise(320, 240);
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  ExpectFitted(image, kGrey, "embedded");
  EXPECT_EQ(box->internalWinId(), 0u);

  box->move(150, 120);

  ExpectFitted(image, kGrey, "moved");
  const KrBuffer next = MakeGrey(320, 240, 44);
  ASSERT_TRUE(mWindow.Display(next, false).IsOK());
  ExpectFitted(next, kGrey, "a frame after the move");
  box->move(300, 120);
  Await([&] { return GetView().windowHandle()->position() == QPoint(300, 120); }, "moved half out");
  box->resize(140, 240);
  Await(
      [&] {
        return GrabScreen({window.mapToGlobal(QPoint(439, 120)), QSize(1, 240)}).pixelColor(0, 9) == QColor(44, 44, 44);
      },
      "shown up to the edge of what it lies in");
  const QRect beside(window.mapToGlobal(QPoint(440, 120)), QSize(60, 240));
  Await(
      [&] {
        return plainpicture::Count(GrabScreen(beside), {0, 0, 60, 240}, QColor(44, 44, 44)) == 0;
      },
      "nothing beside it");
  box->setGeometry(150, 120, 320, 240);
  ExpectFitted(next, kGrey, "whole again");
  box->hide();
  const QRect place(window.mapToGlobal(QPoint(150, 120)), QSize(320, 240));
  Await([&] { return plainpicture::Count(GrabScreen(place), {0, 0, 320, 240}, QColor(44, 44, 44)) == 0; }, "hidden");
  box->show();
  ExpectFitted(next, kGrey, "shown again");
  EXPECT_TRUE(mWindow.Close().IsOK());
}

TEST_F(DisplayExposed, Reparented_WhileFramesCome_GoesOnInTheNewWindow) {
  QWidget first;
  first.setGeometry(100, 100, 400, 300);
  auto second = std::make_unique<QWidget>();
  second->setGeometry(700, 200, 500, 400);
  auto* box = new QWidget(&first);
  box->setGeometry(0, 0, 320, 240);
  ASSERT_TRUE(mWindow.CreateIn(box).IsOK());
  mWindow.SetPosition(0, 0, 320, 240);
  first.show();
  second->show();
  ASSERT_TRUE(krtest::AwaitExposed(&first));
  ASSERT_TRUE(krtest::AwaitExposed(second.get()));
  ASSERT_TRUE(mWindow.Display(MakeGrey(320, 240, 10), false).IsOK());
  ExpectFitted(MakeGrey(320, 240, 10), kGrey, "in the first window");
  std::jthread camera([&](std::stop_token aStop) {
    while (!aStop.stop_requested())
      EXPECT_TRUE(mWindow.Display(MakeGrey(320, 240, 55), false).IsOK());
  });

  box->setParent(second.get());
  box->move(60, 40);
  box->show();

  ExpectFitted(MakeGrey(320, 240, 55), kGrey, "in the second window");
  camera.request_stop();
  camera.join();
  second.reset();
  EXPECT_EQ(mWindow.GetHandle(), 0u);
  EXPECT_TRUE(mWindow.Display(MakeGrey(320, 240, 66), false).IsOK());
}

TEST_F(DisplayExposed, Picture_OfTheWindow_IsWhatIsOnTheScreen) {
  Open(320, 240);
  const KrBuffer image = MakeNoise(200, 200);
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  ExpectFitted(image, kGrey);

  const QImage picture = Grab();

  EXPECT_EQ(plainpicture::Compare(picture, plainpicture::Compute({320, 240}, ToQImage(image), kGrey)), "");
  ExpectFitted(image, kGrey, "as before");
}

TEST_F(DisplayExposed, Closing_WhileFramesArriveAtFullRate_IsSafe) {
  const KrBuffer image = MakeNoise(64, 64);
  const std::jthread camera([&](std::stop_token aStop) {
    while (!aStop.stop_requested())
      EXPECT_TRUE(mWindow.Display(image, false).IsOK());
  });
  for (int i = 0; i < 10; ++i) {
    Open(128, 96);
    ExpectFitted(image, kGrey, "opened the time " + std::to_string(i));
    EXPECT_TRUE(mWindow.Close().IsOK());
  }
}

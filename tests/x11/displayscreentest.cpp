// What the display really brings onto the screen, pixel by pixel, and what real keys and a real mouse do to it.

#include "displayscreen.h"
#include "await.h"
#include "display/displayview.h"
#include "windowwait.h"

#include <QMenu>

#include <gtest/gtest.h>

#include <array>
#include <thread>

namespace {

// Each pixel tells its row: the low byte in the even columns, the high byte in the odd ones.
KrBuffer MakeNumberedRows(std::uint32_t aWidth, std::uint32_t aHeight) {
  KrBuffer buffer;
  EXPECT_TRUE(buffer.GetImage()->Alloc(aWidth, aHeight, KrPixel::Mono8).IsOK());
  std::uint8_t* pixel = buffer.GetDataPointer();
  for (std::uint32_t y = 0; y < aHeight; ++y)
    for (std::uint32_t x = 0; x < aWidth; ++x)
      *pixel++ = static_cast<std::uint8_t>(x % 2 == 0 ? y : y >> 8);
  return buffer;
}

} // namespace

TEST_F(DisplayOnScreen, FittedImage_WithItsBands_IsThereAsItShouldBe) {
  Open(500, 300);
  EXPECT_TRUE(mWindow.SetBackgroundColor(90, 0, 140).IsOK());
  for (const auto& [width, height] : {std::pair{320u, 240u}, {240u, 320u}, {1000u, 300u}, {500u, 300u}, {1u, 1u}}) {
    const KrBuffer image = MakeNoise(width, height);

    ASSERT_TRUE(mWindow.Display(image, false).IsOK());

    ExpectFitted(image, QColor(90, 0, 140), std::to_string(width) + "x" + std::to_string(height));
  }
}

TEST_F(DisplayOnScreen, BackgroundColour_ThatIsChanged_IsThereWithTheNextFrameThatIsDrawnAtOnce) {
  Open(500, 300);
  for (const auto& [width, height] : {std::pair{320u, 240u}, {500u, 100u}}) {
    EXPECT_TRUE(mWindow.SetBackgroundColor(90, 0, 140).IsOK());
    ASSERT_TRUE(mWindow.Display(MakeGrey(width, height, 3), false).IsOK());
    ExpectFitted(MakeGrey(width, height, 3), QColor(90, 0, 140), "the first colour");
    for (const auto& [red, green, blue] : {std::array<unsigned char, 3>{0, 120, 30}, {250, 240, 10}}) {
      EXPECT_TRUE(mWindow.SetBackgroundColor(red, green, blue).IsOK());

      ASSERT_TRUE(mWindow.Display(MakeGrey(width, height, 3), false).IsOK());

      ExpectFitted(MakeGrey(width, height, 3), QColor(red, green, blue), "another colour");
    }
  }
}

TEST_F(DisplayOnScreen, Frames_OfOneSizeFromAnotherThread_AreThereWithoutTheUsersThread) {
  Open(320, 240);
  ASSERT_TRUE(mWindow.Display(MakeNoise(160, 120), false).IsOK());
  ExpectFitted(MakeNoise(160, 120), Qt::gray);
  const KrBuffer next = MakeGrey(160, 120, 201);

  // Nothing runs the loop from here on.
  std::jthread([&] { EXPECT_TRUE(mWindow.Display(next, false).IsOK()); }).join();

  QImage seen;
  EXPECT_TRUE(krtest::Await([&] {
    seen = GrabClient();
    return seen.pixelColor(10, 10) == QColor(201, 201, 201);
  }));
  EXPECT_EQ(plainpicture::Count(seen, seen.rect(), QColor(201, 201, 201)), 320 * 240);
}

TEST_F(DisplayOnScreen, ScrolledImage_AtEveryZoomAndPosition_IsThereAsItShouldBe) {
  Open(411, 307);
  const KrBuffer image = MakeNoise(640, 480);
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  ExpectFitted(image, QColor(0x80, 0x80, 0x80), "fitted");
  mWindow.Zoom1_1();
  ExpectScrolled(image, 1.0, "one to one");
  double factor = 1.0;
  for (const char* step : {"first", "second", "third"}) {
    mWindow.ZoomIn();
    factor *= 1.5;
    ExpectScrolled(image, factor, std::string("enlarged the time: ") + step);
    for (Qt::Key key : {Qt::Key_Home, Qt::Key_PageDown, Qt::Key_End}) {
      QTest::keyClick(&GetHorizontalBar(), key);
      QTest::keyClick(&GetVerticalBar(), key);
      ExpectScrolled(image, factor, std::string("scrolled by the key ") + std::to_string(key));
    }
  }
  mWindow.ZoomFit();
  ExpectFitted(image, QColor(0x80, 0x80, 0x80), "fitted again");
}

TEST_F(DisplayOnScreen, Bars_AndTheirCorner_AreAsThickAsTheyShouldBe) {
  Open(400, 300);
  ASSERT_TRUE(mWindow.Display(MakeGrey(800, 600, 0), false).IsOK());
  mWindow.Zoom1_1();
  const QColor dialog = GetView().palette().color(QPalette::Window);

  Await(
      [&] {
        return plainpicture::Count(GrabClient({382, 282, 18, 18}), {0, 0, 18, 18}, dialog) == 18 * 18;
      },
      "the corner in the dialog's colour");

  ExpectScrolled(MakeGrey(800, 600, 0), 1.0);
  const QImage screen = GrabClient();
  for (int i = 0; i < 282; ++i)
    EXPECT_NE(screen.pixelColor(382, i), QColor(Qt::black)) << i;
  for (int i = 0; i < 382; ++i)
    EXPECT_NE(screen.pixelColor(i, 282), QColor(Qt::black)) << i;
}

TEST_F(DisplayOnScreen, Overlay_OnTheScreen_IsAnchoredToTheImage) {
  Open(400, 200);
  mWindow.SetTextOverlay("HHH");
  mWindow.SetTextOverlayOffsetX(12);
  mWindow.SetTextOverlayOffsetY(8);
  const KrBuffer image = MakeGrey(100, 100, 0);
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  const auto countGreen = [&] { return plainpicture::Count(GrabClient(), {0, 0, 400, 200}, QColor(0, 255, 0)); };

  Await([&] { return countGreen() > 0; }, "the text");

  const QRect text = plainpicture::FindDifference(
      GrabClient(), plainpicture::Compute({400, 200}, ToQImage(image), QColor(0x80, 0x80, 0x80)));
  EXPECT_GE(text.left(), 112);
  EXPECT_LE(text.left(), 116);
  EXPECT_GE(text.top(), 8);
  EXPECT_LE(text.bottom(), 28);
  mWindow.SetTextOverlay("");
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  ExpectFitted(image, QColor(0x80, 0x80, 0x80), "the next image takes the text away");
}

TEST_F(DisplayOnScreen, Overlay_OverTheBands_GoesWithItsImage) {
  Open(400, 200);
  const KrBuffer image = MakeGrey(10, 200, 0);
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  ExpectFitted(image, QColor(0x80, 0x80, 0x80));
  mWindow.SetTextOverlay("far beyond the image");
  ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  Await([&] { return plainpicture::Count(GrabClient(), {220, 0, 180, 200}, QColor(0, 255, 0)) > 0; }, "text in a band");

  mWindow.SetTextOverlay("");
  for (int i = 0; i < 3; ++i)
    ASSERT_TRUE(mWindow.Display(image, false).IsOK());

  ExpectFitted(image, QColor(0x80, 0x80, 0x80), "without text");
}

TEST_F(DisplayOnScreen, NumberedRows_WithTheThumbAtTheTop_BeginWithTheFirst) {
  Open(300, 240);
  const KrBuffer rows = MakeNumberedRows(600, 700);
  ASSERT_TRUE(mWindow.Display(rows, false).IsOK());
  mWindow.Zoom1_1();
  ExpectScrolled(rows, 1.0);

  QTest::keyClick(&GetVerticalBar(), Qt::Key_Home);
  QTest::keyClick(&GetHorizontalBar(), Qt::Key_Home);

  ExpectScrolled(rows, 1.0, "at the top");
  EXPECT_EQ(mWindow.GetVScrollPos(), 0);
  EXPECT_EQ(GrabClient().pixelColor(0, 0).red(), 0);
  EXPECT_EQ(GrabClient().pixelColor(0, 20).red(), 20);
  QTest::keyClick(&GetVerticalBar(), Qt::Key_End);
  ExpectScrolled(rows, 1.0, "at the bottom");
}

TEST_F(DisplayOnScreen, CursorPixel_AndCentreHere_AgreeWithWhatIsSeen) {
  Open(300, 240);
  const KrBuffer noise = MakeNoise(900, 700);
  ASSERT_TRUE(mWindow.Display(noise, false).IsOK());
  mWindow.Zoom1_1();
  ExpectScrolled(noise, 1.0);
  const QPoint point(200, 77);

  MoveMouse(point);
  Await([&] { return mWindow.GetCursorPixel().has_value(); }, "a pixel under the cursor");
  const KrDisplayPixel pixel = mWindow.GetCursorPixel().value();
  EXPECT_EQ(pixel.red, noise.GetDataPointer()[pixel.y * 900 + pixel.x]);
  EXPECT_EQ(GrabClient().pixelColor(point).red(), pixel.red);

  krtest::MoveHands({"click", "3"});
  Await([&] { return QApplication::activePopupWidget() != nullptr; }, "the menu");
  const int position = mWindow.GetHScrollPos();
  // The last item is the one above the first.
  krtest::MoveHands({"key", "Up", "Return"});
  Await([&] { return mWindow.GetHScrollPos() != position; }, "a new position");
  ExpectScrolled(noise, 1.0, "centred");
  MoveMouse({150, 120});
  Await([&] { return mWindow.GetCursorPixel().has_value() && mWindow.GetCursorPixel()->x == pixel.x; },
        "the same column in the middle");
  EXPECT_NEAR(mWindow.GetCursorPixel()->y, pixel.y, 1);
}

TEST_F(DisplayOnScreen, CursorPixel_OfACursorThatNeverMoves_IsKnownFromTheOpeningOnAndAfterTheMenu) {
  Open(300, 240);
  const QRect client = GetClient();
  ASSERT_TRUE(mWindow.Close().IsOK());
  const KrBuffer noise = MakeNoise(300, 240);
  ASSERT_TRUE(mWindow.Display(noise, false).IsOK());
  const QPoint point = client.center();
  krtest::MoveHands({"mousemove", QString::number(point.x()), QString::number(point.y())});
  const auto isKnown = [&] {
    const std::optional<KrDisplayPixel> pixel = mWindow.GetCursorPixel();
    const QPoint place = point - GetClient().topLeft();
    return pixel && QPoint(static_cast<int>(pixel->x), static_cast<int>(pixel->y)) == place;
  };

  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());

  Await(isKnown, "the pixel where the window opened");
  krtest::MoveHands({"click", "3"});
  Await([&] { return QApplication::activePopupWidget() != nullptr && !mWindow.GetCursorPixel(); }, "the menu");
  krtest::MoveHands({"key", "Escape"});
  Await(isKnown, "the pixel after the menu");
  // Another click would be a double one.
  krtest::MoveHands({"key", "Menu"});
  Await([&] { return QApplication::activePopupWidget() != nullptr && !mWindow.GetCursorPixel(); }, "the menu again");
  krtest::MoveHands({"key", "Down", "Down", "Return"});
  Await(isKnown, "the pixel after a command that changes nothing here");
  krtest::MoveHands({"mousemove", "5", "5"});
  Await([&] { return !mWindow.GetCursorPixel(); }, "nothing when it leaves at once");
  krtest::MoveHands({"mousemove", QString::number(point.x()), QString::number(point.y())});
  Await(isKnown, "the pixel when it comes back");
  ASSERT_TRUE(mWindow.Close().IsOK());
  EXPECT_FALSE(mWindow.GetCursorPixel().has_value());
}

TEST_F(DisplayOnScreen, RealKeysAndWheel_ZoomTheImage) {
  Open(300, 240);
  const KrBuffer noise = MakeNoise(900, 700);
  ASSERT_TRUE(mWindow.Display(noise, false).IsOK());
  mWindow.Zoom1_1();
  ExpectScrolled(noise, 1.0);
  ASSERT_TRUE(krtest::AwaitActive(mWindow.GetWidget()));
  const auto awaitFactor = [&](double aFactor, const char* aWhat) {
    const plainpicture::ScrolledView view({300, 240}, {900, 700}, aFactor, 18);
    Await([&] { return GetHorizontalBar().maximum() == view.GetHorizontalExtent(); }, aWhat);
    ExpectScrolled(noise, aFactor, aWhat);
  };

  krtest::MoveHands({"key", "KP_Add"});
  awaitFactor(1.2, "numeric plus");
  krtest::MoveHands({"key", "minus"});
  awaitFactor(1.0, "minus");
  MoveMouse({100, 100});
  krtest::MoveHands({"click", "4"});
  awaitFactor(1.1, "wheel away");
  krtest::MoveHands({"click", "5"});
  awaitFactor(1.0, "wheel towards");
  MoveMouse({100, 231});
  krtest::MoveHands({"click", "4"});
  awaitFactor(1.1, "wheel over the horizontal bar");
}

TEST_F(DisplayOnScreen, MenuKey_OpensTheMenuInTheMiddle) {
  Open(300, 240);
  ASSERT_TRUE(krtest::AwaitActive(mWindow.GetWidget()));

  krtest::MoveHands({"key", "Menu"});

  Await([] { return QApplication::activePopupWidget() != nullptr; }, "the menu");
  const QWidget* menu = QApplication::activePopupWidget();
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(menu->objectName(), "menu1511");
  EXPECT_LE((menu->pos() - GetClient().center()).manhattanLength(), 4);
}

TEST_F(DisplayOnScreen, Handles_OfTheBars_AreWindowsOfTheServer) {
  Open(300, 240);

  EXPECT_NE(mWindow.GetHScrollHandle(), 0u);
  EXPECT_NE(mWindow.GetVScrollHandle(), 0u);
  EXPECT_EQ(QWidget::find(mWindow.GetHScrollHandle()), &GetHorizontalBar());
}

TEST(DisplayViewOnScreen, EveryWayToTheScreen_ShowsTheSame) {
  for (const auto kind : {krgui::SurfaceKind::SharedDescriptor, krgui::SurfaceKind::SharedSystemV,
                          krgui::SurfaceKind::PlainPut, krgui::SurfaceKind::Invalidation}) {
    const auto content = std::make_shared<krgui::DisplayContent>();
    QWidget window;
    window.setGeometry(300, 200, 320, 240);
    krgui::DisplayView view(content, &window, kind);
    view.setGeometry(0, 0, 320, 240);
    window.show();
    ASSERT_TRUE(krtest::AwaitExposed(&window));
    const QRect client(window.mapToGlobal(QPoint(0, 0)), window.size());
    // The second one is drawn at once.
    for (const KrBuffer& image : {MakeNoise(200, 200), MakeGrey(200, 200, 7)}) {
      auto paint = krgui::DisplayContent::Paint::NotNeeded;

      ASSERT_TRUE(content->Display(image.GetImage(), paint).IsOK());
      if (paint == krgui::DisplayContent::Paint::Needed)
        view.update();

      const QImage expected = plainpicture::Compute({320, 240}, ToQImage(image), QColor(0x80, 0x80, 0x80));
      EXPECT_TRUE(krtest::AwaitCondition([&] { return plainpicture::Compare(GrabScreen(client), expected).empty(); }))
          << "kind " << static_cast<int>(kind) << ": " << plainpicture::Compare(GrabScreen(client), expected);
    }
    view.Withdraw();
  }
}

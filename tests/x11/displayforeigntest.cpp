// The display inside windows that are not the toolkit's, as an application of another one embeds it.

#include "displayscreen.h"
#include "windowwait.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTest>

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <utility>

namespace {

// A window made without any toolkit, as another application's would be.
class ForeignWindow {
public:
  ForeignWindow(int aX, int aY, std::uint16_t aWidth, std::uint16_t aHeight)
      : mConnection(xcb_connect(nullptr, nullptr)) {
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(mConnection)).data;
    mWindow = xcb_generate_id(mConnection);
    // Unmanaged, so that it stays where it is put.
    const std::uint32_t values[] = {0x00203040, 1};
    xcb_create_window(mConnection, XCB_COPY_FROM_PARENT, mWindow, screen->root, static_cast<std::int16_t>(aX),
                      static_cast<std::int16_t>(aY), aWidth, aHeight, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_map_window(mConnection, mWindow);
    Sync();
  }
  ~ForeignWindow() {
    Destroy();
    xcb_disconnect(mConnection);
  }
  xcb_window_t GetID() const { return mWindow; }
  void Destroy() {
    if (mWindow)
      xcb_destroy_window(mConnection, std::exchange(mWindow, 0));
    Sync();
  }

private:
  void Sync() { std::free(xcb_get_input_focus_reply(mConnection, xcb_get_input_focus(mConnection), nullptr)); }

  xcb_connection_t* mConnection;
  xcb_window_t mWindow = 0;
};

// The keys that a display's view receives.
class KeyRecorder : public QObject {
public:
  QList<int> keys;

protected:
  bool eventFilter(QObject* aObject, QEvent* aEvent) override {
    if (aObject->objectName() == QLatin1String("display") && aEvent->type() == QEvent::KeyPress)
      keys += static_cast<QKeyEvent*>(aEvent)->key();
    return false;
  }
};

} // namespace

TEST(DisplayInForeignWindow, Image_IsShownAndKeysAreTakenThere) {
  ForeignWindow parent(300, 200, 400, 300);
  KrDisplayWnd window;
  window.SetPosition(20, 30, 320, 240);
  const KrBuffer buffer = MakeNoise(320, 240);
  KeyRecorder recorder;
  qApp->installEventFilter(&recorder);

  ASSERT_TRUE(window.Create(parent.GetID(), 7).IsOK());
  ASSERT_TRUE(window.Display(buffer, false).IsOK());

  const QRect client(320, 230, 320, 240);
  EXPECT_TRUE(krtest::AwaitCondition([&] {
    return plainpicture::Compare(GrabScreen(client), ToQImage(buffer)).empty();
  })) << plainpicture::Compare(GrabScreen(client), ToQImage(buffer));
  krtest::MoveHands({"mousemove", "400", "300", "click", "1"});
  ASSERT_TRUE(krtest::AwaitCondition([&] { return QGuiApplication::focusWindow() != nullptr; }));
  krtest::MoveHands({"key", "plus"});
  EXPECT_TRUE(krtest::AwaitCondition([&] { return recorder.keys.contains(Qt::Key_Plus); }));
  int x = 0, y = 0, width = 0, height = 0;
  window.GetPosition(x, y, width, height);
  EXPECT_EQ(QRect(x, y, width, height), QRect(20, 30, 320, 240));
}

TEST(DisplayInForeignWindow, ForeignWindow_ThatEnds_EndsTheDisplay) {
  ForeignWindow parent(300, 200, 400, 300);
  KrDisplayWnd window;
  ASSERT_TRUE(window.Create(parent.GetID(), 7).IsOK());
  ASSERT_NE(window.GetHandle(), 0u);

  parent.Destroy();

  EXPECT_TRUE(krtest::AwaitCondition([&] { return window.GetHandle() == 0; }));
  EXPECT_TRUE(window.Display(MakeNoise(8, 8), false).IsOK());
  EXPECT_EQ(window.Close().GetCodeNumber(), 28u);
}

TEST(DisplayInForeignWindow, WindowThatIsNoMore_IsNoParent) {
  ForeignWindow parent(300, 200, 400, 300);
  const xcb_window_t id = parent.GetID();
  parent.Destroy();
  KrDisplayWnd window;

  const KrResult result = window.Create(id, 0);

  EXPECT_EQ(result.GetCodeNumber(), 16384u);
  EXPECT_EQ(window.GetHandle(), 0u);
}

TEST(DisplayInForeignWindow, EscapeKey_ClosesAModelessWindow) {
  KrDisplayWnd window;
  window.SetPosition(200, 150, 300, 200);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(krtest::AwaitActive(window.GetWidget()));

  krtest::MoveHands({"key", "Escape"});

  EXPECT_TRUE(krtest::AwaitCondition([&] { return window.GetHandle() == 0; }));
}

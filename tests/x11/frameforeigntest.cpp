// Windows inside and above windows that are not Qt's, as the X server has them, with a window manager and without.

#include "nativewindow.h"
#include "testwnd.h"

#include "platform/foreignwindow.h"
#include "platform/x11connection.h"
#include "serverhands.h"
#include "windowwait.h"

#include <QAbstractNativeEventFilter>
#include <QLineEdit>
#include <QWindow>

#include <gtest/gtest.h>

namespace krgui {

namespace {

using Code = KrResult::Code;

void Type(const QString& aText) {
  krtest::MoveHands({QStringLiteral("type"), aText});
}

void ClickAt(int aX, int aY) {
  krtest::MoveHands({QStringLiteral("mousemove"), QString::number(aX), QString::number(aY), QStringLiteral("click"),
                     QStringLiteral("1")});
}

xcb_window_t GetXID(const TestWnd& aWindow) {
  return static_cast<xcb_window_t>(aWindow.GetHandle());
}

/// A window with a line to type into, inside a native window.
class ForeignParent : public testing::Test {
protected:
  void SetUp() override {
    mWindow.SetPosition(20, 30, 400, 300);
    mWindow.onInitDialog = [this] {
      mLine = new QLineEdit(mWindow.GetWidget());
      mLine->setGeometry(10, 10, 200, 30);
      mLine->setFocus();
    };
    ASSERT_TRUE(mWindow.Create(mParent.GetID(), 5).IsOK());
    ASSERT_TRUE(krtest::AwaitExposed(mWindow.GetWidget()));
  }

  /// Where the line is on the screen; the window manager may have moved the parent.
  QPoint FindLineOnScreen() { return mLine->mapToGlobal(mLine->rect().center()); }

  /// The server sends keys to the child, and the toolkit knows.
  bool AwaitKeys() {
    return WaitFor([this] {
      return mParent.FindFocus() == GetXID(mWindow) &&
             QGuiApplication::focusWindow() == mWindow.GetWidget()->windowHandle();
    });
  }

  NativeWindow mParent{300, 200, 600, 500};
  TestWnd mWindow;
  QLineEdit* mLine = nullptr;
};

TEST_F(ForeignParent, Child_LiesInTheNativeWindowAtItsPosition) {
  const NativeWindow::Placing placing = mParent.Find(GetXID(mWindow));

  EXPECT_EQ(placing.parent, mParent.GetID());
  EXPECT_EQ(placing.x, 20);
  EXPECT_EQ(placing.y, 30);
  EXPECT_EQ(placing.width, 400);
  EXPECT_EQ(placing.height, 300);
  EXPECT_EQ(GetPosition(mWindow), (Position{20, 30, 400, 300}));
}

TEST_F(ForeignParent, SetPosition_MovesTheChildInside) {
  mWindow.SetPosition(40, 50, 410, 310);

  EXPECT_TRUE(WaitFor([this] {
    const NativeWindow::Placing placing = mParent.Find(GetXID(mWindow));
    return placing.x == 40 && placing.y == 50 && placing.width == 410 && placing.height == 310;
  }));
  EXPECT_EQ(GetPosition(mWindow), (Position{40, 50, 410, 310}));
}

TEST_F(ForeignParent, KeysAfterOpening_ArriveInTheChild) {
  ASSERT_TRUE(AwaitKeys());

  Type(QStringLiteral("abc"));

  EXPECT_TRUE(WaitFor([this] { return mLine->text() == QStringLiteral("abc"); }));
}

TEST_F(ForeignParent, KeysAfterAClick_ArriveInTheChild) {
  ASSERT_TRUE(AwaitKeys());
  mParent.Focus();
  ASSERT_EQ(mParent.FindFocus(), mParent.GetID());

  const QPoint line = FindLineOnScreen();
  ClickAt(line.x(), line.y());

  ASSERT_TRUE(AwaitKeys());
  Type(QStringLiteral("xyz"));
  EXPECT_TRUE(WaitFor([this] { return mLine->text() == QStringLiteral("xyz"); }));
}

TEST_F(ForeignParent, EscapeAndEnter_DoNotHideTheChild) {
  ASSERT_TRUE(AwaitKeys());

  krtest::MoveHands({QStringLiteral("key"), QStringLiteral("Escape"), QStringLiteral("Return")});

  ASSERT_TRUE(WaitFor([this] { return mWindow.record->cancels == 1 && mWindow.record->accepts == 1; }));
  EXPECT_TRUE(mWindow.GetWidget()->isVisible());
}

TEST_F(ForeignParent, NativeWindowDestroyed_ClosesTheChild) {
  mParent.Destroy();

  EXPECT_TRUE(WaitFor([this] { return mWindow.GetHandle() == 0; }));
  EXPECT_EQ(mWindow.record->destroys, 1);
  EXPECT_EQ(GetPosition(mWindow), (Position{20, 30, 400, 300}));
  DeleteWhatIsLeft();
}

TEST_F(ForeignParent, NativeWindowDestroyed_ChildCanBeShownAgain) {
  mParent.Destroy();
  ASSERT_TRUE(WaitFor([this] { return mWindow.GetHandle() == 0; }));

  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());

  EXPECT_TRUE(krtest::AwaitExposed(mWindow.GetWidget()));
  DeleteWhatIsLeft();
}

TEST_F(ForeignParent, NativeWindowDestroyed_IsNoticedByDoEventsAlone) {
  mParent.Destroy();

  while (mWindow.GetHandle() != 0) {
    ASSERT_TRUE(mWindow.DoEvents().IsOK());
  }

  EXPECT_EQ(mWindow.record->destroys, 1);
  DeleteWhatIsLeft();
}

TEST_F(ForeignParent, NativeWindowDestroyedAroundNativeChildren_WarnsOfNothing) {
  auto* surface = new QWidget(mWindow.GetWidget());
  surface->setAttribute(Qt::WA_DontCreateNativeAncestors);
  surface->setAttribute(Qt::WA_NativeWindow);
  surface->setGeometry(50, 50, 100, 100);
  surface->show();
  ASSERT_TRUE(
      WaitFor([surface] { return surface->windowHandle() != nullptr && surface->windowHandle()->isExposed(); }));

  mParent.Destroy();

  EXPECT_TRUE(WaitFor([this] { return mWindow.GetHandle() == 0; }));
  DeleteWhatIsLeft();
  QTest::qWait(0);
}

TEST_F(ForeignParent, ChildClosed_LeavesTheNativeWindow) {
  ASSERT_TRUE(mWindow.Close().IsOK());
  DeleteWhatIsLeft();
  QTest::qWait(0);

  EXPECT_NE(mParent.Find(mParent.GetID()).width, 0);
}

TEST_F(ForeignParent, TenReopenings_NeitherMoveNorResize) {
  for (int opening = 0; opening < 10; ++opening) {
    ASSERT_TRUE(mWindow.Close().IsOK());
    ASSERT_EQ(GetPosition(mWindow), (Position{20, 30, 400, 300}));
    ASSERT_TRUE(mWindow.Create(mParent.GetID(), 5).IsOK());
    ASSERT_TRUE(krtest::AwaitExposed(mWindow.GetWidget()));
    DeleteWhatIsLeft();
  }

  const NativeWindow::Placing placing = mParent.Find(GetXID(mWindow));
  EXPECT_EQ(placing.x, 20);
  EXPECT_EQ(placing.y, 30);
}

TEST(ForeignWindows, IDThatIsNoWindow_FailsWithAText) {
  TestWnd window;

  const KrResult child = window.Create(0x7FFFFFF0, 0);
  const KrResult popup = window.ShowModeless(0x7FFFFFF0);

  EXPECT_EQ(child, Code::Failed);
  EXPECT_EQ(popup, Code::Failed);
  EXPECT_NE(child.GetDescription().ToUtf8().find("no such window"), std::string::npos);
}

TEST(ForeignWindows, IDOfAWindowThatWasDestroyed_Fails) {
  NativeWindow native(100, 100, 200, 200);
  const HWND id = native.GetID();
  native.Destroy();
  TestWnd window;

  EXPECT_EQ(window.Create(id, 0), Code::Failed);
}

TEST(ForeignWindows, ModelessAboveANativeWindow_IsOwnedByIt) {
  NativeWindow owner(100, 100, 300, 200);
  TestWnd window;

  ASSERT_TRUE(window.ShowModeless(owner.GetID()).IsOK());

  ASSERT_TRUE(krtest::AwaitExposed(window.GetWidget()));
  EXPECT_EQ(owner.FindOwner(GetXID(window)), owner.GetID());
  EXPECT_NE(owner.Find(GetXID(window)).parent, owner.GetID());
}

TEST(ForeignWindows, OwnerDestroyed_ClosesTheModelessWindow) {
  NativeWindow owner(100, 100, 300, 200);
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(owner.GetID()).IsOK());
  ASSERT_TRUE(krtest::AwaitExposed(window.GetWidget()));

  owner.Destroy();

  EXPECT_TRUE(WaitFor([&] { return window.GetHandle() == 0; }));
  EXPECT_EQ(window.record->destroys, 1);
  DeleteWhatIsLeft();
}

TEST(ForeignWindows, ModelessWindowClosed_LeavesItsOwner) {
  NativeWindow owner(100, 100, 300, 200);
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(owner.GetID()).IsOK());

  ASSERT_TRUE(window.Close().IsOK());

  DeleteWhatIsLeft();
  EXPECT_NE(owner.Find(owner.GetID()).width, 0);
}

TEST(ForeignWindows, WindowObjectDeletedWhileInside_LeavesTheNativeWindow) {
  NativeWindow parent(100, 100, 600, 400);
  {
    TestWnd window;
    ASSERT_TRUE(window.Create(parent.GetID(), 0).IsOK());
    ASSERT_TRUE(krtest::AwaitExposed(window.GetWidget()));
  }
  DeleteWhatIsLeft();
  QTest::qWait(0);

  EXPECT_NE(parent.Find(parent.GetID()).width, 0);
}

TEST(ForeignWindows, WidgetDeletedByTheApplicationWhileInside_IsOrderly) {
  NativeWindow parent(100, 100, 600, 400);
  TestWnd window;
  ASSERT_TRUE(window.Create(parent.GetID(), 0).IsOK());
  ASSERT_TRUE(krtest::AwaitExposed(window.GetWidget()));

  delete window.GetWidget();

  EXPECT_EQ(window.GetHandle(), 0U);
  DeleteWhatIsLeft();
  QTest::qWait(0);
}

/// A popup's template created as a child: a window above a native one.
class OwnedByForeign : public testing::Test {
protected:
  void SetUp() override {
    mWindow.SetPosition(50, 60, 700, 500);
    ASSERT_TRUE(mWindow.Create(mParent.GetID(), 3).IsOK());
    ASSERT_TRUE(AwaitExposed());
  }

  bool AwaitExposed() {
    return WaitFor([this] { return mWindow.GetWidget()->windowHandle()->isExposed(); });
  }
  /// In the parent's client coordinates, as the toolkit's native window knows it.
  QPoint FindCornerInParent() {
    const auto [x, y] = mParent.FindOrigin();
    return mWindow.GetWidget()->windowHandle()->framePosition() - QPoint(x, y);
  }

  NativeWindow mParent{400, 300, 300, 200};
  TestWnd mWindow{kDeviceFinderTraits};
};

TEST_F(OwnedByForeign, Frame_LiesAtItsPlaceInTheParentsClientArea) {
  EXPECT_TRUE(WaitFor([this] { return FindCornerInParent() == QPoint(50, 60); }));
  EXPECT_EQ(GetPosition(mWindow), (Position{50, 60, 700, 500}));
  EXPECT_EQ(mParent.FindOwner(GetXID(mWindow)), mParent.GetID());
  EXPECT_EQ(mWindow.GetShowMode(), Wnd::Mode::Child);
}

TEST_F(OwnedByForeign, TenReopenings_NeitherMoveNorResize) {
  for (int opening = 0; opening < 10; ++opening) {
    ASSERT_TRUE(mWindow.Close().IsOK());
    ASSERT_EQ(GetPosition(mWindow), (Position{50, 60, 700, 500})) << "opening " << opening;
    DeleteWhatIsLeft();
    ASSERT_TRUE(mWindow.Create(mParent.GetID(), 3).IsOK());
    ASSERT_TRUE(AwaitExposed());
  }
}

TEST_F(OwnedByForeign, ParentMoved_PositionIsCountedFromItsNewPlace) {
  const auto before = mParent.FindOrigin();
  mParent.Move(500, 420);
  ASSERT_TRUE(WaitFor([&] { return mParent.FindOrigin() != before; }));

  mWindow.SetPosition(30, 40, 700, 500);

  EXPECT_TRUE(WaitFor([this] { return FindCornerInParent() == QPoint(30, 40); }));
  EXPECT_EQ(GetPosition(mWindow), (Position{30, 40, 700, 500}));
}

TEST_F(OwnedByForeign, EnterAndEscape_DoNotCloseIt) {
  QTest::keyClick(mWindow.GetWidget(), Qt::Key_Escape);
  QTest::keyClick(mWindow.GetWidget(), Qt::Key_Return);

  EXPECT_EQ(mWindow.record->cancels, 1);
  EXPECT_EQ(mWindow.record->accepts, 1);
  EXPECT_TRUE(mWindow.GetWidget()->isVisible());
}

TEST_F(OwnedByForeign, ParentDestroyed_TakesItAlongWithItsPosition) {
  mParent.Destroy();

  EXPECT_TRUE(WaitFor([this] { return mWindow.GetHandle() == 0; }));
  EXPECT_EQ(mWindow.record->destroys, 1);
  EXPECT_EQ(GetPosition(mWindow), (Position{50, 60, 700, 500}));
  DeleteWhatIsLeft();
}

/// A window whose parent is destroyed after it was found and before it is used.
class HastyParent : public testing::TestWithParam<bool> {};

TEST_P(HastyParent, DestroyedAfterItWasFound_IsNoParent) {
  NativeWindow native(100, 100, 200, 200);
  std::unique_ptr<ForeignWindow> foreign;
  ASSERT_TRUE(ForeignWindow::Find(native.GetID(), foreign).IsOK());
  QWidget dialog;
  native.Destroy();

  const KrResult result = GetParam() ? foreign->Own(dialog) : foreign->Embed(dialog);

  EXPECT_EQ(result, Code::Failed);
  EXPECT_NE(result.GetDescription().ToUtf8().find("destroyed"), std::string::npos);
  foreign->Leave();
  QTest::qWait(0);
}

INSTANTIATE_TEST_SUITE_P(Uses, HastyParent, testing::Bool(),
                         [](const auto& aInfo) { return aInfo.param ? "AsOwner" : "AsParent"; });

/// Sees the errors that nobody expected, and keeps the toolkit from warning of them.
class ErrorWatch : public QAbstractNativeEventFilter {
public:
  ErrorWatch() { qApp->installNativeEventFilter(this); }
  ~ErrorWatch() override { qApp->removeNativeEventFilter(this); }
  bool nativeEventFilter(const QByteArray&, void* aMessage, qintptr*) override {
    const auto* error = static_cast<const xcb_generic_error_t*>(aMessage);
    const bool isError = error->response_type == 0;
    if (isError) {
      ids.push_back(error->resource_id);
    }
    return isError;
  }
  std::vector<std::uint32_t> ids;
};

TEST(ForeignWindows, ErrorsAfterAnEndedChild_AreExpectedNoLonger) {
  // Installed before the library's own filter of this parent, and so asked after it.
  ErrorWatch errors;
  NativeWindow parent(100, 100, 600, 400);
  TestWnd window;
  ASSERT_TRUE(window.Create(parent.GetID(), 0).IsOK());
  ASSERT_TRUE(krtest::AwaitExposed(window.GetWidget()));
  const xcb_window_t ended = GetXID(window);
  parent.Destroy();
  ASSERT_TRUE(WaitFor([&] { return window.GetHandle() == 0; }));
  DeleteWhatIsLeft();
  QTest::qWait(0);
  ASSERT_TRUE(errors.ids.empty());

  // The id may be another window's by now.
  xcb_map_window(GetX11Connection(), ended);
  xcb_flush(GetX11Connection());

  EXPECT_TRUE(WaitFor([&] { return errors.ids == std::vector<std::uint32_t>{ended}; }));
}

} // namespace

} // namespace krgui

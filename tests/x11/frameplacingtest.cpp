// Popups under a window manager: placing with a frame, the user's closing and resizing, the caption.

#include "nativewindow.h"
#include "testwnd.h"

#include <QProcess>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <gtest/gtest.h>

namespace krgui {

namespace {

using Code = KrResult::Code;

void XDoTool(const QStringList& aArguments) {
  ASSERT_EQ(QProcess::execute(QStringLiteral("xdotool"), aArguments), 0);
}

xcb_window_t GetXID(const TestWnd& aWindow) {
  return static_cast<xcb_window_t>(aWindow.GetHandle());
}

/// On the screen with its frame, and nothing more to come.
bool AwaitPlaced(TestWnd& aWindow) {
  return QTest::qWaitForWindowExposed(aWindow.GetWidget()) &&
         WaitFor([&] { return aWindow.GetWidget()->frameGeometry().height() > aWindow.GetWidget()->height(); });
}

bool AwaitActive(TestWnd& aWindow) {
  return AwaitPlaced(aWindow) && QTest::qWaitForWindowActive(aWindow.GetWidget());
}

/// Drags the frame's bottom right corner.
void DragCorner(TestWnd& aWindow, int aRight, int aDown) {
  const QPoint corner = aWindow.GetWidget()->frameGeometry().bottomRight();
  const QPoint target = corner + QPoint(aRight, aDown);
  XDoTool({QStringLiteral("mousemove"), QString::number(corner.x()), QString::number(corner.y())});
  XDoTool({QStringLiteral("mousedown"), QStringLiteral("1")});
  XDoTool({QStringLiteral("mousemove"), QString::number((corner.x() + target.x()) / 2),
           QString::number((corner.y() + target.y()) / 2)});
  XDoTool({QStringLiteral("mousemove"), QString::number(target.x()), QString::number(target.y())});
  XDoTool({QStringLiteral("mouseup"), QStringLiteral("1")});
}

TEST(Placing, SetBeforeShowing_IsTheFramesPositionOnTheScreen) {
  TestWnd window;
  window.SetPosition(300, 250, 500, 400);

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  ASSERT_TRUE(AwaitPlaced(window));
  EXPECT_TRUE(WaitFor([&] { return window.GetWidget()->frameGeometry().topLeft() == QPoint(300, 250); }));
  EXPECT_EQ(window.GetWidget()->size(), QSize(500, 400));
  EXPECT_EQ(GetPosition(window), (Position{300, 250, 500, 400}));
}

TEST(Placing, TenReopenings_NeitherMoveNorResize) {
  TestWnd window;
  window.SetPosition(300, 250, 500, 400);
  for (int opening = 0; opening < 10; ++opening) {
    ASSERT_TRUE(window.ShowModeless(0).IsOK());
    ASSERT_TRUE(AwaitPlaced(window));
    ASSERT_EQ(window.GetWidget()->frameGeometry().topLeft(), QPoint(300, 250)) << "opening " << opening;
    ASSERT_EQ(GetPosition(window), (Position{300, 250, 500, 400})) << "opening " << opening;
    ASSERT_TRUE(window.Close().IsOK());
    ASSERT_EQ(GetPosition(window), (Position{300, 250, 500, 400})) << "closed after opening " << opening;
    DeleteWhatIsLeft();
  }
}

TEST(Placing, TenHastyReopenings_NeitherMoveNorResize) {
  TestWnd window;
  window.SetPosition(300, 250, 500, 400);
  for (int opening = 0; opening < 10; ++opening) {
    ASSERT_TRUE(window.ShowModeless(0).IsOK());
    ASSERT_TRUE(window.DoEvents().IsOK());
    ASSERT_TRUE(window.Close().IsOK());
    ASSERT_EQ(GetPosition(window), (Position{300, 250, 500, 400})) << "opening " << opening;
    DeleteWhatIsLeft();
  }
}

TEST(Placing, TenReopeningsOfAFixedDialog_NeitherMoveNorResize) {
  TestWnd window(kDeviceFinderTraits);
  window.SetPosition(200, 150, 700, 500);
  for (int opening = 0; opening < 10; ++opening) {
    ASSERT_TRUE(window.ShowModeless(0).IsOK());
    ASSERT_TRUE(AwaitPlaced(window));
    ASSERT_EQ(GetPosition(window), (Position{200, 150, 700, 500})) << "opening " << opening;
    ASSERT_TRUE(window.Close().IsOK());
    DeleteWhatIsLeft();
  }
}

TEST(Placing, MovedByTheUser_IsRememberedAndReopenedThere) {
  TestWnd window;
  window.SetPosition(300, 250, 500, 400);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(window));
  const QRect frame = window.GetWidget()->frameGeometry();
  const QPoint grip(frame.center().x(), frame.top() + 8);
  XDoTool({QStringLiteral("mousemove"), QString::number(grip.x()), QString::number(grip.y())});
  XDoTool({QStringLiteral("mousedown"), QStringLiteral("1")});
  XDoTool({QStringLiteral("mousemove"), QString::number(grip.x() + 60), QString::number(grip.y() + 40)});
  XDoTool({QStringLiteral("mousemove"), QString::number(grip.x() + 120), QString::number(grip.y() + 80)});
  XDoTool({QStringLiteral("mouseup"), QStringLiteral("1")});
  ASSERT_TRUE(WaitFor([&] { return GetPosition(window) == Position{420, 330, 500, 400}; }));

  ASSERT_TRUE(window.Close().IsOK());
  DeleteWhatIsLeft();
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  ASSERT_TRUE(AwaitPlaced(window));
  EXPECT_EQ(window.GetWidget()->frameGeometry().topLeft(), QPoint(420, 330));
}

TEST(Placing, SetWhileOpen_MovesTheFrameThere) {
  TestWnd window;
  window.SetPosition(300, 250, 500, 400);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(window));

  window.SetPosition(600, 500, 640, 480);

  EXPECT_TRUE(WaitFor([&] { return window.GetWidget()->frameGeometry().topLeft() == QPoint(600, 500); }));
  EXPECT_EQ(GetPosition(window), (Position{600, 500, 640, 480}));
}

TEST(Closing, ByTheWindowManager_ClosesAModelessWindow) {
  TestWnd window;
  NativeWindow taskBar(0, 1500, 50, 50);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(window));

  taskBar.AskToClose(GetXID(window));

  EXPECT_TRUE(WaitFor([&] { return window.GetHandle() == 0; }));
  EXPECT_EQ(window.record->cancels, 1);
  EXPECT_EQ(window.record->destroys, 1);
}

TEST(Closing, ByTheUsersKeys_CancelsAModalDialog) {
  TestWnd window(kDeviceFinderTraits);
  QTimer::singleShot(0, qApp, [&] {
    ASSERT_TRUE(AwaitActive(window));
    XDoTool({QStringLiteral("key"), QStringLiteral("alt+F4")});
  });

  EXPECT_EQ(window.ShowModal(0).GetCodeNumber(), 16386U);

  EXPECT_EQ(window.record->cancels, 1);
}

TEST(Closing, ByEscapeTyped_CancelsAModalDialog) {
  TestWnd window(kDeviceFinderTraits);
  QTimer::singleShot(0, qApp, [&] {
    ASSERT_TRUE(AwaitActive(window));
    XDoTool({QStringLiteral("key"), QStringLiteral("Escape")});
  });

  EXPECT_EQ(window.ShowModal(0), Code::Cancelled);
}

TEST(Closing, ByEnterTyped_AcceptsAModalDialog) {
  TestWnd window(kDeviceFinderTraits);
  QTimer::singleShot(0, qApp, [&] {
    ASSERT_TRUE(AwaitActive(window));
    XDoTool({QStringLiteral("key"), QStringLiteral("Return")});
  });

  EXPECT_EQ(window.ShowModal(0), Code::OK);

  EXPECT_EQ(window.record->accepts, 1);
}

TEST(Resizing, ByTheUser_EndsAtTheSmallestSize) {
  TestWnd window(kGenBrowserTraits);
  window.SetPosition(300, 250, 500, 450);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(window));

  DragCorner(window, -450, -400);

  EXPECT_TRUE(WaitFor([&] { return window.GetWidget()->size() == QSize(300, 300); })) << GetPosition(window);
}

TEST(Resizing, ByTheUser_EndsAtTheLargestSize) {
  TestWnd window(WindowTraits{"", 1079, 1079, 1081, 300, 700, 300, 600});
  window.SetPosition(300, 250, 500, 450);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(window));

  DragCorner(window, 600, 500);

  EXPECT_TRUE(WaitFor([&] { return window.GetWidget()->size() == QSize(700, 600); })) << GetPosition(window);
  EXPECT_EQ(window.record->sizes.back(), QSize(700, 600));
}

TEST(Resizing, OfAFixedDialogByTheUser_IsNotPossible) {
  TestWnd window(kDeviceFinderTraits);
  window.SetPosition(300, 250, 600, 450);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(window));

  DragCorner(window, 100, 100);
  XDoTool({QStringLiteral("windowsize"), QStringLiteral("--sync"), QString::number(window.GetHandle()),
           QStringLiteral("600"), QStringLiteral("450")});

  EXPECT_EQ(window.GetWidget()->size(), QSize(600, 450));
}

TEST(Caption, WithATitle_IsWhatTheWindowManagerReads) {
  TestWnd window(kDeviceFinderTraits);
  window.SetTitle("Camera 1");

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  ASSERT_TRUE(AwaitPlaced(window));
  QProcess tool;
  tool.start(QStringLiteral("xdotool"), {QStringLiteral("getwindowname"), QString::number(window.GetHandle())});
  ASSERT_TRUE(tool.waitForFinished());
  EXPECT_EQ(tool.readAllStandardOutput().trimmed(), QByteArray("Camera 1"));
}

} // namespace

} // namespace krgui

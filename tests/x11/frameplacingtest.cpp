// Popups under a window manager: placing with a frame, the user's closing and resizing, the caption.

#include "krgui/krdisplaywnd.h"
#include "nativewindow.h"
#include "platform/x11connection.h"
#include "serverhands.h"
#include "testwnd.h"
#include "windowwait.h"

#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <gtest/gtest.h>

#include <functional>

namespace krgui {

namespace {

using Code = KrResult::Code;

xcb_window_t GetXID(const TestWnd& aWindow) {
  return static_cast<xcb_window_t>(aWindow.GetHandle());
}

/// The frame on the screen, as the native window knows it: the widget keeps what it read first, which may be from
/// before the window manager has made the frame.
template <typename Window>
QRect GetFrame(const Window& aWindow) {
  return aWindow.GetWidget()->windowHandle()->frameGeometry();
}

/// On the screen with its frame, and nothing more to come.
template <typename Window>
bool AwaitPlaced(const Window& aWindow) {
  return WaitFor([&] {
    const QWindow* window = aWindow.GetWidget()->windowHandle();
    return window->isExposed() && window->frameMargins().top() > 0;
  });
}

/// The window that the window manager takes its own keys for; it may learn of the keyboard's way later than the
/// toolkit.
bool IsActiveForTheManager(const TestWnd& aWindow) {
  xcb_connection_t* connection = GetX11Connection();
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  const std::string name = "_NET_ACTIVE_WINDOW";
  const auto atom = KeepReply(xcb_intern_atom_reply(
      connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()), nullptr));
  const auto active = KeepReply(xcb_get_property_reply(
      connection, xcb_get_property(connection, 0, root, atom ? atom->atom : 0, XCB_ATOM_WINDOW, 0, 1), nullptr));
  return active && xcb_get_property_value_length(active.get()) == static_cast<int>(sizeof(xcb_window_t)) &&
         *static_cast<const xcb_window_t*>(xcb_get_property_value(active.get())) == GetXID(aWindow);
}

bool AwaitActive(TestWnd& aWindow) {
  return AwaitPlaced(aWindow) &&
         WaitFor([&] { return aWindow.GetWidget()->isActiveWindow() && IsActiveForTheManager(aWindow); });
}

/// Types into a modal dialog as soon as it has the keyboard; one that does not end by it is closed, so that its loop
/// ends.
void TypeIntoModal(TestWnd& aWindow, const char* aKey) {
  QTimer::singleShot(0, qApp, [&aWindow, aKey] {
    const bool isActive = AwaitActive(aWindow);
    EXPECT_TRUE(isActive);
    if (isActive) {
      krtest::MoveHands({QStringLiteral("key"), QString::fromLatin1(aKey)});
    }
    if (!isActive || !WaitFor([&] { return aWindow.record->accepts + aWindow.record->cancels > 0; })) {
      ADD_FAILURE() << "No key reached it.";
      EXPECT_TRUE(aWindow.Close().IsOK());
    }
  });
}

/// Where the server has the window, which a busy window manager moves later than the toolkit believes.
bool IsWhereTheToolkitBelieves(const TestWnd& aWindow) {
  xcb_connection_t* connection = GetX11Connection();
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  const auto place = KeepReply(xcb_translate_coordinates_reply(
      connection, xcb_translate_coordinates(connection, GetXID(aWindow), root, 0, 0), nullptr));
  return place && aWindow.GetWidget()->windowHandle()->position() == QPoint(place->dst_x, place->dst_y);
}

/// How large the server has the window.
QSize GetServerSize(const TestWnd& aWindow) {
  xcb_connection_t* connection = GetX11Connection();
  const auto size =
      KeepReply(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, GetXID(aWindow)), nullptr));
  return size ? QSize(size->width, size->height) : QSize();
}

/// Drags what is at a point of the screen.
void Drag(QPoint aFrom, QPoint aBy) {
  const auto move = [](QPoint aTo) {
    krtest::MoveHands({QStringLiteral("mousemove"), QString::number(aTo.x()), QString::number(aTo.y())});
  };
  move(aFrom);
  krtest::MoveHands({QStringLiteral("mousedown"), QStringLiteral("1")});
  move(aFrom + aBy / 2);
  move(aFrom + aBy);
  krtest::MoveHands({QStringLiteral("mouseup"), QStringLiteral("1")});
}

/// Drags the frame's bottom right corner.
void DragCorner(TestWnd& aWindow, int aRight, int aDown) {
  ASSERT_TRUE(WaitFor([&] { return IsWhereTheToolkitBelieves(aWindow); }));
  Drag(GetFrame(aWindow).bottomRight(), {aRight, aDown});
}

/// Drags again until it has come to something, as a user does: a busy window manager may take press and release in one
/// look, with no move between them. False where it comes to nothing.
bool DragUntil(const std::function<void()>& aDrag, const std::function<bool()>& aIsDone) {
  constexpr int kLookMs = 500; // Then it is dragged once more.
  return WaitFor([&] {
    if (!aIsDone())
      aDrag();
    return QTest::qWaitFor(aIsDone, kLookMs);
  });
}

/// Drags the window itself, by its caption; false where its frame does not come there.
bool DragFrameTo(TestWnd& aWindow, QPoint aTo) {
  const auto drag = [&] {
    ASSERT_TRUE(WaitFor([&] { return IsWhereTheToolkitBelieves(aWindow); }));
    const QRect frame = GetFrame(aWindow);
    Drag({frame.center().x(), frame.top() + 8}, aTo - frame.topLeft());
  };
  return DragUntil(drag, [&] { return GetFrame(aWindow).topLeft() == aTo; });
}

TEST(Placing, SetBeforeShowing_IsTheFramesPositionOnTheScreen) {
  TestWnd window;
  window.SetPosition(300, 250, 500, 400);

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  ASSERT_TRUE(AwaitPlaced(window));
  EXPECT_TRUE(WaitFor([&] { return GetFrame(window).topLeft() == QPoint(300, 250); }));
  EXPECT_EQ(window.GetWidget()->size(), QSize(500, 400));
  EXPECT_EQ(GetPosition(window), (Position{300, 250, 500, 400}));
}

TEST(Placing, TenReopenings_NeitherMoveNorResize) {
  TestWnd window;
  window.SetPosition(300, 250, 500, 400);
  for (int opening = 0; opening < 10; ++opening) {
    ASSERT_TRUE(window.ShowModeless(0).IsOK());
    ASSERT_TRUE(AwaitPlaced(window));
    ASSERT_TRUE(WaitFor([&] { return GetFrame(window).topLeft() == QPoint(300, 250); })) << "opening " << opening;
    ASSERT_EQ(GetPosition(window), (Position{300, 250, 500, 400})) << "opening " << opening;
    ASSERT_TRUE(window.Close().IsOK());
    ASSERT_EQ(GetPosition(window), (Position{300, 250, 500, 400})) << "closed after opening " << opening;
    DeleteWhatIsLeft();
  }
}

/// One of the product's windows, in every way it is placed: over and over again at the same place.
void ExpectNoCreep(KrDisplayWnd& aWindow, const Position& aPosition, std::function<KrResult()> aShow) {
  aWindow.SetPosition(aPosition.x, aPosition.y, aPosition.width, aPosition.height);
  for (int opening = 0; opening < 10; ++opening) {
    ASSERT_TRUE(aShow().IsOK());
    ASSERT_TRUE(WaitFor([&] { return aWindow.GetWidget()->isVisible(); }));
    if (aWindow.GetWidget()->isWindow()) {
      ASSERT_TRUE(AwaitPlaced(aWindow));
    }
    ASSERT_EQ(GetPosition(aWindow), aPosition) << "opening " << opening;
    ASSERT_TRUE(aWindow.Close().IsOK());
    ASSERT_EQ(GetPosition(aWindow), aPosition) << "closed after opening " << opening;
    DeleteWhatIsLeft();
  }
}

TEST(Placing, TenReopeningsPartlyOffTheScreen_NeitherMoveNorResize) {
  KrDisplayWnd window;

  ExpectNoCreep(window, {-20, 250, 500, 400}, [&] { return window.ShowModeless(0); });
}

TEST(Placing, TenReopeningsOfADisplayAsPopup_NeitherMoveNorResize) {
  KrDisplayWnd window;

  ExpectNoCreep(window, {300, 250, 500, 400}, [&] { return window.ShowModeless(0); });
}

TEST(Placing, TenReopeningsOfADisplayAsChild_NeitherMoveNorResize) {
  QWidget parent;
  parent.resize(700, 600);
  parent.show();
  ASSERT_TRUE(krtest::AwaitExposed(&parent));
  KrDisplayWnd window;

  ExpectNoCreep(window, {30, 40, 500, 400}, [&] { return window.Create(parent.winId(), 0); });
}

TEST(Placing, FrameReadBeforeThereWasOne_IsNotKept) {
  TestWnd window(kDeviceFinderTraits);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  // The widget remembers a frame without borders from now on.
  (void)window.GetWidget()->frameGeometry();
  ASSERT_TRUE(AwaitPlaced(window));

  const QPoint corner = GetFrame(window).topLeft();
  EXPECT_EQ(GetPosition(window), (Position{corner.x(), corner.y(), 800, 600}));

  window.SetPosition(310, 260, 700, 500);
  EXPECT_TRUE(WaitFor([&] { return GetFrame(window).topLeft() == QPoint(310, 260); }));
  EXPECT_EQ(GetPosition(window), (Position{310, 260, 700, 500}));
}

/// A window with a popup's template created as a child, above a Qt widget.
class OwnedChild : public testing::Test {
protected:
  void SetUp() override {
    mParent->setGeometry(400, 300, 300, 200);
    mParent->show();
    ASSERT_TRUE(WaitFor([this] { return mParent->windowHandle()->frameMargins().top() > 0; }));
    mWindow.SetPosition(50, 60, 700, 500);
    ASSERT_TRUE(mWindow.Create(mParent->winId(), 3).IsOK());
    ASSERT_TRUE(AwaitPlaced(mWindow));
  }

  QPoint FindCornerInParent() const { return GetFrame(mWindow).topLeft() - mParent->mapToGlobal(QPoint()); }

  std::unique_ptr<QWidget> mParent = std::make_unique<QWidget>();
  TestWnd mWindow{kDeviceFinderTraits};
};

TEST_F(OwnedChild, Frame_LiesAtItsPlaceInTheParentsClientArea) {
  EXPECT_TRUE(WaitFor([this] { return FindCornerInParent() == QPoint(50, 60); }));
  EXPECT_EQ(GetPosition(mWindow), (Position{50, 60, 700, 500}));
}

TEST_F(OwnedChild, IsAWindowOfItsOwnOwnedByTheParentAndNoDialogForTheWindowManager) {
  const NativeWindow reader(0, 1500, 50, 50);
  const xcb_atom_t normal = reader.FindAtom("_NET_WM_WINDOW_TYPE_NORMAL");

  EXPECT_TRUE(mWindow.GetWidget()->isWindow());
  EXPECT_EQ(mWindow.GetShowMode(), Wnd::Mode::Child);
  EXPECT_EQ(reader.FindOwner(GetXID(mWindow)), mParent->winId());
  const std::string types = reader.FindProperty(GetXID(mWindow), "_NET_WM_WINDOW_TYPE").value;
  EXPECT_EQ(types, std::string(reinterpret_cast<const char*>(&normal), sizeof normal));
}

TEST_F(OwnedChild, TenReopenings_NeitherMoveNorResize) {
  for (int opening = 0; opening < 10; ++opening) {
    ASSERT_TRUE(mWindow.Close().IsOK());
    ASSERT_EQ(GetPosition(mWindow), (Position{50, 60, 700, 500})) << "opening " << opening;
    DeleteWhatIsLeft();
    ASSERT_TRUE(mWindow.Create(mParent->winId(), 3).IsOK());
    ASSERT_TRUE(AwaitPlaced(mWindow));
    ASSERT_TRUE(WaitFor([this] { return FindCornerInParent() == QPoint(50, 60); })) << "opening " << opening;
    ASSERT_EQ(GetPosition(mWindow), (Position{50, 60, 700, 500})) << "opening " << opening;
  }
}

TEST_F(OwnedChild, CloseBox_DoesNotCloseIt) {
  NativeWindow taskBar(0, 1500, 50, 50);

  taskBar.AskToClose(GetXID(mWindow));

  ASSERT_TRUE(WaitFor([this] { return mWindow.record->cancels == 1; }));
  EXPECT_TRUE(mWindow.GetWidget()->isVisible());
}

TEST_F(OwnedChild, ParentsEnd_TakesItAlong) {
  mParent.reset();

  EXPECT_FALSE(mWindow.IsOpen());
  EXPECT_EQ(GetPosition(mWindow), (Position{50, 60, 700, 500}));
}

TEST(Placing, ModelessWindow_IsADialogForTheWindowManager) {
  const NativeWindow reader(0, 1500, 50, 50);
  const xcb_atom_t dialog = reader.FindAtom("_NET_WM_WINDOW_TYPE_DIALOG");
  TestWnd window;

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  ASSERT_TRUE(AwaitPlaced(window));
  const std::string types = reader.FindProperty(GetXID(window), "_NET_WM_WINDOW_TYPE").value;
  EXPECT_EQ(types.substr(0, sizeof dialog), std::string(reinterpret_cast<const char*>(&dialog), sizeof dialog));
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
  ASSERT_TRUE(DragFrameTo(window, {420, 330}));
  ASSERT_TRUE(WaitFor([&] { return GetPosition(window) == Position{420, 330, 500, 400}; }));

  ASSERT_TRUE(window.Close().IsOK());
  EXPECT_EQ(GetPosition(window), (Position{420, 330, 500, 400}));
  DeleteWhatIsLeft();
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  ASSERT_TRUE(AwaitPlaced(window));
  EXPECT_TRUE(WaitFor([&] { return GetFrame(window).topLeft() == QPoint(420, 330); }));
}

TEST(Placing, SetWhileOpen_MovesTheFrameThere) {
  TestWnd window;
  window.SetPosition(300, 250, 500, 400);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(window));

  window.SetPosition(600, 500, 640, 480);

  EXPECT_TRUE(WaitFor([&] { return GetFrame(window).topLeft() == QPoint(600, 500); }));
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
  TypeIntoModal(window, "alt+F4");

  EXPECT_EQ(window.ShowModal(0).GetCodeNumber(), 16386U);

  EXPECT_EQ(window.record->cancels, 1);
}

TEST(Closing, ByEscapeTyped_CancelsAModalDialog) {
  TestWnd window(kDeviceFinderTraits);
  TypeIntoModal(window, "Escape");

  EXPECT_EQ(window.ShowModal(0), Code::Cancelled);
}

TEST(Closing, ByEnterTyped_AcceptsAModalDialog) {
  TestWnd window(kDeviceFinderTraits);
  TypeIntoModal(window, "Return");

  EXPECT_EQ(window.ShowModal(0), Code::OK);

  EXPECT_EQ(window.record->accepts, 1);
}

TEST(Resizing, ByTheUser_EndsAtTheSmallestSize) {
  TestWnd window(kGenBrowserTraits);
  window.SetPosition(300, 250, 500, 450);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(window));

  EXPECT_TRUE(
      DragUntil([&] { DragCorner(window, -450, -400); }, [&] { return window.GetWidget()->size() == QSize(300, 300); }))
      << GetPosition(window);
}

TEST(Resizing, ByTheUser_EndsAtTheLargestSize) {
  TestWnd window(WindowTraits{"", 1079, 1079, 1081, 300, 700, 300, 600});
  window.SetPosition(300, 250, 500, 450);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(window));

  EXPECT_TRUE(
      DragUntil([&] { DragCorner(window, 600, 500); }, [&] { return window.GetWidget()->size() == QSize(700, 600); }))
      << GetPosition(window);
  EXPECT_EQ(window.record->sizes.back(), QSize(700, 600));
}

TEST(Resizing, OfAFixedDialogByTheUser_IsNotPossible) {
  TestWnd window(kDeviceFinderTraits);
  window.SetPosition(300, 250, 600, 450);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(window));

  DragCorner(window, 100, 100);

  // The window manager takes what the user does in turn: when the window has moved, the drag before is over.
  const QPoint before = GetFrame(window).topLeft();
  ASSERT_TRUE(DragFrameTo(window, before + QPoint(120, 80)));
  EXPECT_EQ(GetServerSize(window), QSize(600, 450));
  EXPECT_EQ(window.GetWidget()->size(), QSize(600, 450));
}

TEST(Caption, WithATitle_IsWhatTheWindowManagerReads) {
  TestWnd window(kDeviceFinderTraits);
  window.SetTitle("Camera 1");

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  ASSERT_TRUE(AwaitPlaced(window));
  EXPECT_EQ(krtest::MoveHands({"getwindowname", QString::number(window.GetHandle())}), "Camera 1");
}

/// What the window manager reads: the newer property and the older one.
std::vector<std::string> ReadCaptions(const NativeWindow& aReader, const TestWnd& aWindow) {
  return {aReader.FindProperty(GetXID(aWindow), "_NET_WM_NAME").value,
          aReader.FindProperty(GetXID(aWindow), "WM_NAME").value};
}

bool AwaitCaption(const NativeWindow& aReader, const TestWnd& aWindow, const std::string& aTitle) {
  return WaitFor([&] { return ReadCaptions(aReader, aWindow) == std::vector<std::string>{aTitle, aTitle}; });
}

/// The display name is appended to titles by the toolkit; restored afterwards.
class Captions : public testing::Test {
protected:
  void TearDown() override { QGuiApplication::setApplicationDisplayName(mDisplayName); }

  const QString mDisplayName = QGuiApplication::applicationDisplayName();
  NativeWindow mReader{0, 1500, 50, 50};
  TestWnd mWindow{kDeviceFinderTraits};
};

TEST_F(Captions, NeverSet_AreEmpty) {
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());

  ASSERT_TRUE(AwaitPlaced(mWindow));
  EXPECT_TRUE(AwaitCaption(mReader, mWindow, ""));
  EXPECT_NE(mReader.FindProperty(GetXID(mWindow), "_NET_WM_NAME").type, xcb_atom_t(XCB_ATOM_NONE));
}

TEST_F(Captions, SetEmptyWhileOpen_BecomeEmpty) {
  mWindow.SetTitle("Camera 1");
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(mWindow));

  mWindow.SetTitle("");

  EXPECT_TRUE(AwaitCaption(mReader, mWindow, ""));
}

TEST_F(Captions, WithAnApplicationDisplayName_AreTheTitleAlone) {
  QGuiApplication::setApplicationDisplayName(QStringLiteral("Inspection"));
  mWindow.SetTitle("Camera [*] 1");
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(mWindow));

  EXPECT_TRUE(AwaitCaption(mReader, mWindow, "Camera [*] 1"));
}

TEST_F(Captions, WrittenAgainByTheToolkit_AreCorrected) {
  QGuiApplication::setApplicationDisplayName(QStringLiteral("Inspection"));
  mWindow.SetTitle("Camera 1");
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(mWindow));

  mWindow.GetWidget()->setWindowTitle(QStringLiteral("Live"));

  EXPECT_TRUE(AwaitCaption(mReader, mWindow, "Live"));
}

TEST_F(Captions, BeyondLatinLetters_AreUTF8) {
  mWindow.SetTitle("K\xC3\xA4mera \xF0\x9F\x93\xB7");
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
  ASSERT_TRUE(AwaitPlaced(mWindow));

  EXPECT_TRUE(AwaitCaption(mReader, mWindow, "K\xC3\xA4mera \xF0\x9F\x93\xB7"));
}

} // namespace

} // namespace krgui

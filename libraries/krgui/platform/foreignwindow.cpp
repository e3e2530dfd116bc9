#include "platform/foreignwindow.h"

#include "platform/x11connection.h"

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <xcb/xcb.h>

#include <algorithm>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace krgui {

namespace {

/// A number of a request comes before another, as they wrap.
bool IsBefore(std::uint32_t aSequence, std::uint32_t aOther) {
  return static_cast<std::int32_t>(aSequence - aOther) < 0;
}

bool Exists(xcb_window_t aID) {
  xcb_connection_t* connection = GetX11Connection();
  xcb_generic_error_t* error = nullptr;
  const auto geometry = KeepReply(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, aID), &error));
  const auto ownedError = KeepReply(error);
  return geometry != nullptr;
}

X11Reply<xcb_get_window_attributes_reply_t> GetAttributes(xcb_window_t aID) {
  xcb_connection_t* connection = GetX11Connection();
  xcb_generic_error_t* error = nullptr;
  auto attributes =
      KeepReply(xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, aID), &error));
  const auto ownedError = KeepReply(error);
  return attributes;
}

/// Asks to be told of a window's end, in addition to what this connection is told of it already. The number of the
/// request: what is told later bears at least that.
std::uint32_t WatchForEnd(xcb_window_t aID) {
  xcb_connection_t* connection = GetX11Connection();
  const auto attributes = GetAttributes(aID);
  const std::uint32_t mask = (attributes ? attributes->your_event_mask : 0U) | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  const xcb_void_cookie_t cookie = xcb_change_window_attributes_checked(connection, aID, XCB_CW_EVENT_MASK, &mask);
  const auto error = KeepReply(xcb_request_check(connection, cookie));
  return cookie.sequence;
}

KrResult Fail(WId aID, const std::string& aReason) {
  return {KrResult::Code::Failed,
          KrString("The window could not be created inside or above window " + std::to_string(aID) + ": " + aReason)};
}

/// Hands the ends and moves of native windows to the foreign windows that wait for them, and keeps quiet about what the
/// toolkit still asks of our windows that ended with theirs. One for the process, as a filter must not go while it is
/// called.
class NativeEnds : public QAbstractNativeEventFilter {
public:
  static NativeEnds& Get() {
    static NativeEnds* const ends = new NativeEnds;
    return *ends;
  }

  void Add(ForeignWindow& aWindow) {
    // An application object made anew knows no filter of the one before.
    qApp->installNativeEventFilter(this);
    mWaiting.push_back(&aWindow);
  }
  void Remove(ForeignWindow& aWindow) { std::erase(mWaiting, &aWindow); }

  /// Errors about a window are expected from this request's on, until the toolkit's object for it has gone.
  void ExpectErrors(const QWindow& aWindow, xcb_window_t aID, std::uint32_t aFirst) {
    constexpr std::size_t kMostRemembered = 64;
    mExpected.push_back({aID, aFirst, std::nullopt});
    if (mExpected.size() > kMostRemembered) {
      mExpected.pop_front();
    }
    QObject::connect(&aWindow, &QObject::destroyed, [this, aID] { StopExpecting(aID); });
  }

  bool nativeEventFilter(const QByteArray& aType, void* aMessage, qintptr*) override {
    constexpr unsigned kSentFlag = 0x80;
    if (aType != "xcb_generic_event_t") {
      return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(aMessage);
    const unsigned type = event->response_type & ~kSentFlag;
    if (type == XCB_DESTROY_NOTIFY) {
      const xcb_window_t id = static_cast<const xcb_destroy_notify_event_t*>(aMessage)->window;
      TellEach([&](ForeignWindow& aWindow) { aWindow.OnNativeEnd(id, event->full_sequence); });
    } else if (type == XCB_CONFIGURE_NOTIFY) {
      const xcb_window_t id = static_cast<const xcb_configure_notify_event_t*>(aMessage)->window;
      TellEach([&](ForeignWindow& aWindow) { aWindow.OnNativeMove(id); });
    }
    return type == 0 && IsExpected(*static_cast<const xcb_generic_error_t*>(aMessage));
  }

private:
  template <typename Call>
  void TellEach(Call aCall) {
    // A copy, as each may end openings and with them others of the list.
    const std::vector<ForeignWindow*> waiting = mWaiting;
    for (ForeignWindow* window : waiting) {
      if (std::find(mWaiting.begin(), mWaiting.end(), window) != mWaiting.end()) {
        aCall(*window);
      }
    }
  }

  /// Ids are used again: whatever is asked from now on is about another window.
  void StopExpecting(xcb_window_t aID) {
    xcb_connection_t* connection = GetX11Connection();
    for (ExpectedErrors& errors : mExpected) {
      if (errors.id == aID && !errors.end && connection != nullptr) {
        errors.end = xcb_no_operation(connection).sequence;
      }
    }
  }

  bool IsExpected(const xcb_generic_error_t& aError) const {
    return std::any_of(mExpected.begin(), mExpected.end(), [&aError](const ExpectedErrors& aErrors) {
      return aErrors.id == aError.resource_id && !IsBefore(aError.full_sequence, aErrors.first) &&
             (!aErrors.end || IsBefore(aError.full_sequence, *aErrors.end));
    });
  }

  struct ExpectedErrors {
    xcb_window_t id;
    std::uint32_t first;
    std::optional<std::uint32_t> end; ///< The first request that is not the ended window's any more.
  };

  std::vector<ForeignWindow*> mWaiting;
  std::deque<ExpectedErrors> mExpected;
};

} // namespace

KrResult ForeignWindow::Find(WId aID, std::unique_ptr<ForeignWindow>& aWindow) {
  if (aID == 0) {
    return {KrResult::Code::Failed, "The window could not be created: it needs a parent window, and none was given."};
  }
  if (GetX11Connection() == nullptr) {
    return Fail(aID,
                "that is no Qt widget, and windows of other toolkits can only be used on X11. Give the winId() of a "
                "widget.");
  }
  if (aID > UINT32_MAX || !Exists(static_cast<xcb_window_t>(aID))) {
    return Fail(aID, "there is no such window on this display. Give the id of a window that exists.");
  }
  aWindow.reset(new ForeignWindow(aID));
  return {};
}

ForeignWindow::ForeignWindow(WId aID) : mNativeID(static_cast<std::uint32_t>(aID)), mWrapper(QWindow::fromWinId(aID)) {
  NativeEnds::Get().Add(*this);
  mFirstSequence = WatchForEnd(mNativeID);
}

ForeignWindow::~ForeignWindow() {
  Leave();
  NativeEnds::Get().Remove(*this);
}

void ForeignWindow::SetOnEnd(std::function<void()> aOnEnd) {
  mOnEnd = std::move(aOnEnd);
}

KrResult ForeignWindow::Embed(QWidget& aDialog) {
  // Once more, although it existed when it was found: its end before it was watched would never be reported.
  if (!Exists(mNativeID)) {
    return FailDestroyed();
  }
  mDialogID = static_cast<std::uint32_t>(aDialog.winId());
  mDialogWindow = aDialog.windowHandle();
  mDialogWindow->setParent(mWrapper.get());
  qApp->installEventFilter(this);
  return Exists(mNativeID) ? KrResult() : FailDestroyed();
}

KrResult ForeignWindow::Own(QWidget& aDialog) {
  aDialog.winId();
  mDialogWindow = aDialog.windowHandle();
  mDialogWindow->setTransientParent(mWrapper.get());
  return Exists(mNativeID) ? KrResult() : FailDestroyed();
}

QPoint ForeignWindow::FindOrigin() {
  LearnOrigin();
  const QScreen* screen = mDialogWindow == nullptr ? nullptr : mDialogWindow->screen();
  if (screen == nullptr) {
    return mOrigin;
  }
  // The server counts device pixels, from the screen's corner on.
  const QPoint corner = screen->geometry().topLeft();
  return corner + QPointF((mOrigin - corner) / screen->devicePixelRatio()).toPoint();
}

/// What was learnt last counts where the window has gone.
void ForeignWindow::LearnOrigin() {
  xcb_connection_t* connection = GetX11Connection();
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  xcb_generic_error_t* error = nullptr;
  const auto origin = KeepReply(xcb_translate_coordinates_reply(
      connection, xcb_translate_coordinates(connection, mNativeID, root, 0, 0), &error));
  const auto ownedError = KeepReply(error);
  if (origin) {
    mOrigin = {origin->dst_x, origin->dst_y};
  }
}

KrResult ForeignWindow::FailDestroyed() const {
  return Fail(mNativeID, "that window was destroyed meanwhile.");
}

/// At the server itself: the toolkit never asks it to give an embedded window the focus, so that keys would go on to
/// the foreign window.
void ForeignWindow::TakeKeys() {
  // The server refuses the focus to a window that cannot be seen.
  const auto attributes = GetAttributes(mDialogID);
  if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE) {
    xcb_connection_t* connection = GetX11Connection();
    const auto cookie = xcb_set_input_focus_checked(connection, XCB_INPUT_FOCUS_PARENT, mDialogID, XCB_CURRENT_TIME);
    const auto error = KeepReply(xcb_request_check(connection, cookie));
  }
}

void ForeignWindow::Leave() {
  if (QCoreApplication::instance() != nullptr) {
    qApp->removeEventFilter(this);
  }
  mOnEnd = nullptr;
  if (mDialogWindow == nullptr) {
    return;
  }
  if (mDialogID != 0) {
    mDialogWindow->setParent(nullptr);
  } else {
    mDialogWindow->setTransientParent(nullptr);
  }
  mDialogWindow = nullptr;
}

void ForeignWindow::OnNativeEnd(std::uint32_t aNativeID, std::uint32_t aSequence) {
  // Ids are used again: this may be the end of an older window, of which nobody has read yet.
  if (IsBefore(aSequence, mFirstSequence)) {
    return;
  }
  if (aNativeID != mNativeID && (mDialogID == 0 || aNativeID != mDialogID)) {
    return;
  }
  if (mDialogID != 0 && mDialogWindow) {
    // The server has destroyed our window, and its native children, with its parent.
    NativeEnds::Get().ExpectErrors(*mDialogWindow, mDialogID, aSequence);
    for (const QWindow* child : mDialogWindow->findChildren<QWindow*>()) {
      if (child->handle() != nullptr) {
        NativeEnds::Get().ExpectErrors(*child, static_cast<xcb_window_t>(child->winId()), aSequence);
      }
    }
  }
  if (const auto onEnd = std::exchange(mOnEnd, nullptr)) {
    onEnd();
  }
}

void ForeignWindow::OnNativeMove(std::uint32_t aNativeID) {
  if (aNativeID == mNativeID && mDialogID == 0) {
    LearnOrigin();
  }
}

bool ForeignWindow::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (mDialogID == 0 || mDialogWindow == nullptr || !aWatched->isWindowType()) {
    return false;
  }
  const auto* window = static_cast<const QWindow*>(aWatched);
  const bool isOurs = window == mDialogWindow || mDialogWindow->isAncestorOf(window);
  // The toolkit may believe that it still has the focus which the foreign window took.
  if (isOurs && aEvent->type() == QEvent::MouseButtonPress) {
    TakeKeys();
  }
  return false;
}

} // namespace krgui

#include "platform/foreignwindow.h"

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QWidget>
#include <QWindow>

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace krgui {

namespace {

template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

template <typename T>
Reply<T> Keep(T* aReply) {
  return {aReply, &std::free};
}

/// The toolkit's own connection; null when the platform is not X11.
xcb_connection_t* GetConnection() {
  const auto* platform = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return platform == nullptr ? nullptr : platform->connection();
}

bool Exists(xcb_window_t aID) {
  xcb_connection_t* connection = GetConnection();
  xcb_generic_error_t* error = nullptr;
  const auto geometry = Keep(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, aID), &error));
  const auto ownedError = Keep(error);
  return geometry != nullptr;
}

Reply<xcb_get_window_attributes_reply_t> GetAttributes(xcb_window_t aID) {
  xcb_connection_t* connection = GetConnection();
  xcb_generic_error_t* error = nullptr;
  auto attributes =
      Keep(xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, aID), &error));
  const auto ownedError = Keep(error);
  return attributes;
}

/// Asks to be told of a window's end, in addition to what this connection is told of it already. The number of the
/// request: what is told later bears at least that.
std::uint32_t WatchForEnd(xcb_window_t aID) {
  xcb_connection_t* connection = GetConnection();
  const auto attributes = GetAttributes(aID);
  const std::uint32_t mask = (attributes ? attributes->your_event_mask : 0U) | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  const xcb_void_cookie_t cookie = xcb_change_window_attributes_checked(connection, aID, XCB_CW_EVENT_MASK, &mask);
  const auto error = Keep(xcb_request_check(connection, cookie));
  return cookie.sequence;
}

KrResult Fail(WId aID, const std::string& aReason) {
  return {KrResult::Code::Failed,
          KrString("The window could not be created inside or above window " + std::to_string(aID) + ": " + aReason)};
}

/// Hands the end of native windows to the foreign windows that wait for it, and keeps quiet about what the toolkit
/// still asks of our windows that ended with theirs. One for the process, as a filter must not go while it is called.
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

  /// Errors about these windows are expected from now on.
  void ExpectErrors(xcb_window_t aID) {
    constexpr std::size_t kMostRemembered = 64;
    mEnded.push_back(aID);
    if (mEnded.size() > kMostRemembered) {
      mEnded.pop_front();
    }
  }

  bool nativeEventFilter(const QByteArray& aType, void* aMessage, qintptr*) override {
    constexpr unsigned kSentFlag = 0x80;
    if (aType != "xcb_generic_event_t") {
      return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(aMessage);
    const unsigned type = event->response_type & ~kSentFlag;
    if (type == XCB_DESTROY_NOTIFY) {
      Tell(static_cast<const xcb_destroy_notify_event_t*>(aMessage)->window, event->full_sequence);
    }
    return type == 0 && IsExpected(*static_cast<const xcb_generic_error_t*>(aMessage));
  }

private:
  void Tell(xcb_window_t aID, std::uint32_t aSequence) {
    // A copy, as each may end openings and with them others of the list.
    const std::vector<ForeignWindow*> waiting = mWaiting;
    for (ForeignWindow* window : waiting) {
      if (std::find(mWaiting.begin(), mWaiting.end(), window) != mWaiting.end()) {
        window->OnNativeEnd(aID, aSequence);
      }
    }
  }

  bool IsExpected(const xcb_generic_error_t& aError) const {
    return std::find(mEnded.begin(), mEnded.end(), aError.resource_id) != mEnded.end();
  }

  std::vector<ForeignWindow*> mWaiting;
  std::deque<xcb_window_t> mEnded;
};

} // namespace

KrResult ForeignWindow::Find(WId aID, std::unique_ptr<ForeignWindow>& aWindow) {
  if (aID == 0) {
    return {KrResult::Code::Failed, "The window could not be created: it needs a parent window, and none was given."};
  }
  if (GetConnection() == nullptr) {
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
  mDialogID = static_cast<std::uint32_t>(aDialog.winId());
  mDialogWindow = aDialog.windowHandle();
  mDialogWindow->setParent(mWrapper.get());
  qApp->installEventFilter(this);
  return Exists(mNativeID) ? KrResult() : Fail(mNativeID, "that window was destroyed meanwhile.");
}

void ForeignWindow::Own(QWidget& aDialog) {
  aDialog.winId();
  mDialogWindow = aDialog.windowHandle();
  mDialogWindow->setTransientParent(mWrapper.get());
}

/// At the server itself: the toolkit never asks it to give an embedded window the focus, so that keys would go on to
/// the foreign window.
void ForeignWindow::TakeKeys() {
  // The server refuses the focus to a window that cannot be seen.
  const auto attributes = GetAttributes(mDialogID);
  if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE) {
    xcb_connection_t* connection = GetConnection();
    const auto cookie = xcb_set_input_focus_checked(connection, XCB_INPUT_FOCUS_PARENT, mDialogID, XCB_CURRENT_TIME);
    const auto error = Keep(xcb_request_check(connection, cookie));
  }
}

void ForeignWindow::Leave() {
  qApp->removeEventFilter(this);
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
  if (static_cast<std::int32_t>(aSequence - mFirstSequence) < 0) {
    return;
  }
  if (aNativeID != mNativeID && (mDialogID == 0 || aNativeID != mDialogID)) {
    return;
  }
  if (mDialogID != 0) {
    // The server has destroyed our window, and its native children, with its parent.
    NativeEnds::Get().ExpectErrors(mDialogID);
    for (const QWindow* child : mDialogWindow ? mDialogWindow->findChildren<QWindow*>() : QList<QWindow*>()) {
      if (child->handle() != nullptr) {
        NativeEnds::Get().ExpectErrors(static_cast<xcb_window_t>(child->winId()));
      }
    }
  }
  if (const auto onEnd = std::exchange(mOnEnd, nullptr)) {
    onEnd();
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

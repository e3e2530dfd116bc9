#pragma once
// The base of every window that the library offers: showing, embedding, closing, position and title.
// What a window shows is left to the classes derived from it.

#include "krbase/krresult.h"

#include <qwindowdefs.h>

#include <memory>

/// A native window of any toolkit: on X11 a window id.
using HWND = WId;
/// A control id, as child windows are given one.
using UINT = unsigned int;

namespace krgui {
class Wnd;
}

/// A window of the library. The object lives independently of the window on the screen: that comes with Create,
/// ShowModal or ShowModeless, goes with Close, the user's closing or its parent's end, and can be shown again in any of
/// these ways.
///
/// Thread: the user-interface thread alone.
/// Ownership: the application owns the object; a window still open when it is destroyed is closed.
///
///     KrDisplayWnd window;
///     window.SetTitle("Camera 1");
///     window.SetPosition(100, 100, 800, 600);
///     KrResult result = window.ShowModeless(0);
class KR_EXPORT KrWnd {
public:
  KrWnd(const KrWnd&) = delete;
  KrWnd& operator=(const KrWnd&) = delete;

  /// Creates the window as a child of a native window of any toolkit. Windows with a form for this, the display and the
  /// browser, lie inside the parent without a frame. The others keep their caption and frame: windows owned by the
  /// parent, which end with it, and which OK, Cancel and the close box do not close. aID is accepted and not used.
  /// WrongState, without a description, when the window is open, Failed when there is no such parent or no display.
  KrResult Create(HWND aParent, UINT aID);
  /// Embeds the window, whichever it is, without a frame as a child of a Qt widget, without making that native: the way
  /// into Qt layouts, with GetWidget(). WrongState when the window is open, Failed for null.
  KrResult CreateIn(QWidget* aParent);
  /// Runs the window as a modal dialog and returns when it is dismissed: OK when it was closed by the application or
  /// accepted, Cancelled when the user cancelled it, WrongState when it is open already, Failed, with a description,
  /// when there is no display to show it on. OK also when this object was deleted meanwhile; then nothing of it may be
  /// used. aParent is accepted and not used.
  KrResult ShowModal(HWND aParent);
  /// Opens the window as a modeless popup, owned by a native window of any toolkit or by none (0), and returns at once.
  /// WrongState when it is open, Failed when there is no such owner or, with a description, no display.
  KrResult ShowModeless(HWND aParent);
  /// Closes the window; a modal one returns OK from ShowModal. WrongState, without a description, when it is not
  /// open.
  KrResult Close();
  /// Handles this window's pending messages and returns when there are no more, so that it stays alive while the
  /// application is busy on the user-interface thread or runs no loop of its own. TimeLimitExceeded when there were
  /// still some after one second, WrongState when the window is not open.
  KrResult DoEvents();

  /// The native window; 0 when the window is not open. Of a child in a Qt widget it makes the widgets around it native:
  /// ask GetWidget() there.
  HWND GetHandle() const;
  /// The window as a Qt widget, for layouts; null when it is not open. Belongs to this object and ends with the
  /// opening.
  QWidget* GetWidget() const;

  /// The position in pixels: of an open window as it is now, of a closed one as it was remembered or set, zeros when
  /// neither was. x and y are those of the window's frame on the screen, but for a child in its parent's client
  /// coordinates; width and height are the client area's.
  void GetPosition(int& aX, int& aY, int& aWidth, int& aHeight) const;
  /// Sets the position, at once when the window is open, otherwise for its next opening. Width and height are raised or
  /// cut to the window's limits.
  void SetPosition(int aX, int aY, int aWidth, int aHeight);
  /// The title as it was set; empty until then.
  KrString GetTitle() const;
  /// Sets the title, which replaces the window's own caption from its opening on, even when it is empty. On X11 the
  /// window manager gets exactly this; elsewhere the toolkit may add the application's name.
  void SetTitle(const KrString& aTitle);

protected:
  KrWnd();
  virtual ~KrWnd();

  /// Closes what is open and deletes the implementation. Every derived destructor calls it, so that whatever happens on
  /// the way still finds the derived object whole.
  void DeleteWnd();

  std::unique_ptr<krgui::Wnd> mWnd; ///< What the window is made of; a derived class makes it.
};

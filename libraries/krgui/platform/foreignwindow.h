#pragma once
// A native window of another toolkit, or of another process, as the parent or owner of one opening's dialog. It knows
// what the toolkit does not: whether the id is a window at all, when that window ends, and that a child there needs the
// keys.

#include "krbase/krresult.h"

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <qwindowdefs.h>

#include <cstdint>
#include <functional>
#include <memory>

class QWidget;
class QWindow;

namespace krgui {

/// Lives as long as the opening.
///
/// Thread: user interface. Ownership: the foreign window stays its maker's; our dialog leaves it when this object ends.
class ForeignWindow : public QObject {
  Q_OBJECT

public:
  /// Failed, with a description, when there is no such window or the platform has no foreign windows.
  static KrResult Find(WId aID, std::unique_ptr<ForeignWindow>& aWindow);
  ~ForeignWindow() override;

  /// Called when the foreign window has been destroyed; may end this object's use, which is then deleted later.
  void SetOnEnd(std::function<void()> aOnEnd);
  /// Puts a dialog that is not shown yet inside. Failed when the foreign window went meanwhile.
  KrResult Embed(QWidget& aDialog);
  /// Makes the foreign window the owner of a dialog that is not shown yet. Failed when it went meanwhile.
  KrResult Own(QWidget& aDialog);
  /// Where the client area of the foreign window lies on the screen, in device-independent pixels; where it was last,
  /// when it has gone.
  QPoint FindOrigin();
  /// Gives an embedded, visible dialog the keyboard.
  void TakeKeys();
  /// The dialog leaves; called before it or this object is deleted.
  void Leave();
  /// A native window's end, as the window system reports it with the number of the last request before it.
  void OnNativeEnd(std::uint32_t aNativeID, std::uint32_t aSequence);
  /// A native window was moved or resized.
  void OnNativeMove(std::uint32_t aNativeID);

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  explicit ForeignWindow(WId aID);
  void LearnOrigin();
  KrResult FailDestroyed() const;

  const std::uint32_t mNativeID;
  std::uint32_t mFirstSequence = 0;
  std::unique_ptr<QWindow> mWrapper;
  QPointer<QWindow> mDialogWindow;
  std::uint32_t mDialogID = 0; ///< 0 unless the dialog is embedded.
  QPoint mOrigin;              ///< On the screen, in device pixels.
  std::function<void()> mOnEnd;
};

} // namespace krgui

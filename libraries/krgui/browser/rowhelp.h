#pragma once
// Shows by keyboard what the tooltip of a row tells the pointer. What it says is left to logic/browser/gridtools.h, of
// which row to the grid.

#include "browser/windowkeys.h"

#include <QObject>
#include <QPointer>

#include <functional>

class QPoint;
class QString;
class QWidget;

namespace krgui {

/// Ctrl+F1, as desktops show tooltips, and Shift+F1, as programs help with a control, in the grid or in its open
/// editor. The text stays until the key is pressed again, another one is, or the focus goes; Escape does nothing else
/// then.
///
/// Thread: user interface. Ownership: the grid's.
class RowHelp final : public QObject {
public:
  /// aAsk is called when the user asks for help.
  RowHelp(QWidget& aGrid, std::function<void()> aAsk);

  /// Shows a text as it is at a point of the screen; nothing for an empty one.
  void Show(const QString& aText, const QPoint& aPoint, QWidget& aOwner);

  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  void Ask();
  void Hide();
  bool IsShown() const;

  const std::function<void()> mAsk;
  WindowKeys mKeys;
  QPointer<QWidget> mWatched; ///< Who has the focus while the text is shown; null while it is not.
};

} // namespace krgui

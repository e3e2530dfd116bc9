#pragma once
// The browser's error indicator: shows whether any feature is in error, and which in its tooltip. What counts and what
// it says is left to logic/browser/errorlist.h; its window asks it to look again once a second.

#include "logic/browser/errorlist.h"

#include <QAbstractButton>

#include <optional>

namespace krgui {

/// The tooltip comes at a click and by keyboard too; the list is the accessible description.
///
/// Thread: user interface. Ownership: a widget, which belongs to its parent; borrows the features of its source.
class ErrorButton : public QAbstractButton {
public:
  explicit ErrorButton(QWidget* aParent);

  /// Features to look at, at once; nothing takes them away. Must be taken away before they end.
  void SetSource(std::optional<ErrorSource> aSource);
  /// Looks at the features; repaints only when the state has changed.
  void LookAgain();
  bool ShowsErrors() const { return mShowsErrors; }
  /// The lines of the tooltip, parted by "\r\n"; empty without errors.
  KrString GetErrors() const;

  QSize sizeHint() const override;

protected:
  bool event(QEvent* aEvent) override;
  void paintEvent(QPaintEvent* aEvent) override;

private:
  void ShowToolTip(const QPoint& aGlobal);

  std::optional<ErrorSource> mSource;
  bool mShowsErrors = false;
};

} // namespace krgui

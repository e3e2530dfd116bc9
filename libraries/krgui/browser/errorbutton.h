#pragma once
// The browser's error indicator: shows whether any feature is in error, and which in its tooltip. What counts and what
// it says is left to logic/browser/errorlist.h; its window asks it to look again once a second.

#include "logic/browser/errorlist.h"

#include <QAbstractButton>

#include <optional>

namespace krgui {

/// Thread: user interface. Ownership: a widget, which belongs to its parent; borrows the features of its source.
class ErrorButton : public QAbstractButton {
public:
  explicit ErrorButton(QWidget* aParent);

  /// Features to look at; nothing takes them away. Must be taken away before they end.
  void SetSource(std::optional<ErrorSource> aSource);
  /// Looks at the features; repaints only when the state has changed.
  void LookAgain();
  bool ShowsErrors() const { return mShowsErrors; }

protected:
  bool event(QEvent* aEvent) override;
  void paintEvent(QPaintEvent* aEvent) override;

private:
  std::optional<ErrorSource> mSource;
  bool mShowsErrors = false;
};

} // namespace krgui

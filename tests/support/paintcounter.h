#pragma once
// Counts how often a widget is painted: what tests of "repaints only when" look at.

#include <QEvent>
#include <QWidget>

/// Ends with its widget.
class PaintCounter : public QObject {
public:
  explicit PaintCounter(QWidget& aWidget) : QObject(&aWidget) { aWidget.installEventFilter(this); }

  int mCount = 0;

private:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override {
    mCount += aEvent->type() == QEvent::Paint ? 1 : 0;
    return QObject::eventFilter(aWatched, aEvent);
  }
};

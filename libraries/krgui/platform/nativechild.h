#pragma once
// Keeps a widget with a native window where it belongs while the widgets around it have none: the toolkit moves,
// clips and hands over native windows with native parents alone. Which widgets need a native window is left to others.

#include <QObject>
#include <QPointer>

#include <vector>

class QWidget;

namespace krgui {

/// Follows one widget: its native window moves with its ancestors and shows only what lies inside them.
///
/// Thread: user interface. Ownership: belongs to the widget.
class NativeChild : public QObject {
public:
  explicit NativeChild(QWidget& aWidget);

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  void Watch();
  void Follow();
  void RaiseThoseAbove();
  void Clip();

  QWidget& mWidget;
  std::vector<QPointer<QWidget>> mWatched; ///< The widget and its ancestors up to the first native one.
};

} // namespace krgui

#pragma once
// A label of one line that is never cut in the middle of a character: what has no room gives way to an ellipsis, and
// the tooltip tells the whole text.

#include <QLabel>

namespace krgui {

/// Its text is plain; the letter of a shortcut is marked where it has a buddy. Thread: user interface. Ownership:
/// belongs to its parent widget.
class ElidedLabel : public QLabel {
public:
  explicit ElidedLabel(QWidget* aParent);

  QSize minimumSizeHint() const override;

protected:
  bool event(QEvent* aEvent) override;
  void paintEvent(QPaintEvent* aEvent) override;

private:
  int GetTextFlags() const;
  QString GetShownText() const;
};

} // namespace krgui

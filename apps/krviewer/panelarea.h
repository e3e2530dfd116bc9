#pragma once
// A column of a graph and what belongs to it, which is scrolled rather than squeezed where a panel is small.

#include <QScrollArea>

class QVBoxLayout;

namespace krviewer {

/// Thread: user interface. Ownership: fills the panel that it is made for, and belongs to it.
class PanelArea : public QScrollArea {
  Q_OBJECT

public:
  explicit PanelArea(QWidget& aPanel);

  /// Where widgets are added, from the top downwards; what is left of the height goes to those that stretch.
  QVBoxLayout& GetColumn() { return *mColumn; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

private:
  QVBoxLayout* const mColumn;
};

} // namespace krviewer

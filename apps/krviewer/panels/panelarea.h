#pragma once
// Where a panel has its controls, its graph and the numbers to it: one below the other, or the numbers beside the graph
// where there is width rather than height. Scrolled rather than squeezed where a panel is small.

#include <QScrollArea>

class QBoxLayout;
class QVBoxLayout;

namespace krviewer {

/// Thread: user interface. Ownership: fills the panel that it is made for, and belongs to it; so does what is added.
class PanelArea : public QScrollArea {
  Q_OBJECT

public:
  PanelArea(QWidget& aPanel, QWidget* aControls, QWidget* aGraph);

  /// Adds a widget below the graph, or beside it.
  void AddNumbers(QWidget* aNumbers);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

protected:
  void resizeEvent(QResizeEvent* aEvent) override;

private:
  bool IsFlat() const;

  QBoxLayout* const mBoth; ///< Of the graph and the numbers.
  QVBoxLayout* const mNumbers;
};

} // namespace krviewer

#include "panelarea.h"

#include <QVBoxLayout>

namespace krviewer {

PanelArea::PanelArea(QWidget& aPanel) : mColumn(new QVBoxLayout) {
  auto* const column = new QWidget;
  column->setLayout(mColumn);
  setWidget(column);
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus); // What is in it has the focus.
  auto* const layout = new QVBoxLayout(&aPanel);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(this);
}

QSize PanelArea::sizeHint() const {
  return widget()->sizeHint();
}

QSize PanelArea::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * 16, fontMetrics().height() * 6};
}

} // namespace krviewer

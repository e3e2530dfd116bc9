#include "panels/panelarea.h"

#include <QResizeEvent>
#include <QVBoxLayout>

namespace krviewer {

namespace {

// In characters and lines of text.
constexpr int kFlatWidth = 80;
constexpr int kFlatHeight = 24;
constexpr int kLeastWidth = 16;
constexpr int kLeastHeight = 8;

} // namespace

PanelArea::PanelArea(QWidget& aPanel, QWidget* aControls, QWidget* aGraph)
    : mBoth(new QBoxLayout(QBoxLayout::TopToBottom)), mNumbers(new QVBoxLayout) {
  mBoth->addWidget(aGraph, 1);
  mBoth->addLayout(mNumbers);
  auto* const content = new QWidget;
  auto* const column = new QVBoxLayout(content);
  column->addWidget(aControls);
  column->addLayout(mBoth, 1);
  setWidget(content);
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus); // What is in it has the focus.
  auto* const layout = new QVBoxLayout(&aPanel);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(this);
}

void PanelArea::AddNumbers(QWidget* aNumbers) {
  mNumbers->addWidget(aNumbers);
}

bool PanelArea::IsFlat() const {
  return width() >= kFlatWidth * fontMetrics().averageCharWidth() && height() < kFlatHeight * fontMetrics().height();
}

void PanelArea::resizeEvent(QResizeEvent* aEvent) {
  const auto direction = IsFlat() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
  if (mBoth->direction() != direction) {
    mBoth->setDirection(direction);
    mNumbers->setAlignment(IsFlat() ? Qt::AlignTop : Qt::Alignment());
  }
  QScrollArea::resizeEvent(aEvent);
}

QSize PanelArea::sizeHint() const {
  return widget()->sizeHint();
}

QSize PanelArea::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * kLeastWidth, fontMetrics().height() * kLeastHeight};
}

} // namespace krviewer

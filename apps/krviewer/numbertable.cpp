#include "numbertable.h"

#include "graphcolours.h"

#include <QHeaderView>
#include <QResizeEvent>
#include <QScrollBar>

namespace krviewer {

NumberTable::NumberTable(const QStringList& aColumnNames) : QTableWidget(0, static_cast<int>(aColumnNames.size())) {
  setHorizontalHeaderLabels(aColumnNames);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  // Tab leads on to the next control rather than through the cells.
  setTabKeyNavigation(false);
  setCornerButtonEnabled(false);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  verticalHeader()->setHighlightSections(false);
  verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
}

void NumberTable::SetRows(int aCount) {
  if (rowCount() == aCount)
    return;
  setRowCount(aCount);
  FitHeight();
}

void NumberTable::SetRowName(int aRow, const QString& aName) {
  if (!verticalHeaderItem(aRow))
    setVerticalHeaderItem(aRow, new QTableWidgetItem);
  if (verticalHeaderItem(aRow)->text() != aName)
    verticalHeaderItem(aRow)->setText(aName);
}

void NumberTable::SetNumber(int aRow, int aColumn, const QString& aText, Emphasis aEmphasis) {
  if (!item(aRow, aColumn)) {
    setItem(aRow, aColumn, new QTableWidgetItem);
    item(aRow, aColumn)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
  }
  const bool isWarning = aEmphasis == Emphasis::Warning;
  item(aRow, aColumn)->setText(aText);
  item(aRow, aColumn)->setForeground(isWarning ? GetWarningColour(palette()) : palette().color(QPalette::Text));
}

QSize NumberTable::sizeHint() const {
  const int frame = 2 * frameWidth();
  const bool hasBar = horizontalHeader()->length() + verticalHeader()->width() + frame > width();
  const int bar = hasBar ? horizontalScrollBar()->sizeHint().height() : 0;
  return {fontMetrics().averageCharWidth() * 40,
          horizontalHeader()->sizeHint().height() + verticalHeader()->length() + frame + bar};
}

QSize NumberTable::minimumSizeHint() const {
  const int rows = rowCount() > 0 ? verticalHeader()->sectionSize(0) : 0;
  return {fontMetrics().averageCharWidth() * 8, horizontalHeader()->sizeHint().height() + rows + 2 * frameWidth()};
}

void NumberTable::resizeEvent(QResizeEvent* aEvent) {
  QTableWidget::resizeEvent(aEvent);
  if (aEvent->size().width() != aEvent->oldSize().width())
    FitHeight();
}

void NumberTable::FitHeight() {
  setMaximumHeight(sizeHint().height());
  updateGeometry();
}

} // namespace krviewer

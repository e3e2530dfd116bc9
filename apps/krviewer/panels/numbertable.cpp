#include "panels/numbertable.h"

#include "panels/graphcolours.h"

#include <QEvent>
#include <QHeaderView>
#include <QPainter>
#include <QPixmap>
#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>

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
  horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  for (int column = 0; column < columnCount(); ++column)
    horizontalHeader()->resizeSection(column, horizontalHeader()->sectionSizeHint(column));
  verticalHeader()->setHighlightSections(false);
  verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
}

void NumberTable::SetRows(int aCount) {
  if (rowCount() == aCount)
    return;
  setRowCount(aCount);
  FitHeight();
}

void NumberTable::SetRowName(int aRow, const QString& aName, const QColor& aColour) {
  if (!verticalHeaderItem(aRow))
    setVerticalHeaderItem(aRow, new QTableWidgetItem);
  QTableWidgetItem& name = *verticalHeaderItem(aRow);
  if (name.text() == aName && name.data(Qt::UserRole).value<QColor>() == aColour)
    return;
  const double ratio = devicePixelRatioF();
  const int side = fontMetrics().ascent();
  QPixmap patch(QSize(side, side) * ratio);
  patch.setDevicePixelRatio(ratio);
  patch.fill(aColour);
  name.setText(aName);
  name.setIcon(patch);
  name.setData(Qt::UserRole, aColour);
  FitHeight();
}

void NumberTable::SetNumber(int aRow, int aColumn, const QString& aText, Emphasis aEmphasis) {
  if (!item(aRow, aColumn)) {
    setItem(aRow, aColumn, new QTableWidgetItem);
    item(aRow, aColumn)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
  }
  const bool isWarning = aEmphasis == Emphasis::Warning;
  item(aRow, aColumn)->setText(aText);
  KeepRoom(aColumn);
  item(aRow, aColumn)->setForeground(isWarning ? GetWarningColour(palette()) : palette().color(QPalette::Text));
}

QSize NumberTable::sizeHint() const {
  const int frame = 2 * frameWidth();
  const bool hasBar = horizontalHeader()->length() + verticalHeader()->width() + frame > width();
  const int bar = hasBar ? horizontalScrollBar()->sizeHint().height() : 0;
  return {horizontalHeader()->length() + verticalHeader()->sizeHint().width() + frame,
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

void NumberTable::KeepRoom(int aColumn) {
  QHeaderView& header = *horizontalHeader();
  const int needed = std::max(sizeHintForColumn(aColumn), header.sectionSizeHint(aColumn));
  if (needed <= header.sectionSize(aColumn))
    return;
  header.resizeSection(aColumn, needed);
  FitHeight(); // A wider table wants another place, too.
}

void NumberTable::changeEvent(QEvent* aEvent) {
  QTableWidget::changeEvent(aEvent);
  if (aEvent->type() != QEvent::FontChange)
    return;
  for (int column = 0; column < columnCount(); ++column) {
    horizontalHeader()->resizeSection(column, horizontalHeader()->minimumSectionSize());
    KeepRoom(column);
  }
  FitHeight();
}

/// Styles show the focus in a cell's colour alone, which is hardly seen on a dark screen.
bool NumberTable::event(QEvent* aEvent) {
  const bool isTaken = QTableWidget::event(aEvent);
  if (aEvent->type() == QEvent::FocusIn || aEvent->type() == QEvent::FocusOut)
    update();
  if (aEvent->type() == QEvent::Paint && hasFocus()) {
    QPainter painter(this);
    painter.setPen(
        QPen(palette().color(QPalette::Highlight), frameWidth(), Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    const double half = frameWidth() / 2.0;
    painter.drawRect(QRectF(rect()).adjusted(half, half, -half, -half));
  }
  return isTaken;
}

void NumberTable::FitHeight() {
  setMaximumHeight(sizeHint().height());
  updateGeometry();
}

} // namespace krviewer

#include "browser/settingstable.h"

#include "krbase/utf8cut.h"
#include "platform/plainline.h"

#include <QBrush>
#include <QClipboard>
#include <QColor>
#include <QGuiApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QPalette>

#include <algorithm>
#include <string_view>

namespace krgui {

namespace {

/// More of a text is not shown in a cell, nor in a tooltip.
constexpr std::size_t kMostBytesShown = 600;
/// A word without blanks is broken behind as many letters in a tooltip, which would be wider than the screen.
constexpr int kMostLettersOfWord = 60;

QString ToShown(const KrString& aText) {
  const std::string_view text = aText.ToUtf8();
  if (text.size() <= kMostBytesShown)
    return ToPlainLine(aText);
  return ToPlainLine(KrString(krbase::CutUtf8(text, kMostBytesShown))) + QChar(0x2026);
}

QString BreakWords(const QString& aText) {
  constexpr QChar kBreakHere(0x200B);
  QString text;
  int letters = 0;
  for (const QChar letter : aText) {
    letters = letter.isSpace() ? 0 : letters + 1;
    text += letter;
    if (letters % kMostLettersOfWord == 0 && letters > 0 && !letter.isHighSurrogate())
      text += kBreakHere;
  }
  return text;
}

/// Readable in any theme, which what is disabled is not.
QColor MakeFaint(const QPalette& aPalette) {
  const QColor text = aPalette.color(QPalette::Text);
  const QColor base = aPalette.color(QPalette::Base);
  const auto blend = [](int aText, int aBase) { return (3 * aText + 2 * aBase) / 5; };
  return {blend(text.red(), base.red()), blend(text.green(), base.green()), blend(text.blue(), base.blue())};
}

QString ToCopied(const KrString& aText) {
  return QString::fromStdU16String(aText.ToWide());
}

} // namespace

void SettingsModel::SetRows(SettingsRows aRows) {
  beginResetModel();
  mRows = std::move(aRows);
  endResetModel();
}

int SettingsModel::rowCount(const QModelIndex& aParent) const {
  return aParent.isValid() ? 0 : mRows.count;
}

int SettingsModel::columnCount(const QModelIndex& aParent) const {
  return aParent.isValid() ? 0 : static_cast<int>(mRows.headings.size());
}

QVariant SettingsModel::data(const QModelIndex& aIndex, int aRole) const {
  if (!aIndex.isValid())
    return {};
  if (aRole == Qt::DisplayRole)
    return ToShown(mRows.getText(aIndex.row(), aIndex.column()));
  if (aRole == Qt::ToolTipRole) {
    const QString text = ToShown(mRows.getText(aIndex.row(), aIndex.column()));
    return text.isEmpty() ? QVariant() : QVariant(ToPlainToolTip(BreakWords(text)));
  }
  if (aRole == Qt::ForegroundRole && mRows.isFaint && mRows.isFaint(aIndex.row()))
    return QBrush(MakeFaint(QGuiApplication::palette()));
  return {};
}

QVariant SettingsModel::headerData(int aSection, Qt::Orientation aOrientation, int aRole) const {
  if (aRole != Qt::DisplayRole || aOrientation != Qt::Horizontal)
    return QAbstractTableModel::headerData(aSection, aOrientation, aRole);
  return mRows.headings.value(aSection);
}

SettingsTable::SettingsTable(const QString& aName, std::vector<int> aShares, QWidget* aParent)
    : QTreeView(aParent), mModel(new SettingsModel(this)), mShares(std::move(aShares)) {
  setAccessibleName(aName);
  setModel(mModel);
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setUniformRowHeights(true);
  setAlternatingRowColors(true);
  setAllColumnsShowFocus(true);
  setSelectionMode(ExtendedSelection);
  setTextElideMode(Qt::ElideRight);
  setTabKeyNavigation(false);
  setVerticalScrollMode(ScrollPerPixel);
  header()->setStretchLastSection(true);
  header()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void SettingsTable::SetRows(SettingsRows aRows) {
  mModel->SetRows(std::move(aRows));
  if (mModel->rowCount() > 0)
    setCurrentIndex(mModel->index(0, 0));
  clearSelection();
}

void SettingsTable::keyPressEvent(QKeyEvent* aEvent) {
  if (!aEvent->matches(QKeySequence::Copy))
    return QTreeView::keyPressEvent(aEvent);
  CopySelected();
  aEvent->accept();
}

void SettingsTable::resizeEvent(QResizeEvent* aEvent) {
  QTreeView::resizeEvent(aEvent);
  if (mIsShared || !isVisible())
    return;
  mIsShared = true;
  for (std::size_t i = 0; i + 1 < mShares.size(); ++i)
    setColumnWidth(static_cast<int>(i), viewport()->width() * mShares[i] / 100);
}

QString SettingsTable::DescribeCurrent() const {
  QStringList parts;
  const SettingsRows& rows = mModel->GetRows();
  for (int column = 0; currentIndex().isValid() && column < mModel->columnCount(); ++column) {
    const QString text = ToShown(rows.getText(currentIndex().row(), column));
    if (!text.isEmpty())
      parts.append(rows.headings.value(column) + QStringLiteral(": ") + text);
  }
  return parts.join(QLatin1Char('\n'));
}

void SettingsTable::currentChanged(const QModelIndex& aCurrent, const QModelIndex& aPrevious) {
  QTreeView::currentChanged(aCurrent, aPrevious);
  Q_EMIT CurrentChanged();
}

QString SettingsTable::FormatRow(int aRow) const {
  QStringList cells;
  for (int column = 0; column < mModel->columnCount(); ++column)
    cells.append(ToCopied(mModel->GetRows().getText(aRow, column)));
  return cells.join(QLatin1Char('\t'));
}

void SettingsTable::CopySelected() const {
  QModelIndexList indexes = selectionModel()->selectedRows();
  if (indexes.isEmpty() && currentIndex().isValid())
    indexes.append(currentIndex());
  std::sort(indexes.begin(), indexes.end());
  QStringList lines;
  for (const QModelIndex& index : indexes)
    lines.append(FormatRow(index.row()));
  if (!lines.isEmpty())
    QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

void SettingsTable::CopyAll() const {
  QStringList lines{mModel->GetRows().headings.join(QLatin1Char('\t'))};
  for (int row = 0; row < mModel->rowCount(); ++row)
    lines.append(FormatRow(row));
  QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

} // namespace krgui

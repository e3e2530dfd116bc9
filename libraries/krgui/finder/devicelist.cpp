#include "finder/devicelist.h"

#include "finder/cuttextdelegate.h"
#include "platform/plainline.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QPainter>
#include <QShortcut>
#include <QTreeWidget>

#include <algorithm>
#include <cmath>

namespace krgui {

namespace {

constexpr int kNameColumn = 0;
constexpr int kValueColumn = 1;
constexpr int kColourRole = Qt::UserRole;
constexpr int kRowSpace = 3;

QColor ToColour(RowColour aColour) {
  const auto value = static_cast<std::uint32_t>(aColour);
  return QColor(static_cast<int>(value & 0xFFU), static_cast<int>(value >> 8U & 0xFFU),
                static_cast<int>(value >> 16U & 0xFFU));
}

/// Between background and text, as far as themes set no more than those two.
QColor MixGridColour(const QPalette& aPalette) {
  const QColor base = aPalette.color(QPalette::Base);
  const QColor text = aPalette.color(QPalette::Text);
  const auto mix = [](int aMost, int aRest) { return (4 * aMost + aRest) / 5; };
  return {mix(base.red(), text.red()), mix(base.green(), text.green()), mix(base.blue(), text.blue())};
}

/// Writes values on their row's colour and draws the grid.
class RowDelegate : public CutTextDelegate {
public:
  using CutTextDelegate::CutTextDelegate;

  /// Room for the grid below the letters.
  QSize sizeHint(const QStyleOptionViewItem& aOption, const QModelIndex& aIndex) const override {
    return CutTextDelegate::sizeHint(aOption, aIndex) + QSize(0, kRowSpace);
  }

  void paint(QPainter* aPainter, const QStyleOptionViewItem& aOption, const QModelIndex& aIndex) const override {
    CutTextDelegate::paint(aPainter, aOption, aIndex);
    aPainter->setPen(MixGridColour(aOption.palette));
    aPainter->drawLine(aOption.rect.bottomLeft(), aOption.rect.bottomRight());
    aPainter->drawLine(aOption.rect.topRight(), aOption.rect.bottomRight());
  }

protected:
  void initStyleOption(QStyleOptionViewItem* aOption, const QModelIndex& aIndex) const override {
    CutTextDelegate::initStyleOption(aOption, aIndex);
    const QVariant data = aIndex.data(kColourRole);
    const RowColour colour = data.isValid() ? data.toInt() : kNoRowColour;
    if (aIndex.column() != kValueColumn || colour == kNoRowColour)
      return;
    aOption->backgroundBrush = ToColour(colour);
    // The text of a dark theme cannot be read on the light colours.
    QColor text = aOption->palette.color(QPalette::Text);
    if (IsWrittenInWhite(colour))
      text = Qt::white;
    else if (text.lightness() > 127)
      text = Qt::black;
    aOption->palette.setColor(QPalette::Text, text);
  }
};

/// True when the text was another one.
bool SyncText(QTreeWidgetItem& aItem, int aColumn, const QString& aText) {
  if (aItem.text(aColumn) == aText)
    return false;
  aItem.setText(aColumn, aText);
  return true;
}

} // namespace

/// Hears when a scroll bar comes or goes beside the rows.
class DeviceList::Watcher : public QObject {
public:
  explicit Watcher(DeviceList& aOwner) : mOwner(aOwner) {}

  bool eventFilter(QObject*, QEvent* aEvent) override {
    if (aEvent->type() == QEvent::Resize)
      mOwner.FitValues();
    return false;
  }

private:
  DeviceList& mOwner;
};

DeviceList::DeviceList(QTreeWidget& aWidget, int aWidth)
    : mWidget(&aWidget), mWatcher(std::make_unique<Watcher>(*this)) {
  aWidget.setRootIsDecorated(false);
  aWidget.setItemsExpandable(false);
  aWidget.setAllColumnsShowFocus(true);
  aWidget.setSelectionBehavior(QAbstractItemView::SelectRows);
  aWidget.setEditTriggers(QAbstractItemView::NoEditTriggers);
  aWidget.setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  aWidget.setAutoScroll(false);
  aWidget.setItemDelegate(new RowDelegate(&aWidget));
  aWidget.setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Value")});
  aWidget.header()->setStretchLastSection(false);
  aWidget.header()->setSectionsMovable(false);
  aWidget.header()->resizeSection(kNameColumn, static_cast<int>(std::lround(0.4 * aWidth)));
  aWidget.header()->resizeSection(kValueColumn, static_cast<int>(std::lround(0.6 * aWidth)));
  aWidget.clear();
  aWidget.viewport()->installEventFilter(mWatcher.get());
  auto* copy = new QShortcut(QKeySequence::Copy, &aWidget);
  copy->setContext(Qt::WidgetShortcut);
  QObject::connect(copy, &QShortcut::activated, mWatcher.get(), [this] { CopyRow(); });
}

DeviceList::~DeviceList() = default;

void DeviceList::Show(const std::vector<InfoRow>& aRows) {
  if (!mWidget)
    return;
  const int count = static_cast<int>(aRows.size());
  bool hasChanged = mWidget->topLevelItemCount() != count;
  for (int i = 0; i < count; ++i)
    hasChanged = ShowRow(i, aRows[static_cast<std::size_t>(i)]) || hasChanged;
  while (mWidget->topLevelItemCount() > count)
    delete mWidget->takeTopLevelItem(mWidget->topLevelItemCount() - 1);
  if (hasChanged)
    FitValues();
}

bool DeviceList::ShowRow(int aIndex, const InfoRow& aRow) {
  if (aIndex >= mWidget->topLevelItemCount())
    new QTreeWidgetItem(mWidget);
  QTreeWidgetItem& item = *mWidget->topLevelItem(aIndex);
  const bool isOtherName = SyncText(item, kNameColumn, ToPlainLine(aRow.caption));
  const bool isOtherValue = SyncText(item, kValueColumn, ToPlainLine(aRow.value));
  const QVariant data = item.data(kValueColumn, kColourRole);
  if (!data.isValid() || data.toInt() != aRow.colour)
    item.setData(kValueColumn, kColourRole, aRow.colour);
  return isOtherName || isOtherValue;
}

/// As wide as the longest value needs; at least what the names leave, so that the colours make one column.
void DeviceList::FitValues() {
  if (!mWidget || mWidget->topLevelItemCount() == 0)
    return;
  QHeaderView& header = *mWidget->header();
  const int needed = static_cast<QAbstractItemView*>(mWidget.data())->sizeHintForColumn(kValueColumn);
  const int left = mWidget->viewport()->width() - header.sectionSize(kNameColumn);
  const int width = std::max(needed, left);
  if (width != header.sectionSize(kValueColumn))
    header.resizeSection(kValueColumn, width);
}

void DeviceList::CopyRow() const {
  const QTreeWidgetItem* item = mWidget ? mWidget->currentItem() : nullptr;
  if (item)
    QGuiApplication::clipboard()->setText(item->text(kNameColumn) + QLatin1Char('\t') + item->text(kValueColumn));
}

} // namespace krgui

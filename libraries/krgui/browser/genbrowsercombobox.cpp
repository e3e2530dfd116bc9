#include "browser/genbrowsercombobox.h"

#include "logic/browser/choiceplacement.h"
#include "platform/ctooltiplistctrl.h"
#include "platform/plainline.h"
#include "platform/topixelrect.h"
#include "platform/toqstring.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QStyle>
#include <QtMath>

#include <algorithm>

namespace krgui {

namespace {

/// What the list's frame takes at both sides together.
constexpr int kFrameWidth = 4;

bool OpensList(const QKeyEvent& aEvent) {
  return aEvent.key() == Qt::Key_F4 || aEvent.key() == Qt::Key_Space ||
         (aEvent.key() == Qt::Key_Down && (aEvent.modifiers() & Qt::AltModifier) != 0);
}

QRect FindDesktop(const QRect& aComboBox, const QWidget& aFallback) {
  const QScreen* screen = QGuiApplication::screenAt(aComboBox.center());
  return (screen != nullptr ? screen : aFallback.screen())->availableGeometry();
}

} // namespace

GenBrowserComboBox::GenBrowserComboBox(QWidget* aParent) : TooltipComboBox(aParent) {
  // The cell says how large it is; else each showing would measure all items.
  setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
}

void GenBrowserComboBox::SetChoices(const Choices& aChoices) {
  QStringList texts;
  texts.reserve(static_cast<qsizetype>(aChoices.items.size()));
  for (const Choice& choice : aChoices.items) {
    texts.append(ToPlainLine(choice.text, kMostLettersOfAChoice));
  }
  clear();
  addItems(texts);
  for (std::size_t i = 0; i < aChoices.items.size(); ++i) {
    GetList().SetItemTooltip(static_cast<std::int32_t>(i), ToQString(aChoices.items[i].toolTip));
  }
  setCurrentIndex(aChoices.selected);
}

bool GenBrowserComboBox::IsListOpen() const {
  return GetList().isVisible();
}

void GenBrowserComboBox::showPopup() {
  CTooltipListCtrl& list = GetList();
  if (list.isVisible()) {
    hidePopup();
    return;
  }
  if (count() == 0) {
    return;
  }
  const QRect place(mapToGlobal(QPoint()), size());
  const PixelRect offered = OfferChoiceList(
      {ToPixelRect(place), ToPixelRect(FindDesktop(place, *this)), count(), std::max(list.PrepareItems(), 1),
       FindWidestItem(), style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &list), isRightToLeft()});
  list.ShowDropDown(QRect(offered.left, offered.top, offered.GetWidth(), offered.GetHeight()), place);
}

/// A key that is held opens no list: it may be the one that has just closed it.
void GenBrowserComboBox::keyPressEvent(QKeyEvent* aEvent) {
  if (!aEvent->isAutoRepeat() || !OpensList(*aEvent)) {
    TooltipComboBox::keyPressEvent(aEvent);
  }
}

int GenBrowserComboBox::FindWidestItem() const {
  // Letters need not be whole pixels wide; an item that lacks a part of one is cut.
  const QFontMetricsF metrics(font());
  double widest = 0;
  for (int i = 0; i < count(); ++i) {
    widest = std::max(widest, metrics.horizontalAdvance(itemText(i)));
  }
  const int textMargin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
  return qCeil(widest) + 2 * textMargin + kFrameWidth;
}

} // namespace krgui

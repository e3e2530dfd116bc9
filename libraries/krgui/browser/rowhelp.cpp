#include "browser/rowhelp.h"

#include "platform/plainline.h"

#include <QApplication>
#include <QKeyEvent>
#include <QToolTip>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace krgui {

namespace {

constexpr QKeyCombination kKeys[] = {Qt::CTRL | Qt::Key_F1, Qt::SHIFT | Qt::Key_F1};

bool IsModifier(int aKey) {
  constexpr std::array kModifiers = {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_AltGr, Qt::Key_Meta};
  return std::find(kModifiers.begin(), kModifiers.end(), aKey) != kModifiers.end();
}

} // namespace

RowHelp::RowHelp(QWidget& aGrid, std::function<void()> aAsk) : mAsk(std::move(aAsk)) {
  for (const QKeyCombination key : kKeys)
    mKeys.Add({&aGrid, key, [this] { Ask(); }});
}

void RowHelp::Ask() {
  if (IsShown())
    Hide();
  else
    mAsk();
}

void RowHelp::Show(const QString& aText, const QPoint& aPoint, QWidget& aOwner) {
  Hide();
  mWatched = QApplication::focusWidget();
  if (aText.isEmpty() || !mWatched)
    return;
  mWatched->installEventFilter(this);
  // Without an area, so that a pointer that rests elsewhere does not end it; nobody reads against the clock.
  QToolTip::showText(aPoint, ToPlainToolTip(aText), &aOwner, QRect(), std::numeric_limits<int>::max());
}

bool RowHelp::IsShown() const {
  return mWatched && QToolTip::isVisible();
}

void RowHelp::Hide() {
  if (QWidget* watched = std::exchange(mWatched, nullptr)) {
    watched->removeEventFilter(this);
    QToolTip::hideText();
  }
}

bool RowHelp::eventFilter(QObject*, QEvent* aEvent) {
  if (aEvent->type() != QEvent::KeyPress && aEvent->type() != QEvent::ShortcutOverride)
    return false;
  const int key = static_cast<const QKeyEvent*>(aEvent)->key();
  const bool isEscape = key == Qt::Key_Escape && IsShown();
  if (aEvent->type() == QEvent::ShortcutOverride) {
    // Else a shortcut of the window might take it.
    if (isEscape)
      aEvent->accept();
    return isEscape;
  }
  if (!IsModifier(key))
    Hide();
  return isEscape;
}

} // namespace krgui

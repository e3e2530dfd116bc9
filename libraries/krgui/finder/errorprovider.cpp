#include "finder/errorprovider.h"

#include "finder/finderpictures.h"
#include "platform/plainline.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <QWidget>

namespace krgui {

namespace {

constexpr int kExtent = 16;

} // namespace

ErrorProvider::ErrorProvider(QWidget& aControl) : QObject(&aControl), mControl(aControl) {
  aControl.installEventFilter(this);
}

void ErrorProvider::SetText(const QString& aText) {
  if (aText != mText && mControl.underMouse()) {
    // What it says is not so any more.
    QToolTip::hideText();
  }
  mText = aText;
  mControl.setAccessibleName(aText);
  // At once, as the values and what is said of them belong together; what is not on the screen is painted when it
  // comes.
  if (mControl.isVisible()) {
    mControl.repaint();
  }
}

std::optional<int> ErrorProvider::HitTest(const QPoint& aPoint) const {
  if (!mControl.rect().contains(aPoint)) {
    return std::nullopt;
  }
  return mText.isEmpty() ? kNoErrorTool : kErrorTool;
}

bool ErrorProvider::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (aWatched == &mControl && aEvent->type() == QEvent::Paint) {
    Paint();
    return true;
  }
  if (aWatched == &mControl && aEvent->type() == QEvent::ToolTip) {
    const auto* help = static_cast<const QHelpEvent*>(aEvent);
    ShowToolTip(help->pos(), help->globalPos());
    return true;
  }
  return QObject::eventFilter(aWatched, aEvent);
}

void ErrorProvider::Paint() {
  if (mText.isEmpty()) {
    return;
  }
  QPainter painter(&mControl);
  const QRect place(mControl.width() / 2 - kExtent / 2, mControl.height() / 2 - kExtent / 2, kExtent, kExtent);
  GetErrorPicture().paint(&painter, place);
}

void ErrorProvider::ShowToolTip(const QPoint& aPoint, const QPoint& aGlobal) {
  if (HitTest(aPoint) == kErrorTool) {
    QToolTip::showText(aGlobal, ToPlainToolTip(mText), &mControl, mControl.rect());
  } else {
    QToolTip::hideText();
  }
}

} // namespace krgui

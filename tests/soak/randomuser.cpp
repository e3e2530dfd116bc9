#include "randomuser.h"

#include "krgui/krdisplaywnd.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>
#include <QWidget>

RandomUser::RandomUser(KrDisplayWnd& aWindow, std::uint32_t aSeed) : mWindow(aWindow), mRandom(aSeed) {}

int RandomUser::Draw(int aFirst, int aLast) {
  return std::uniform_int_distribution<int>(aFirst, aLast)(mRandom);
}

void RandomUser::Step() {
  const int choice = Draw(0, 99);
  if (choice < 20)
    mWindow.SetPosition(Draw(0, 300), Draw(0, 200), Draw(30, kMostWidth), Draw(20, kMostHeight));
  else if (choice < 45)
    Zoom();
  else if (choice < 65)
    Scroll();
  else if (choice < 85)
    PressKeysAndTurnWheel();
  else if (choice < 97)
    ChangeLooks();
  else
    Reopen();
}

void RandomUser::Zoom() {
  switch (Draw(0, 4)) {
  case 0:
    return mWindow.Zoom1_1();
  case 1:
    return mWindow.ZoomFit();
  case 2:
    return mWindow.ZoomOut();
  default:
    return mWindow.ZoomIn();
  }
}

/// The bars as the user drags them, and their thumbs as an application sets them.
void RandomUser::Scroll() {
  int least = 0;
  int most = 0;
  mWindow.GetHScrollRange(least, most);
  // A camera may have changed the range meanwhile, so that the position may be refused.
  static_cast<void>(mWindow.SetHScrollPos(Draw(least, most)));
  mWindow.GetVScrollRange(least, most);
  static_cast<void>(mWindow.SetVScrollPos(Draw(least, most)));
  for (QScrollBar* bar : mWindow.GetWidget()->findChildren<QScrollBar*>())
    bar->triggerAction(Draw(0, 1) != 0 ? QAbstractSlider::SliderPageStepAdd : QAbstractSlider::SliderSingleStepSub);
}

void RandomUser::PressKeysAndTurnWheel() {
  auto* view = mWindow.GetWidget()->findChild<QWidget*>(QStringLiteral("display"));
  if (view == nullptr) {
    ++mFailures;
    return;
  }
  QKeyEvent key(QEvent::KeyPress, Draw(0, 1) != 0 ? Qt::Key_Plus : Qt::Key_Minus, Qt::NoModifier);
  QApplication::sendEvent(view, &key);
  const QPointF point(Draw(0, view->width()), Draw(0, view->height()));
  QWheelEvent wheel(point, view->mapToGlobal(point), QPoint(), QPoint(0, Draw(-240, 240)), Qt::NoButton, Qt::NoModifier,
                    Qt::NoScrollPhase, false);
  QApplication::sendEvent(view, &wheel);
}

void RandomUser::ChangeLooks() {
  const auto drawByte = [&] { return static_cast<unsigned char>(Draw(0, 255)); };
  mFailures += mWindow.SetBackgroundColor(drawByte(), drawByte(), drawByte()).IsOK() ? 0 : 1;
  mFailures += mWindow.SetTextOverlaySize(Draw(-40, 60)).IsOK() ? 0 : 1;
  mWindow.SetTextOverlayColor(drawByte(), drawByte(), drawByte());
  mWindow.SetTextOverlayOffsetX(static_cast<unsigned>(Draw(0, 200)));
  mWindow.SetTextOverlayOffsetY(static_cast<unsigned>(Draw(0, 200)));
  mWindow.SetCursorLineEnabled(Draw(0, 1) != 0);
  mWindow.GetCursorPixel();
}

void RandomUser::Reopen() {
  mFailures += mWindow.Close().IsOK() ? 0 : 1;
  mFailures += mWindow.ShowModeless(0).IsOK() ? 0 : 1;
}

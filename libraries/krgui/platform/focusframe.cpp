#include "platform/focusframe.h"

#include "platform/systemcolours.h"

#include <QPainter>
#include <QPen>

namespace krgui {

void DrawFocusFrame(QPainter& aPainter, const QRect& aButton, const QPalette& aPalette) {
  aPainter.setPen(QPen(GetSystemColour(aPalette, SystemColour::WindowText), 1, Qt::DotLine));
  aPainter.setBrush(Qt::NoBrush);
  aPainter.drawRect(QRectF(aButton).adjusted(1.5, 1.5, -1.5, -1.5));
}

} // namespace krgui

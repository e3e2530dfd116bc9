#include "window/toolglyphs.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

#include <array>

namespace krviewer {

namespace {

/// Glyphs are drawn in a square of so many units, with lines as wide as this.
constexpr double kUnits = 16;
constexpr double kLine = 1.4;

const QColor kRecordingOnLight(0xd0, 0x30, 0x30);
const QColor kRecordingOnDark(0xff, 0x6e, 0x6e);

void DrawLens(QPainter& aPainter) {
  aPainter.drawEllipse(QRectF(2, 2, 9, 9));
  aPainter.drawLine(QPointF(9.7, 9.7), QPointF(14, 14));
}

void DrawFind(QPainter& aPainter) {
  DrawLens(aPainter);
}

void DrawStart(QPainter& aPainter) {
  aPainter.setBrush(aPainter.pen().color());
  aPainter.drawPolygon(QPolygonF({{4.5, 3}, {13, 8}, {4.5, 13}}));
}

void DrawStop(QPainter& aPainter) {
  aPainter.setBrush(aPainter.pen().color());
  aPainter.drawRect(QRectF(4, 4, 8, 8));
}

void DrawSingle(QPainter& aPainter) {
  aPainter.setBrush(aPainter.pen().color());
  aPainter.drawPolygon(QPolygonF({{3, 3.5}, {10, 8}, {3, 12.5}}));
  aPainter.drawLine(QPointF(12.5, 3.5), QPointF(12.5, 12.5));
}

void DrawTrigger(QPainter& aPainter) {
  aPainter.setBrush(aPainter.pen().color());
  aPainter.drawPolygon(QPolygonF({{9, 1.5}, {4, 9}, {7.5, 9}, {6.5, 14.5}, {12, 6.5}, {8.4, 6.5}}));
}

void DrawSaveFrame(QPainter& aPainter) {
  aPainter.drawLine(QPointF(8, 2), QPointF(8, 10));
  aPainter.drawPolyline(QPolygonF({{4.5, 6.8}, {8, 10.3}, {11.5, 6.8}}));
  aPainter.drawPolyline(QPolygonF({{2.5, 10.5}, {2.5, 13.8}, {13.5, 13.8}, {13.5, 10.5}}));
}

void DrawRecord(QPainter& aPainter) {
  aPainter.setBrush(aPainter.pen().color());
  aPainter.drawEllipse(QRectF(3.5, 3.5, 9, 9));
}

void DrawRegion(QPainter& aPainter) {
  QPen dashes = aPainter.pen();
  dashes.setDashPattern({2, 1.5});
  aPainter.setPen(dashes);
  aPainter.drawRect(QRectF(2.5, 3.5, 11, 9));
}

void DrawActualSize(QPainter& aPainter) {
  aPainter.drawPolyline(QPolygonF({{2, 5}, {4, 3.5}, {4, 12.5}}));
  aPainter.drawPolyline(QPolygonF({{11, 5}, {13, 3.5}, {13, 12.5}}));
  aPainter.setBrush(aPainter.pen().color());
  aPainter.drawEllipse(QPointF(8, 6), 0.5, 0.5);
  aPainter.drawEllipse(QPointF(8, 10.5), 0.5, 0.5);
}

void DrawFit(QPainter& aPainter) {
  for (const double x : {2.5, 13.5})
    for (const double y : {3.0, 13.0}) {
      const double inX = x < 8 ? 3 : -3;
      const double inY = y < 8 ? 3 : -3;
      aPainter.drawPolyline(QPolygonF({{x + inX, y}, {x, y}, {x, y + inY}}));
    }
}

void DrawZoomIn(QPainter& aPainter) {
  DrawLens(aPainter);
  aPainter.drawLine(QPointF(4.3, 6.5), QPointF(8.7, 6.5));
  aPainter.drawLine(QPointF(6.5, 4.3), QPointF(6.5, 8.7));
}

void DrawZoomOut(QPainter& aPainter) {
  DrawLens(aPainter);
  aPainter.drawLine(QPointF(4.3, 6.5), QPointF(8.7, 6.5));
}

void DrawClose(QPainter& aPainter) {
  aPainter.drawLine(QPointF(4, 4), QPointF(12, 12));
  aPainter.drawLine(QPointF(12, 4), QPointF(4, 12));
}

using Draw = void (*)(QPainter&);
/// By the glyphs' numbers; None is never drawn.
constexpr std::array<Draw, 14> kDrawings = {nullptr,     DrawFind,      DrawStart,   DrawStop,   DrawSingle,
                                            DrawTrigger, DrawSaveFrame, DrawRecord,  DrawRegion, DrawActualSize,
                                            DrawFit,     DrawZoomIn,    DrawZoomOut, DrawClose};

QColor GetRecordingColour(const QPalette& aPalette) {
  const bool isDark = aPalette.color(QPalette::Window).lightness() < aPalette.color(QPalette::WindowText).lightness();
  return isDark ? kRecordingOnDark : kRecordingOnLight;
}

/// Asks for the colours when it draws, as they may have become others.
class GlyphEngine : public QIconEngine {
public:
  explicit GlyphEngine(ToolGlyph aGlyph) : mGlyph(aGlyph) {}

  void paint(QPainter* aPainter, const QRect& aRect, QIcon::Mode aMode, QIcon::State) override {
    const auto group = aMode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    const bool isRed = mGlyph == ToolGlyph::Record && aMode != QIcon::Disabled;
    const QPalette palette = QGuiApplication::palette();
    const QColor colour = isRed ? GetRecordingColour(palette) : palette.color(group, QPalette::ButtonText);
    const QPen pen(colour, kLine, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    aPainter->save();
    aPainter->setRenderHint(QPainter::Antialiasing);
    aPainter->translate(aRect.topLeft());
    aPainter->scale(aRect.width() / kUnits, aRect.height() / kUnits);
    aPainter->setOpacity(aMode == QIcon::Disabled ? 0.6 : 1.0);
    aPainter->setPen(pen);
    aPainter->setBrush(Qt::NoBrush);
    kDrawings[static_cast<std::size_t>(mGlyph)](*aPainter);
    aPainter->restore();
  }
  QPixmap pixmap(const QSize& aSize, QIcon::Mode aMode, QIcon::State aState) override {
    QPixmap picture(aSize);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paint(&painter, QRect(QPoint(), aSize), aMode, aState);
    return picture;
  }
  QIconEngine* clone() const override { return new GlyphEngine(*this); }

private:
  ToolGlyph mGlyph;
};

} // namespace

QIcon MakeToolIcon(ToolGlyph aGlyph) {
  return aGlyph == ToolGlyph::None ? QIcon() : QIcon(new GlyphEngine(aGlyph));
}

} // namespace krviewer

#include "finder/pictureshapes.h"

#include "platform/systemcolours.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPolygonF>

#include <array>

namespace krgui {

namespace {

/// The colours of one picture.
struct Inks {
  QColor body;   ///< What is large.
  QColor detail; ///< What lies on the body.
  QColor accent; ///< What tells the kinds apart, besides the form.
};

const QColor kSlate(0x6B, 0x7F, 0x94);
const QColor kPaper(0xF4, 0xF7, 0xFA);
const QColor kBlue(0x1F, 0x7F, 0xD6);
const QColor kAmber(0xC9, 0x83, 0x1E);
const QColor kTeal(0x0E, 0x99, 0x80);
const QColor kRed(0xD3, 0x2F, 0x2F);
const QColor kYellow(0xF2, 0xB3, 0x1B);
const QColor kGreen(0x2E, 0x9E, 0x4F);
const QColor kInk(0x26, 0x2A, 0x30);
const QColor kGrey(0x8A, 0x90, 0x98);
const QColor kDarkGrey(0x60, 0x66, 0x6E);

void FillShape(QPainter& aPainter, const QPainterPath& aPath, const QColor& aColour) {
  aPainter.fillPath(aPath, aColour);
}

void FillRound(QPainter& aPainter, const QRectF& aRect, qreal aRadius, const QColor& aColour) {
  QPainterPath path;
  path.addRoundedRect(aRect, aRadius, aRadius);
  FillShape(aPainter, path, aColour);
}

void FillCircle(QPainter& aPainter, const QPointF& aCentre, qreal aRadius, const QColor& aColour) {
  QPainterPath path;
  path.addEllipse(aCentre, aRadius, aRadius);
  FillShape(aPainter, path, aColour);
}

void FillPolygon(QPainter& aPainter, const QPolygonF& aPolygon, const QColor& aColour) {
  QPainterPath path;
  path.addPolygon(aPolygon);
  path.closeSubpath();
  FillShape(aPainter, path, aColour);
}

void DrawStroke(QPainter& aPainter, const QPolygonF& aLine, qreal aWidth, const QColor& aColour) {
  aPainter.setPen(QPen(aColour, aWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  aPainter.setBrush(Qt::NoBrush);
  aPainter.drawPolyline(aLine);
}

void PaintLens(QPainter& aPainter, const QPointF& aCentre, qreal aRadius, const Inks& aInks) {
  FillCircle(aPainter, aCentre, aRadius, aInks.detail);
  FillCircle(aPainter, aCentre, aRadius - 1.0, aInks.accent);
  FillCircle(aPainter, aCentre - QPointF(aRadius / 3, aRadius / 3), aRadius / 4, aInks.detail);
}

/// A cube seen from the front, with the tab of a network plug under it.
void PaintGEVCamera(QPainter& aPainter, const Inks& aInks) {
  FillRound(aPainter, {6, 12, 4, 3}, 0.5, aInks.body);
  FillRound(aPainter, {2, 1, 12, 12}, 1.5, aInks.body);
  PaintLens(aPainter, {8, 7}, 4.5, aInks);
}

/// A wide body with a viewfinder on top.
void PaintTolvanCamera(QPainter& aPainter, const Inks& aInks) {
  FillRound(aPainter, {5, 2, 6, 4}, 1, aInks.body);
  FillRound(aPainter, {1, 4, 14, 10}, 1, aInks.body);
  PaintLens(aPainter, {8, 9}, 4, aInks);
  FillRound(aPainter, {2, 5, 2, 1}, 0.3, aInks.detail);
}

/// A cube with a cable that comes out at its side and ends in a flat plug.
void PaintU3VCamera(QPainter& aPainter, const Inks& aInks) {
  DrawStroke(aPainter, QPolygonF({{12, 11}, {12, 13.5}, {5, 13.5}}), 1.4, aInks.accent);
  FillRound(aPainter, {1, 12, 4, 3}, 0.5, aInks.body);
  FillRound(aPainter, {3, 1, 11, 11}, 1.5, aInks.body);
  PaintLens(aPainter, {8.5, 6.5}, 4, aInks);
}

/// The socket of a network cable.
void PaintAdapter(QPainter& aPainter, const Inks& aInks) {
  FillRound(aPainter, {1, 2, 14, 12}, 1.5, aInks.body);
  FillPolygon(aPainter,
              QPolygonF({{3, 4},
                         {13, 4},
                         {13, 9},
                         {11, 9},
                         {11, 11},
                         {9.5, 11},
                         {9.5, 12},
                         {6.5, 12},
                         {6.5, 11},
                         {5, 11},
                         {5, 9},
                         {3, 9}}),
              aInks.detail);
  for (const qreal x : {4.5, 6.5, 8.5, 10.5})
    FillRound(aPainter, {x, 4, 1, 2.5}, 0, aInks.accent);
}

/// The fork of three.
void PaintUSB(QPainter& aPainter, const Inks& aInks) {
  DrawStroke(aPainter, QPolygonF({{8, 13}, {8, 3}}), 1.4, aInks.body);
  DrawStroke(aPainter, QPolygonF({{8, 11.5}, {4, 9}, {4, 7}}), 1.4, aInks.body);
  DrawStroke(aPainter, QPolygonF({{8, 10}, {12, 7.5}, {12, 6}}), 1.4, aInks.body);
  FillPolygon(aPainter, QPolygonF({{8, 0.5}, {10, 4}, {6, 4}}), aInks.body);
  FillCircle(aPainter, {8, 13.5}, 2, aInks.accent);
  FillCircle(aPainter, {4, 6.5}, 1.6, aInks.body);
  FillRound(aPainter, {10.5, 4, 3, 3}, 0, aInks.body);
}

void PaintUSBHub(QPainter& aPainter, const Inks& aInks) {
  FillRound(aPainter, {1, 5, 14, 7}, 1.5, aInks.body);
  for (const qreal x : {3.0, 7.0, 11.0})
    FillRound(aPainter, {x, 7, 2.5, 3}, 0.3, aInks.detail);
  DrawStroke(aPainter, QPolygonF({{8, 5}, {8, 1}}), 1.4, aInks.accent);
}

void PaintNetwork(QPainter& aPainter, const Inks& aInks) {
  DrawStroke(aPainter, QPolygonF({{3, 11}, {3, 8}, {13, 8}, {13, 11}}), 1.2, aInks.accent);
  DrawStroke(aPainter, QPolygonF({{8, 5}, {8, 8}}), 1.2, aInks.accent);
  FillRound(aPainter, {5, 1, 6, 5}, 1, aInks.body);
  FillRound(aPainter, {1, 11, 5, 4}, 1, aInks.body);
  FillRound(aPainter, {10, 11, 5, 4}, 1, aInks.body);
}

void PaintComputer(QPainter& aPainter, const Inks& aInks) {
  FillRound(aPainter, {1, 2, 14, 9}, 1, aInks.body);
  FillRound(aPainter, {2.5, 3.5, 11, 6}, 0.3, aInks.detail);
  FillRound(aPainter, {7, 11, 2, 2}, 0, aInks.body);
  FillRound(aPainter, {4, 13, 8, 1.5}, 0.5, aInks.accent);
}

struct ShapeEntry {
  PictureShape shape;
  void (*paint)(QPainter& aPainter, const Inks& aInks);
  const QColor& accent;
};

const std::array kShapes = {
    ShapeEntry{PictureShape::GEVCamera, PaintGEVCamera, kBlue},
    ShapeEntry{PictureShape::TolvanCamera, PaintTolvanCamera, kAmber},
    ShapeEntry{PictureShape::U3VCamera, PaintU3VCamera, kTeal},
    ShapeEntry{PictureShape::Adapter, PaintAdapter, kSlate},
    ShapeEntry{PictureShape::USB, PaintUSB, kTeal},
    ShapeEntry{PictureShape::USBHub, PaintUSBHub, kTeal},
    ShapeEntry{PictureShape::Network, PaintNetwork, kBlue},
    ShapeEntry{PictureShape::Computer, PaintComputer, kSlate},
};

Inks ChooseInks(PictureTone aTone, const QColor& aAccent) {
  if (aTone == PictureTone::Faded)
    return {kGrey, kPaper, kDarkGrey};
  if (aTone == PictureTone::Selected) {
    const QPalette palette = QGuiApplication::palette();
    const QColor ink = GetSystemColour(palette, SystemColour::HighlightText);
    return {ink, GetSystemColour(palette, SystemColour::Highlight), ink};
  }
  return {kSlate, kPaper, aAccent};
}

// The badges' signs, around the badge's middle.

void PaintTick(QPainter& aPainter) {
  FillCircle(aPainter, {0, 0}, 3.6, kGreen);
  DrawStroke(aPainter, QPolygonF({{-1.7, 0.1}, {-0.5, 1.4}, {1.8, -1.3}}), 1.2, kPaper);
}

void PaintTriangle(QPainter& aPainter) {
  FillPolygon(aPainter, QPolygonF({{0, -4}, {4.2, 3.6}, {-4.2, 3.6}}), kYellow);
  FillRound(aPainter, {-0.6, -1.6, 1.2, 2.8}, 0.4, kInk);
  FillRound(aPainter, {-0.6, 1.8, 1.2, 1.2}, 0.4, kInk);
}

void PaintCross(QPainter& aPainter) {
  FillCircle(aPainter, {0, 0}, 3.7, kRed);
  DrawStroke(aPainter, QPolygonF({{-1.4, -1.4}, {1.4, 1.4}}), 1.3, kPaper);
  DrawStroke(aPainter, QPolygonF({{1.4, -1.4}, {-1.4, 1.4}}), 1.3, kPaper);
}

void PaintQuestion(QPainter& aPainter) {
  FillCircle(aPainter, {0, 0}, 3.7, kBlue);
  DrawStroke(aPainter, QPolygonF({{-1.2, -0.9}, {-0.8, -1.9}, {0.6, -2.0}, {1.2, -1.1}, {0.2, 0.1}, {0, 0.7}}), 1.0,
             kPaper);
  FillCircle(aPainter, {0, 2.1}, 0.65, kPaper);
}

void PaintClock(QPainter& aPainter) {
  FillCircle(aPainter, {0, 0}, 3.7, kBlue);
  DrawStroke(aPainter, QPolygonF({{0, -2.2}, {0, 0}, {1.6, 0.9}}), 1.0, kPaper);
}

using PaintSign = void (*)(QPainter& aPainter);

PaintSign FindSign(PictureBadge aBadge) {
  static constexpr std::array<std::pair<PictureBadge, PaintSign>, 5> kSigns = {{
      {PictureBadge::Good, PaintTick},
      {PictureBadge::Warning, PaintTriangle},
      {PictureBadge::Error, PaintCross},
      {PictureBadge::Question, PaintQuestion},
      {PictureBadge::Waiting, PaintClock},
  }};
  for (const auto& [badge, paint] : kSigns) {
    if (badge == aBadge)
      return paint;
  }
  return nullptr;
}

/// Takes away what is painted there already, so that what follows stands apart from it on any background.
void CutOut(QPainter& aPainter, const QPainterPath& aPath) {
  const QPainter::CompositionMode mode = aPainter.compositionMode();
  aPainter.setCompositionMode(QPainter::CompositionMode_Clear);
  aPainter.fillPath(aPath, Qt::black);
  aPainter.setCompositionMode(mode);
}

} // namespace

void PaintPictureShape(QPainter& aPainter, PictureShape aShape, PictureTone aTone) {
  constexpr qreal kFadedOpacity = 0.55;
  aPainter.save();
  if (aTone == PictureTone::Faded)
    aPainter.setOpacity(kFadedOpacity);
  for (const ShapeEntry& entry : kShapes) {
    if (entry.shape == aShape)
      entry.paint(aPainter, ChooseInks(aTone, entry.accent));
  }
  aPainter.restore();
}

void PaintPictureBadge(QPainter& aPainter, PictureBadge aBadge) {
  const PaintSign paint = FindSign(aBadge);
  if (paint == nullptr)
    return;
  aPainter.save();
  aPainter.translate(12, 12);
  QPainterPath gap;
  gap.addEllipse(QPointF(0, 0), 4.7, 4.7);
  CutOut(aPainter, gap);
  paint(aPainter);
  aPainter.restore();
}

void PaintDriverMark(QPainter& aPainter) {
  const QPolygonF bolt({{4.2, 0}, {0.4, 4.6}, {2.8, 4.6}, {1.6, 8}, {6, 3.2}, {3.5, 3.2}});
  QPainterPath path;
  path.addPolygon(bolt);
  path.closeSubpath();
  QPainterPathStroker stroker(QPen(Qt::black, 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  CutOut(aPainter, stroker.createStroke(path).united(path));
  aPainter.fillPath(path, kGreen);
}

void PaintErrorMark(QPainter& aPainter) {
  FillCircle(aPainter, {8, 8}, 7, kRed);
  FillRound(aPainter, {7, 3.5, 2, 6}, 0.8, kPaper);
  FillRound(aPainter, {7, 10.5, 2, 2}, 0.8, kPaper);
}

} // namespace krgui

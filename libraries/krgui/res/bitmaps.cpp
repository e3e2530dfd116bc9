#include "res/bitmaps.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QPolygonF>

#include <algorithm>
#include <array>
#include <cmath>

namespace krgui {

namespace {

/// The colours of one picture.
struct BitmapInks {
  QColor line;   ///< What a picture consists of.
  QColor accent; ///< What it is about.
};

const BitmapInks kInksOnLight = {QColor(0x4A, 0x56, 0x63), QColor(0x0B, 0x6B, 0xCB)};
const BitmapInks kInksOnDark = {QColor(0xC8, 0xD0, 0xD9), QColor(0x5C, 0xB3, 0xFF)};
const BitmapInks kGreyOnLight = {QColor(0xA6, 0xAC, 0xB3), QColor(0xA6, 0xAC, 0xB3)};
const BitmapInks kGreyOnDark = {QColor(0x71, 0x78, 0x80), QColor(0x71, 0x78, 0x80)};
const QColor kErrorRed(0xD3, 0x2F, 0x2F);

const BitmapInks& ChooseInks(bool aIsEnabled, BitmapGround aGround) {
  if (aGround == BitmapGround::Dark)
    return aIsEnabled ? kInksOnDark : kGreyOnDark;
  return aIsEnabled ? kInksOnLight : kGreyOnLight;
}

void FillRounded(QPainter& aPainter, const QRectF& aRect, qreal aRadius, const QColor& aColour) {
  aPainter.setPen(Qt::NoPen);
  aPainter.setBrush(aColour);
  aPainter.drawRoundedRect(aRect, aRadius, aRadius);
}

void DrawLine(QPainter& aPainter, const QPolygonF& aLine, qreal aWidth, const QColor& aColour) {
  aPainter.setPen(QPen(aColour, aWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  aPainter.setBrush(Qt::NoBrush);
  aPainter.drawPolyline(aLine);
}

/// Three sliders.
void PaintOptions(QPainter& aPainter, const BitmapInks& aInks) {
  constexpr std::array<QPointF, 3> kKnobs = {QPointF(10.5, 3.5), QPointF(5.5, 8.5), QPointF(11.5, 13.5)};
  for (const QPointF& knob : kKnobs) {
    DrawLine(aPainter, QPolygonF({{1.5, knob.y()}, {14.5, knob.y()}}), 1.0, aInks.line);
    FillRounded(aPainter, {knob.x() - 1.5, knob.y() - 2.5, 3, 5}, 1, aInks.accent);
  }
}

/// A box before another one; what is in it says what becomes of all of them.
void PaintBoxes(QPainter& aPainter, const BitmapInks& aInks) {
  DrawLine(aPainter, QPolygonF({{4.5, 2.5}, {4.5, 1.5}, {14.5, 1.5}, {14.5, 11.5}, {13.5, 11.5}}), 1.0, aInks.line);
  aPainter.setPen(QPen(aInks.line, 1.0));
  aPainter.setBrush(Qt::NoBrush);
  aPainter.drawRoundedRect(QRectF(1.5, 4.5, 10, 10), 1, 1);
  FillRounded(aPainter, {4, 9, 5, 1}, 0, aInks.accent);
}

void PaintExpand(QPainter& aPainter, const BitmapInks& aInks) {
  PaintBoxes(aPainter, aInks);
  FillRounded(aPainter, {6, 7, 1, 5}, 0, aInks.accent);
}

void PaintCollapse(QPainter& aPainter, const BitmapInks& aInks) {
  PaintBoxes(aPainter, aInks);
}

/// A ring that is open at the upper right, where its arrow points to.
void PaintRefresh(QPainter& aPainter, const BitmapInks& aInks) {
  aPainter.setPen(QPen(aInks.accent, 1.6, Qt::SolidLine, Qt::RoundCap));
  aPainter.setBrush(Qt::NoBrush);
  constexpr int kDegree = 16;
  aPainter.drawArc(QRectF(2.5, 2.5, 11, 11), 40 * kDegree, 290 * kDegree);
  aPainter.setPen(Qt::NoPen);
  aPainter.setBrush(aInks.accent);
  aPainter.drawPolygon(QPolygonF({{14.5, 1.5}, {14.5, 6.8}, {9.2, 6.8}}));
}

void PaintTools(QPainter& aPainter, const BitmapInks& aInks) {
  for (const auto paint : {PaintOptions, PaintExpand, PaintCollapse, PaintRefresh}) {
    paint(aPainter, aInks);
    aPainter.translate(16, 0);
  }
}

/// Pointing at the closed category's name and, beside it, down at what is in the open one.
void PaintGlyphs(QPainter& aPainter, const BitmapInks& aInks) {
  DrawLine(aPainter, QPolygonF({{3, 1.5}, {6, 4.5}, {3, 7.5}}), 1.5, aInks.line);
  DrawLine(aPainter, QPolygonF({{10.5, 3}, {13.5, 6}, {16.5, 3}}), 1.5, aInks.line);
}

void PaintError(QPainter& aPainter, const BitmapInks&) {
  FillRounded(aPainter, {1, 1, 14, 14}, 7, kErrorRed);
  FillRounded(aPainter, {7, 4, 2, 5}, 0.8, Qt::white);
  FillRounded(aPainter, {7, 10, 2, 2}, 0.8, Qt::white);
}

/// A ring with a tick, in the quiet colour of what needs no attention.
void PaintNoError(QPainter& aPainter, const BitmapInks& aInks) {
  aPainter.setPen(QPen(aInks.line, 1.2));
  aPainter.setBrush(Qt::NoBrush);
  aPainter.drawEllipse(QPointF(8, 8), 6.4, 6.4);
  DrawLine(aPainter, QPolygonF({{5, 8.3}, {7.2, 10.4}, {11, 5.9}}), 1.4, aInks.line);
}

struct BitmapEntry {
  int id;
  QSize size;
  void (*paint)(QPainter& aPainter, const BitmapInks& aInks);
  bool isEnabled = true;
};

constexpr QSize kToolSize(16, 16);

constexpr std::array kBitmaps = {
    BitmapEntry{kOptionsBitmapID, kToolSize, PaintOptions},
    BitmapEntry{kExpandBitmapID, kToolSize, PaintExpand},
    BitmapEntry{kCollapseBitmapID, kToolSize, PaintCollapse},
    BitmapEntry{kRefreshBitmapID, kToolSize, PaintRefresh},
    BitmapEntry{kDisabledOptionsBitmapID, kToolSize, PaintOptions, false},
    BitmapEntry{kDisabledExpandBitmapID, kToolSize, PaintExpand, false},
    BitmapEntry{kDisabledCollapseBitmapID, kToolSize, PaintCollapse, false},
    BitmapEntry{kDisabledRefreshBitmapID, kToolSize, PaintRefresh, false},
    BitmapEntry{kGlyphsBitmapID, QSize(18, 9), PaintGlyphs},
    BitmapEntry{kErrorBitmapID, kToolSize, PaintError},
    BitmapEntry{kToolsBitmapID, QSize(64, 16), PaintTools},
    BitmapEntry{kNoErrorBitmapID, kToolSize, PaintNoError, false},
};

/// No screen has more; a ratio that is no number counts as 1.
double LimitRatio(double aDevicePixelRatio) {
  constexpr double kFinest = 16.0;
  return aDevicePixelRatio >= 1.0 ? std::min(aDevicePixelRatio, kFinest) : 1.0;
}

} // namespace

QImage LoadBitmap(int aID, double aDevicePixelRatio, BitmapGround aGround) {
  const auto entry = std::find_if(kBitmaps.begin(), kBitmaps.end(), [aID](const auto& each) { return each.id == aID; });
  if (entry == kBitmaps.end())
    return {};
  const double ratio = LimitRatio(aDevicePixelRatio);
  QImage bitmap(static_cast<int>(std::ceil(entry->size.width() * ratio)),
                static_cast<int>(std::ceil(entry->size.height() * ratio)), QImage::Format_ARGB32);
  bitmap.setDevicePixelRatio(ratio);
  bitmap.fill(QColor(255, 255, 255, 0));
  QPainter painter(&bitmap);
  painter.setRenderHint(QPainter::Antialiasing);
  entry->paint(painter, ChooseInks(entry->isEnabled, aGround));
  return bitmap;
}

QImage CutBitmap(const QImage& aBitmap, const QRect& aRect) {
  const double ratio = aBitmap.devicePixelRatio();
  const QRect pixels(qRound(aRect.x() * ratio), qRound(aRect.y() * ratio), qRound(aRect.width() * ratio),
                     qRound(aRect.height() * ratio));
  QImage part = aBitmap.copy(pixels);
  part.setDevicePixelRatio(ratio);
  return part;
}

QImage MakeTransparent(const QImage& aBitmap, const QColor& aColour) {
  QImage bitmap = aBitmap.convertToFormat(QImage::Format_ARGB32);
  for (int y = 0; y < bitmap.height(); ++y) {
    auto* const line = reinterpret_cast<QRgb*>(bitmap.scanLine(y));
    std::replace(line, line + bitmap.width(), aColour.rgb() | 0xFF000000U, static_cast<QRgb>(0));
  }
  return bitmap;
}

} // namespace krgui

#include "platform/ctcimagelist.h"

#include "res/bitmaps.h"

#include <QGuiApplication>

namespace krgui {

namespace {

/// Square pictures, as high as the strip.
QSize GetSquare(int aBitmapID) {
  const int height = LoadBitmap(aBitmapID).height();
  return {height, height};
}

} // namespace

bool CTCImageList::Create(int aBitmapID) {
  return Fill(aBitmapID, GetSquare(aBitmapID), Qt::white);
}

bool CTCImageList::Create(int aBitmapID, PictureSide aSide) {
  return Fill(aBitmapID, {aSide.pixels, aSide.pixels}, Qt::white);
}

bool CTCImageList::Create(int aBitmapID, const QSize& aSize) {
  return Fill(aBitmapID, aSize, Qt::white);
}

bool CTCImageList::Create(int aBitmapID, PictureSide aSide, const MaskColour& aMask) {
  return Fill(aBitmapID, {aSide.pixels, aSide.pixels}, aMask.colour);
}

bool CTCImageList::Create(int aBitmapID, const MaskColour& aMask) {
  return Fill(aBitmapID, GetSquare(aBitmapID), aMask.colour);
}

bool CTCImageList::Fill(int aBitmapID, const QSize& aPictureSize, const QColor& aMask) {
  *this = {};
  const QSize strip = LoadBitmap(aBitmapID).size();
  if (strip.isEmpty() || aPictureSize.isEmpty() || strip.height() != aPictureSize.height() ||
      strip.width() % aPictureSize.width() != 0)
    return false;
  mBitmapID = aBitmapID;
  mPictureSize = aPictureSize;
  mMask = aMask;
  mCount = strip.width() / aPictureSize.width();
  return true;
}

QPixmap CTCImageList::GetPicture(int aIndex) const {
  return GetPicture(aIndex, qGuiApp->devicePixelRatio());
}

QPixmap CTCImageList::GetPicture(int aIndex, double aDevicePixelRatio) const {
  if (aIndex < 0 || aIndex >= mCount)
    return {};
  const QImage strip = LoadBitmap(mBitmapID, aDevicePixelRatio);
  return QPixmap::fromImage(
      MakeTransparent(CutBitmap(strip, {QPoint(aIndex * mPictureSize.width(), 0), mPictureSize}), mMask));
}

} // namespace krgui

#pragma once
// Pictures of one size, cut from a strip of which one colour is transparent.

#include <QColor>
#include <QPixmap>
#include <QSize>

namespace krgui {

/// Thread: user interface. Ownership: a value; pictures are drawn when they are asked for.
class CTCImageList {
public:
  /// Each takes a strip of res/bitmaps.h and gives true on success; what was there before is gone. Pictures are as
  /// large as the strip is high where no size is given; pixels of the mask colour, white unless it is given, are
  /// transparent. False for a strip that is not there and for a size that does not part it without a rest.
  bool Create(int aBitmapID);
  bool Create(int aBitmapID, int aSize);
  bool Create(int aBitmapID, int aWidth, int aHeight);
  bool Create(int aBitmapID, int aSize, const QColor& aMask);
  bool Create(int aBitmapID, const QColor& aMask);

  int GetCount() const { return mCount; }
  /// In device-independent pixels.
  QSize GetPictureSize() const { return mPictureSize; }
  /// A null pixmap for a number that is not there. At the resolution of the finest screen, or of the one that is asked
  /// for.
  QPixmap GetPicture(int aIndex) const;
  QPixmap GetPicture(int aIndex, double aDevicePixelRatio) const;

private:
  bool Fill(int aBitmapID, const QSize& aPictureSize, const QColor& aMask);

  int mBitmapID = 0;
  QSize mPictureSize;
  QColor mMask = Qt::white;
  int mCount = 0;
};

} // namespace krgui

#pragma once
// Pictures of one size, cut from a strip of which one colour is transparent.

#include <QColor>
#include <QPixmap>
#include <QSize>

namespace krgui {

/// The side of square pictures, in pixels. A type of its own, like the mask's colour: a bare number or a colour's name
/// could be either.
struct PictureSide {
  explicit constexpr PictureSide(int aPixels) : pixels(aPixels) {}
  int pixels;
};

/// The colour whose pixels are transparent.
struct MaskColour {
  explicit MaskColour(const QColor& aColour) : colour(aColour) {}
  /// Red, green and blue as in 0xFFFFFF, white; without transparency.
  static MaskColour FromRgb(QRgb aRgb) { return MaskColour(QColor(aRgb)); }
  QColor colour;
};

/// Thread: user interface. Ownership: a value; pictures are drawn when they are asked for.
class CTCImageList {
public:
  /// Each takes a strip of res/bitmaps.h and gives true on success; what was there before is gone. Pictures are as
  /// large as the strip is high where no size is given; pixels of the mask colour, white unless it is given, are
  /// transparent. False for a strip that is not there and for a size that does not part it without a rest.
  bool Create(int aBitmapID);
  bool Create(int aBitmapID, PictureSide aSide);
  bool Create(int aBitmapID, const QSize& aSize);
  bool Create(int aBitmapID, PictureSide aSide, const MaskColour& aMask);
  bool Create(int aBitmapID, const MaskColour& aMask);

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

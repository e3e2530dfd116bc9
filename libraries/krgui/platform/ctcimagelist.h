#pragma once
// Pictures of one size, cut from a strip of which one colour is transparent.

#include <QColor>
#include <QPixmap>

#include <vector>

namespace krgui {

/// Thread: user interface. Ownership: owns its pictures.
class CTCImageList {
public:
  /// Each takes a strip of res/bitmaps.h and gives true on success; what was there before is gone. Pictures are as
  /// large as the strip is high where no size is given; pixels of the mask colour, white unless it is given, are
  /// transparent.
  bool Create(int aBitmapID);
  bool Create(int aBitmapID, int aSize);
  bool Create(int aBitmapID, int aWidth, int aHeight);
  bool Create(int aBitmapID, int aSize, const QColor& aMask);
  bool Create(int aBitmapID, const QColor& aMask);

  int GetCount() const { return static_cast<int>(mPictures.size()); }
  /// A null pixmap for a number that is not there.
  QPixmap GetPicture(int aIndex) const;

private:
  std::vector<QPixmap> mPictures;
};

} // namespace krgui

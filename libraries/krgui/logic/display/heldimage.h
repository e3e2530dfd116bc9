#pragma once
// One image that a display holds, ready to be converted: a copy of its bytes, or the buffer that the application has
// left to the display. Which image that is, and when it is drawn, is left to the display's content.

#include "krbuffer/krbuffer.h"
#include "krbuffer/krlineconversion.h"
#include "logic/display/imagesnapshot.h"

#include <cstdint>
#include <memory>

namespace krgui {

/// Thread: one at a time; reading from several while nobody changes it.
class HeldImage {
public:
  /// Room for a copy.
  HeldImage() = default;
  /// Holds the buffer, which is of the image payload type.
  explicit HeldImage(std::shared_ptr<const KrBuffer> aBuffer);

  /// True when the image is a copy that lies in memory of its own.
  bool IsCopy() const { return !mBuffer; }
  /// Makes room for a copy of such an image, unless there is room already; false where there is no memory.
  bool MakeRoom(const IKrImage& aSource);
  /// Goes on with a conversion that was opened on the source: with the copy that is made now where the image is one,
  /// else as it is. The source has the shape that room was made for, and its bytes are there.
  void Take(const IKrImage& aSource, KrLineConversion&& aLines);
  /// Becomes an image without light; false where there is no memory.
  bool TakeBlack(const KrBufferConverter& aConverter, std::uint32_t aWidth, std::uint32_t aHeight);

  const KrLineConversion& GetLines() const { return mLines; }
  const IKrImage& GetSource() const { return mSource; }

private:
  std::shared_ptr<const KrBuffer> mBuffer;
  KrBuffer mCopy;
  ImageSnapshot mSource; ///< Of the copy or the buffer.
  KrLineConversion mLines;
};

} // namespace krgui

#include "logic/display/heldimage.h"

#include "logic/display/streamingcopy.h"

#include <utility>

namespace krgui {

namespace {

bool HaveSameShape(const IKrImage& aLeft, const IKrImage& aRight) {
  return aLeft.GetWidth() == aRight.GetWidth() && aLeft.GetHeight() == aRight.GetHeight() &&
         aLeft.GetPixelType() == aRight.GetPixelType() && aLeft.GetPaddingX() == aRight.GetPaddingX() &&
         aLeft.GetPaddingY() == aRight.GetPaddingY();
}

} // namespace

HeldImage::HeldImage(std::shared_ptr<const KrBuffer> aBuffer) : mBuffer(std::move(aBuffer)) {}

bool HeldImage::MakeRoom(const IKrImage& aSource) {
  IKrImage& copy = *mCopy.GetImage();
  return HaveSameShape(copy, aSource) || copy.Alloc(aSource.GetWidth(), aSource.GetHeight(), aSource.GetPixelType(),
                                                    aSource.GetPaddingX(), aSource.GetPaddingY())
                                             .IsOK();
}

void HeldImage::Take(const IKrImage& aSource, KrLineConversion&& aLines) {
  mSource = ImageSnapshot(aSource);
  mLines = std::move(aLines);
  if (!IsCopy())
    return;
  const std::size_t bytes = mCopy.GetImage()->GetImageSize();
  CopyStreaming(mCopy.GetDataPointer(), aSource.GetDataPointer(), bytes);
  mSource = ImageSnapshot(*mCopy.GetImage());
  // The copy has the shape that the conversion was opened for.
  [[maybe_unused]] const KrResult rebound = mLines.Rebind(mSource);
}

bool HeldImage::TakeBlack(const KrBufferConverter& aConverter, std::uint32_t aWidth, std::uint32_t aHeight) {
  if (!mCopy.GetImage()->Alloc(aWidth, aHeight, KrPixel::BGRa8).IsOK())
    return false;
  mSource = ImageSnapshot(*mCopy.GetImage());
  return mLines.Open(aConverter, mSource).IsOK();
}

} // namespace krgui

#include "logic/display/internalbuffer.h"

namespace krgui {

bool InternalBuffer::Holds(const KrLineConversion& aImage, std::uint64_t aNumber) {
  const IKrImage* image = mBuffer.GetImage();
  return mNumber == aNumber && image && mBuffer.GetDataPointer() == mData && image->GetDataPointer() == mData &&
         image->GetWidth() == aImage.GetWidth() && image->GetHeight() == aImage.GetHeight() &&
         image->GetPixelType() == KrPixel::BGRa8 && image->GetPaddingX() == 0 && image->GetPaddingY() == 0;
}

void InternalBuffer::Convert(const KrLineConversion& aImage, std::uint64_t aNumber,
                             const KrBufferConverter& aConverter) {
  if (Holds(aImage, aNumber))
    return;
  // Memory of the application's own is never written to; what was allocated here is used again.
  const IKrImage* image = mBuffer.GetImage();
  const bool isOurs =
      image && image->GetDataPointer() == mData && image->GetPaddingX() == 0 && image->GetPaddingY() == 0;
  if (!isOurs)
    Clear();
  if (!aImage.ConvertAll(aConverter, mBuffer).IsOK()) {
    Clear();
    return;
  }
  mNumber = aNumber;
  mData = mBuffer.GetDataPointer();
}

void InternalBuffer::Clear() {
  mBuffer.Free();
  mBuffer.SetPayloadType(KrPayloadType::Image);
  mNumber = 0;
  mData = nullptr;
}

} // namespace krgui

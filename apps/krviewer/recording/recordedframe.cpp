#include "recording/recordedframe.h"

#include <cstring>

namespace krviewer {

std::size_t GetRecordedSize(const KrBuffer& aFrame) {
  const IKrImage* const image = aFrame.GetImage();
  return image && image->GetDataPointer() ? image->GetImageSize() : 0;
}

KrResult CopyFrame(const KrBuffer& aFrom, KrBuffer& aTo) {
  const IKrImage& image = *aFrom.GetImage();
  std::memcpy(aTo.GetDataPointer(), image.GetDataPointer(), image.GetImageSize());
  aTo.SetAcquiredSize(image.GetImageSize());
  aTo.SetStatus(aFrom.GetStatus());
  aTo.SetFrameID(aFrom.GetFrameID());
  aTo.SetTimestampNs(aFrom.GetTimestampNs());
  aTo.SetHostTimestampNs(aFrom.GetHostTimestampNs());
  return aTo.DescribeImage(image.GetWidth(), image.GetHeight(), image.GetPixelType(), image.GetPaddingX(),
                           image.GetPaddingY());
}

} // namespace krviewer

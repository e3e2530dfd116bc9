#include "rawframe.h"

#include "framedescription.h"

namespace krapps {

KrString GetSidecarName(const KrString& aFileName) {
  return aFileName + ".txt";
}

std::string DescribeRawFrame(const KrBuffer& aFrame, const FrameFileOptions& aOptions) {
  const IKrImage& image = *aFrame.GetImage();
  return DescribeFrame(aFrame, aOptions) + MakeLine("padding_x_bytes", std::to_string(image.GetPaddingX())) +
         MakeLine("padding_y_bytes", std::to_string(image.GetPaddingY())) +
         MakeLine("bytes", std::to_string(image.GetImageSize())) +
         MakeLine("byte_order", "little-endian"); // As the pixel format naming convention has it for every format.
}

} // namespace krapps

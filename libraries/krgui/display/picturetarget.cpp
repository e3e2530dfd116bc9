#include "display/picturetarget.h"

namespace krgui {

FrameTarget::Outcome PictureTarget::Draw(const Frame& aFrame, Times& aTimes) {
  const PixelRect& client = aFrame.view.clientRect;
  mPicture = QImage(client.GetWidth(), client.GetHeight(), QImage::Format_RGB32);
  if (mPicture.isNull())
    return Outcome::Dropped;
  const std::size_t rowPixels = static_cast<std::size_t>(mPicture.bytesPerLine()) / sizeof(std::uint32_t);
  const Canvas canvas = {
      {reinterpret_cast<std::uint32_t*>(mPicture.bits()), rowPixels}, mPicture.width(), mPicture.height()};
  mPainter.Draw(canvas, aFrame, mLook, false, aTimes);
  return Outcome::Shown;
}

} // namespace krgui

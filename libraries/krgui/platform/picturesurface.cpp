#include "platform/picturesurface.h"

#include "platform/surfaceextent.h"

#include <utility>

namespace krgui {

std::optional<DrawingSurface::Target> PictureSurface::Begin(std::int32_t aWidth, std::int32_t aHeight,
                                                            std::chrono::milliseconds) {
  mHasBegun = false;
  const SurfaceExtent extent = SurfaceExtent::Cut(aWidth, aHeight);
  if (extent.IsEmpty()) {
    return std::nullopt;
  }
  Picture& picture = mPictures[1 - mPresented];
  if (picture.image.size() != QSize(extent.width, extent.height)) {
    // Given up before there is another, so that both are never needed at once.
    picture.image = QImage();
    picture.image = QImage(extent.width, extent.height, QImage::Format_RGB32);
    picture.contentTag = 0;
  }
  // A copy that a paint has kept is parted from here; null where there is no memory for it.
  uchar* pixels = picture.image.bits();
  if (pixels == nullptr) {
    return std::nullopt;
  }
  mHasBegun = true;
  // The toolkit aligns every row to four bytes.
  const Canvas canvas = {{reinterpret_cast<std::uint32_t*>(pixels),
                          static_cast<std::size_t>(picture.image.bytesPerLine()) / sizeof(std::uint32_t)},
                         extent.width,
                         extent.height};
  return Target{canvas, std::exchange(picture.contentTag, 0)};
}

bool PictureSurface::Present(const PixelRect&, std::uint64_t aContentTag) {
  if (!std::exchange(mHasBegun, false)) {
    return false;
  }
  mPresented = 1 - mPresented;
  mPictures[mPresented].contentTag = aContentTag;
  mHasPresented = true;
  return true;
}

} // namespace krgui

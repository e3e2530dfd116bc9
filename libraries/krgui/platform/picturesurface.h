#pragma once
// The drawing surface where nobody but the toolkit draws into its windows: two pictures, one being drawn and one that
// the widget paints. Asking for that paint is left to the owner.

#include "platform/drawingsurface.h"

#include <QImage>

#include <array>

namespace krgui {

/// Thread: as DrawingSurface; the widget paints under the same lock.
class PictureSurface : public DrawingSurface {
public:
  SurfaceKind GetKind() const override { return SurfaceKind::Invalidation; }
  std::optional<Target> Begin(std::int32_t aWidth, std::int32_t aHeight, std::chrono::milliseconds aLimit) override;
  bool Present(const PixelRect& aRect, std::uint64_t aContentTag) override;
  const QImage* GetPicture() const override { return mHasPresented ? &mPictures[mPresented].image : nullptr; }

private:
  struct Picture {
    QImage image;
    std::uint64_t contentTag = 0;
  };

  std::array<Picture, 2> mPictures;
  std::size_t mPresented = 0; ///< The other one is drawn.
  bool mHasPresented = false;
  bool mHasBegun = false;
};

} // namespace krgui

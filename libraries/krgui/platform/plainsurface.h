#pragma once
// The drawing surface of an X server that cannot read our memory, one on another computer for example: two buffers
// whose pixels go through the connection. A writer does that; which surface is best is left to others.

#include "platform/drawingsurface.h"
#include "platform/plainputwriter.h"
#include "platform/surfaceextent.h"

#include <array>

namespace krgui {

/// Thread: as DrawingSurface.
class PlainSurface : public DrawingSurface {
public:
  /// Null when there is no memory, or no thread to be had.
  static std::unique_ptr<PlainSurface> Make(std::unique_ptr<WindowConnection> aConnection);

  SurfaceKind GetKind() const override { return SurfaceKind::PlainPut; }
  std::optional<Target> Begin(std::int32_t aWidth, std::int32_t aHeight, std::chrono::milliseconds aLimit) override;
  bool Present(const PixelRect& aRect, std::uint64_t aContentTag) override;
  bool IsLost() const override { return mWriter->IsLost(); }

private:
  struct Buffer {
    std::unique_ptr<std::uint32_t[]> pixels;
    std::size_t size = 0; ///< In bytes.
    SurfaceExtent extent;
    std::uint64_t contentTag = 0;
  };

  explicit PlainSurface(std::unique_ptr<PlainPutWriter> aWriter);
  static bool FitMemory(Buffer& aBuffer, const SurfaceExtent& aExtent);

  std::array<Buffer, PlainPutWriter::kSlots> mBuffers;
  std::size_t mLatest = 0; ///< The buffer last begun.
  bool mHasBegun = false;
  const std::unique_ptr<PlainPutWriter> mWriter; ///< Ends before the buffers that it reads.
};

} // namespace krgui

#include "platform/plainsurface.h"

#include <new>
#include <utility>

namespace krgui {

std::unique_ptr<PlainSurface> PlainSurface::Make(std::unique_ptr<WindowConnection> aConnection) {
  auto writer = PlainPutWriter::Make(std::move(aConnection));
  return writer ? std::unique_ptr<PlainSurface>(new PlainSurface(std::move(writer))) : nullptr;
}

PlainSurface::PlainSurface(std::unique_ptr<PlainPutWriter> aWriter) : mWriter(std::move(aWriter)) {}

std::optional<DrawingSurface::Target> PlainSurface::Begin(std::int32_t aWidth, std::int32_t aHeight,
                                                          std::chrono::milliseconds aLimit) {
  const SurfaceExtent extent = SurfaceExtent::Cut(aWidth, aHeight);
  mHasBegun = false;
  const auto free = extent.IsEmpty() ? std::nullopt : mWriter->AwaitFree(mLatest, aLimit);
  if (!free || !FitMemory(mBuffers[*free], extent)) {
    return std::nullopt;
  }
  mLatest = *free;
  mHasBegun = true;
  Buffer& buffer = mBuffers[mLatest];
  const Canvas canvas = {{buffer.pixels.get(), extent.GetRowPixels()}, extent.width, extent.height};
  return Target{canvas, std::exchange(buffer.contentTag, 0)};
}

bool PlainSurface::Present(const PixelRect& aRect, std::uint64_t aContentTag) {
  if (!std::exchange(mHasBegun, false) || IsLost()) {
    return false;
  }
  Buffer& buffer = mBuffers[mLatest];
  buffer.contentTag = aContentTag;
  const PixelRect part = buffer.extent.Clip(aRect);
  if (!part.IsEmpty()) {
    mWriter->Write(mLatest, {buffer.pixels.get(), buffer.extent.GetRowPixels(), part});
  }
  return true;
}

// Gives a buffer that is free memory for so many pixels, and says whether that was to be had.
bool PlainSurface::FitMemory(Buffer& aBuffer, const SurfaceExtent& aExtent) {
  if (std::exchange(aBuffer.extent, aExtent) != aExtent) {
    aBuffer.contentTag = 0;
  }
  const std::size_t size = ChooseSurfaceMemory(aExtent.GetSize(), aBuffer.size);
  if (size != aBuffer.size) {
    aBuffer.pixels.reset();
    aBuffer.pixels.reset(new (std::nothrow) std::uint32_t[size / sizeof(std::uint32_t)]);
    aBuffer.size = aBuffer.pixels ? size : 0;
    aBuffer.contentTag = 0;
  }
  return aBuffer.pixels != nullptr;
}

} // namespace krgui

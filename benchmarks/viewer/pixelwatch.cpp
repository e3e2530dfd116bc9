#include "pixelwatch.h"

#include <chrono>

namespace benchmarks {

PixelWatch::PixelWatch(ScreenPoint aPoint)
    : mPoint(aPoint), mThread([this](const std::stop_token& aStop) { Watch(aStop); }) {}

void PixelWatch::Watch(const std::stop_token& aStop) {
  const DisplayScreen screen;
  std::uint32_t last = screen.ReadPixel(mPoint);
  while (!aStop.stop_requested()) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const std::uint32_t now = screen.ReadPixel(mPoint);
    mChanges += now != last ? 1 : 0;
    last = now;
  }
}

} // namespace benchmarks

#pragma once
// Counts the pictures that a viewer shows by what an onlooker sees: the colour of one pixel of the screen, which is
// another in each picture of the camera. The same for every viewer, whatever it says itself.

#include "display/displayscreen.h"

#include <atomic>
#include <cstdint>
#include <thread>

namespace benchmarks {

/// Looks every millisecond, as far as the machine lets it, on a thread and a connection of its own: what changed twice
/// between two looks counts once.
class PixelWatch {
public:
  explicit PixelWatch(ScreenPoint aPoint);

  /// How often another colour was seen than at the look before.
  std::uint64_t CountChanges() const { return mChanges; }

private:
  void Watch(const std::stop_token& aStop);

  const ScreenPoint mPoint;
  std::atomic<std::uint64_t> mChanges = 0;
  std::jthread mThread;
};

} // namespace benchmarks

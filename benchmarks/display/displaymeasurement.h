#pragma once
// How a way to show frames is measured, the same for all: frames of a ring as fast as they are taken, and the processor
// time of this process and of the X server together. Each way is a process of its own.

#include "displaycase.h"

#include <cstddef>
#include <cstdint>

namespace benchmarks {

/// A way to put frames onto the screen.
class FrameShower {
public:
  FrameShower() = default;
  virtual ~FrameShower() = default;
  FrameShower(const FrameShower&) = delete;
  FrameShower& operator=(const FrameShower&) = delete;

  virtual void Show(std::size_t aFrame) = 0;
  /// How many frames were painted so far, each counted once; those that were given and never painted are not.
  virtual std::uint64_t GetShown() const = 0;
};

/// The case of the command line; ends the process where it names none.
DisplayCase TakeCase(int aArgumentCount, char** aArguments);

/// Shows every frame of the ring once and looks for it on the screen, then measures runs of frames and prints
///   cpu_ms_per_frame frames_per_second
/// as their medians. Ends the process with a text where a frame is not on the screen or was not counted.
void MeasureAndPrint(FrameShower& aShower);

} // namespace benchmarks

#pragma once
// Who hears of a camera's frames: figures, graphs, recordings. What is done with a frame is left to each.

#include "krbase/kreventsinks.h"
#include "krbuffer/krbuffer.h"

#include <cstdint>

namespace krviewer {

/// Thread: called on the thread that takes the frames, which takes no other meanwhile: what takes long is done
/// elsewhere.
class FrameSink {
public:
  virtual ~FrameSink() = default;
  /// A frame came, whole or not, at a time in nanoseconds of a steady clock. It is lent for the call.
  virtual void OnFrame(const KrBuffer& aFrame, std::uint64_t aArrivalNs) = 0;
  /// Frames follow, from now on of another acquisition.
  virtual void OnAcquisitionStarted() {}
  /// No frame follows, as the acquisition was stopped, or ended by itself for this reason.
  virtual void OnAcquisitionEnded([[maybe_unused]] const KrResult& aReason) {}
};

using FrameSinks = KrEventSinks<FrameSink>;

} // namespace krviewer

#pragma once
// The whole frame that came last, kept for whoever wants to have it: also of a camera that was stopped, or that waits
// for its trigger. What is done with it is left to others.

#include "acquisition/framesink.h"

#include <memory>
#include <mutex>

namespace krviewer {

/// Thread: Get from any; the rest on the thread that takes the frames.
/// Ownership: frames are shared, and stay as they are.
class NewestFrame : public FrameSink {
public:
  /// Null before the first one.
  std::shared_ptr<const KrBuffer> Get() const;

  /// Copies whole frames that are images; others leave the one before.
  void OnFrame(const KrBuffer& aFrame, std::uint64_t aArrivalNs) override;

private:
  std::shared_ptr<KrBuffer> FindRoom(std::size_t aBytes);

  mutable std::mutex mMutex; ///< Guards the newest frame.
  std::shared_ptr<KrBuffer> mNewest;
  std::shared_ptr<KrBuffer> mSpare; ///< The one before, to be written to when nobody reads it.
};

} // namespace krviewer

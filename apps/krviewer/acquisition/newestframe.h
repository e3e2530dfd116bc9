#pragma once
// The whole frame that came last, kept for whoever wants to have it: also of a camera that was stopped, or that waits
// for its trigger. What is done with it is left to others.

#include "krbuffer/krbuffer.h"

#include <memory>
#include <mutex>

namespace krviewer {

/// Nothing is copied before somebody asks.
///
/// Thread: Take and Detach on the thread that takes the frames; the rest on any.
/// Ownership: shares a frame until the next one or Detach, as the frame's memory may be its stream's.
class NewestFrame {
public:
  bool HasFrame() const;
  /// A frame that stays as it is; null before the first one, and where there is too little memory for it.
  std::shared_ptr<const KrBuffer> Get() const;

  /// Shares whole frames that are images; others leave the one before.
  void Take(const std::shared_ptr<const KrBuffer>& aFrame);
  /// Goes on with a copy of the frame.
  void Detach();

private:
  void Exchange(std::shared_ptr<const KrBuffer> aFrame, bool aIsCopy);

  mutable std::mutex mMutex; ///< Guards both.
  std::shared_ptr<const KrBuffer> mNewest;
  bool mIsCopy = false; ///< It is nobody's memory but this one's.
};

} // namespace krviewer

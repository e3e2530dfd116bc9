#pragma once
// Parts of frames for graphs: the thread that takes the frames copies one part when it is asked to, and nothing
// otherwise. What is made of a part is left to who takes it, on a thread of its own.

#include "acquisition/framesink.h"
#include "panels/imagecutout.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>

namespace krviewer {

/// A part of one frame, and what is to be said of that.
struct Snapshot {
  CutoutRequest request;   ///< What was asked for.
  KrResult result;         ///< Why there are no pixels.
  KrBuffer pixels;         ///< The part as an image of its own.
  Cutout cutout;           ///< Where the part lies in the frame.
  std::uint32_t width = 0; ///< Of the whole frame.
  std::uint32_t height = 0;
  std::uint64_t frameID = 0;
  bool isWhole = true; ///< Whether nothing of the frame was lost on its way.
};

/// A frame that comes a good while after the one before is copied as a whole where a line or column was asked for, so
/// that other ones can be looked at although no frame comes.
///
/// Thread: Ask and Take on one thread, OnFrame on another; neither waits for what the other computes.
class FrameSnapshots : public FrameSink {
public:
  /// Has this part of the next frame copied. What is there and was not taken is replaced by it.
  void Ask(const CutoutRequest& aRequest);
  /// Has nothing copied any more.
  void AskNothing() { mIsAsked = false; }
  /// Gives the part that was copied since the last call, by exchanging it; false where none was.
  bool Take(Snapshot& aSnapshot);
  /// How many frames a part was copied of.
  std::uint64_t GetCopied() const { return mCopied; }

  void OnFrame(const KrBuffer& aFrame, std::uint64_t aArrivalNs) override;

private:
  std::atomic<bool> mIsAsked = false;
  std::atomic<std::uint64_t> mCopied = 0;
  Snapshot mCopying; ///< Of the thread that takes the frames, as is the next one.
  std::optional<std::uint64_t> mLastArrivalNs;
  std::mutex mMutex; ///< Guards the members from here on, never for longer than an exchange.
  CutoutRequest mRequest;
  Snapshot mReady;
  bool mHasReady = false;
};

} // namespace krviewer

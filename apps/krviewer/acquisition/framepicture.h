#pragma once
// The frames of a stream in a display window, which shows them from the stream's own memory, and the text over them.
// Taking frames is left to the acquisition.

#include "acquisition/newestframe.h"
#include "krdevice/krstream.h"
#include "krgui/krdisplaywnd.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

namespace krviewer {

/// Thread: the acquisition's, or another one while that does not run; SetWanted and IsWanted any.
/// Ownership: borrows the window, the newest frame's keeper and, from Show to LetGo, the frames and their stream.
class FramePicture {
public:
  /// aHasText has rates, and the reason of a loss, drawn over the picture. aNewest shares the frames; it may be null.
  FramePicture(KrDisplayWnd& aWindow, bool aHasText, NewestFrame* aNewest)
      : mWindow(aWindow), mHasText(aHasText), mNewest(aNewest) {}
  ~FramePicture();
  FramePicture(const FramePicture&) = delete;
  FramePicture& operator=(const FramePicture&) = delete;

  /// Whether frames are displayed; true when that is new.
  bool SetWanted(bool aIsWanted) { return mIsWanted.exchange(aIsWanted) != aIsWanted; }
  bool IsWanted() const { return mIsWanted; }

  /// Takes a frame, which goes back to its stream when neither the window nor this shows it any more, and displays it
  /// where that is wanted; whether it did. A frame that cannot be shown is told in the log and, by its absence, in the
  /// picture. aMakeText gives the text over it, and is asked some times a second.
  bool Show(KrStream& aStream, KrBuffer& aFrame, std::uint64_t aNowNs, const std::function<KrString()>& aMakeText);
  /// Displays the frame that was taken last again, with the reason over it that it is the last.
  void ShowLatest(const KrResult& aReason);
  /// The frames' memory goes: the window goes on with a copy of the latest. Returns when nobody reads any frame.
  void LetGo();

private:
  std::shared_ptr<const KrBuffer> Hold(KrStream& aStream, KrBuffer& aFrame);
  bool IsAnyHeld() const;

  KrDisplayWnd& mWindow;
  const bool mHasText;
  NewestFrame* const mNewest;
  std::atomic<bool> mIsWanted = true;
  std::shared_ptr<const KrBuffer> mLatest;
  std::uint64_t mTextNs = 0; ///< When the text was written last; 0 before the first frame of a stream.

  mutable std::mutex mMutex; ///< Guards the count.
  std::condition_variable mGivenBack;
  std::size_t mHeld = 0; ///< Frames that are not the stream's.
};

} // namespace krviewer

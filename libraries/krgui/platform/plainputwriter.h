#pragma once
// A thread that sends pixels through a connection, so that a server that stops reading stops nobody else. Whose pixels
// they are, and in which memory, is left to the surface.

#include "logic/pixelrect.h"
#include "platform/surfaceextent.h"
#include "platform/windowconnection.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace krgui {

/// Thread: any, one at a time.
class PlainPutWriter {
public:
  /// Pixels of a slot, to be sent to the same place in the window. They stay untouched until the slot is free.
  struct Part {
    const std::uint32_t* pixels = nullptr; ///< The window's upper left one.
    std::size_t rowPixels = 0;             ///< From one row's begin to the next.
    PixelRect rect;
  };
  static constexpr std::size_t kSlots = 2;

  /// Null when there is no memory, or no thread to be had.
  static std::unique_ptr<PlainPutWriter> Make(std::unique_ptr<WindowConnection> aConnection);
  /// Ends the connection, and with it every wait for the server.
  ~PlainPutWriter();
  PlainPutWriter(const PlainPutWriter&) = delete;
  PlainPutWriter& operator=(const PlainPutWriter&) = delete;

  /// A slot that the server has read all of, aPreferred if it can be had. Waits up to aLimit, but not again after a
  /// limit has passed until the server has gone on.
  std::optional<std::size_t> AwaitFree(std::size_t aPreferred, std::chrono::milliseconds aLimit);
  /// Sends the pixels of a slot that is free.
  void Write(std::size_t aSlot, const Part& aPart);
  bool IsLost() const;

private:
  struct Job {
    std::size_t slot = 0;
    Part part;
  };

  PlainPutWriter(std::unique_ptr<WindowConnection> aConnection, std::unique_ptr<std::uint32_t[]> aBlock,
                 std::size_t aBlockPixels);
  void Run();
  std::optional<Part> AwaitPart();
  void Finish(bool aHasArrived);
  bool Send(const Part& aPart);
  void SendBlocks(const Part& aPart, std::int32_t aWidth, std::int32_t aHeight, std::uint32_t aDrawable);
  void SendBlock(const Part& aPart, const PixelRect& aRect, std::uint32_t aDrawable);
  std::uint32_t FitStage(const PixelRect& aRect);
  std::optional<std::size_t> FindFree(std::size_t aPreferred) const;

  const std::unique_ptr<WindowConnection> mConnection;
  const std::unique_ptr<std::uint32_t[]> mBlock; ///< What goes into one request, its rows one after the other.
  const std::size_t mBlockPixels;
  /// Where the server gathers what needs several requests, so that nobody sees a part of it; 0 for none yet.
  std::uint32_t mStage = 0;
  SurfaceExtent mStageExtent;

  mutable std::mutex mMutex; ///< Guards what follows up to the thread.
  std::condition_variable mHasChanged;
  std::array<Job, kSlots> mJobs; ///< The first is being sent.
  std::size_t mJobCount = 0;
  bool mIsStalled = false;
  bool mIsLost = false;
  bool mIsEnding = false;

  std::thread mThread;
};

} // namespace krgui

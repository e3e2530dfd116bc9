#pragma once
// The drawing surface of an X server on this computer: two buffers in memory that the server reads. What is drawn into
// them, and what is done where the server cannot read them, is left to others.

#include "platform/drawingsurface.h"
#include "platform/sharedmemory.h"
#include "platform/surfaceextent.h"
#include "platform/windowconnection.h"

#include <array>
#include <atomic>

namespace krgui {

/// Thread: as DrawingSurface.
class SharedSurface : public DrawingSurface {
public:
  /// A surface of one of the two shared kinds. Null when the server cannot read our memory, or does not answer until
  /// aEnd.
  static std::unique_ptr<SharedSurface> Make(std::unique_ptr<WindowConnection> aConnection, SurfaceKind aKind,
                                             WindowConnection::TimePoint aEnd);

  SurfaceKind GetKind() const override { return mKind; }
  std::optional<Target> Begin(std::int32_t aWidth, std::int32_t aHeight, std::chrono::milliseconds aLimit) override;
  bool Present(const PixelRect& aRect, std::uint64_t aContentTag) override;
  bool IsLost() const override { return mIsLost; }

private:
  struct Buffer {
    SharedMemory memory;
    SurfaceExtent extent;
    std::uint64_t contentTag = 0;
    std::uint32_t segment = 0; ///< The server's number for the memory; the same for each memory that the buffer has.
    bool isAttached = false;   ///< The server has the memory.
    bool isInFlight = false;   ///< It was sent, and the server has not said yet that it has read it.
  };

  SharedSurface(std::unique_ptr<WindowConnection> aConnection, SurfaceKind aKind);
  bool LearnExtension(WindowConnection::TimePoint aEnd);
  bool IsMemoryShared(WindowConnection::TimePoint aEnd);
  SharedMemory MakeMemory(std::size_t aSize) const;
  void Attach(Buffer& aBuffer);
  void Detach(Buffer& aBuffer);
  bool FitMemory(Buffer& aBuffer, const SurfaceExtent& aExtent);
  Buffer* AwaitFree(std::chrono::milliseconds aLimit);
  Buffer* FindFree();
  void TakeEvents();
  void OnCompletion(std::uint32_t aSegment);

  const std::unique_ptr<WindowConnection> mConnection;
  const SurfaceKind mKind;
  std::uint8_t mCompletionType = 0; ///< The number of the event that tells that a buffer was read.
  std::array<Buffer, 2> mBuffers;
  std::size_t mLatest = 0;  ///< The buffer last presented, or begun.
  Buffer* mBegun = nullptr; ///< What Present will send.
  bool mIsStalled = false;  ///< The server has let a limit pass and said nothing since.
  std::atomic<bool> mIsLost = false;
};

} // namespace krgui

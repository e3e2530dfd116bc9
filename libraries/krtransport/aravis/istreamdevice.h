#pragma once
// What a buffer source needs of an open device. How a stream channel is set up for the device's kind of link is decided
// behind it; buffers, order and waits are left to the source.

#include "aravis/gobjectpointer.h"
#include "krbase/krresult.h"
#include "krbuffer/krbuffer.h"
#include "krsystem/hostfeature.h"

#include <cstdint>
#include <functional>

namespace krtransport {

/// What a receiver counts beside the frames that it hands over.
struct PacketFigures {
  std::uint64_t missingPackets = 0; ///< That did not come in time, whether or not a resend brought them.
  std::uint64_t resentPackets = 0;  ///< That came after a resend was asked for.
  std::uint64_t droppedFrames = 0;  ///< For which there was no buffer.
};

/// Lets others use a stream that its owner may end at any time.
///
/// Thread: any.
class IStreamUse {
public:
  virtual ~IStreamUse() = default;
  /// Calls aUse with the stream, which stays until that returns; false, without a call, while there is none. aUse
  /// asks or sets the stream, and calls nothing of the owner's.
  virtual bool Use(const std::function<void(ArvStream&)>& aUse) = 0;
};

/// Thread: the link's I/O thread alone; calls block as long as the device's protocol makes them.
class IStreamDevice {
public:
  virtual ~IStreamDevice() = default;

  /// How many bytes one frame takes as the device is set up now.
  virtual KrResult GetPayloadSize(std::uint64_t& aBytes) = 0;
  /// Opens the stream channel for frames of a size. The stream emits signals and has no buffers yet.
  virtual KrResult CreateStream(std::uint64_t aPayloadBytes, StreamPointer& aStream) = 0;
  /// Starts acquisition. What a frame's size depends on is locked by others, before.
  virtual KrResult StartAcquisition() = 0;
  /// Stops acquisition.
  virtual KrResult StopAcquisition() = 0;
  /// Whether the device answers, asked before calls that take long with a dead one; within about half a second. Any
  /// thread.
  virtual bool Answers() { return true; }
  /// How the device writes the numbers of its chunks. Any thread.
  virtual KrByteOrder GetChunkByteOrder() const { return KrByteOrder::LittleEndian; }
  /// What the receiver counted for a stream that CreateStream opened and that lives. Any thread.
  virtual PacketFigures GetPacketFigures([[maybe_unused]] ArvStream& aStream) const { return {}; }
  /// The features of the receiver, of the stream that aStream lets be used. They are used as long as both live. Any
  /// thread.
  virtual krsystem::HostFeatures ListStreamFeatures([[maybe_unused]] IStreamUse& aStream) { return {}; }
  /// A stream that CreateStream opened can be used by others from now on, and has no buffers yet. Any thread.
  virtual void OnStreamOpened([[maybe_unused]] ArvStream& aStream) {}
  /// No others can use the stream any more; it ends next. Any thread.
  virtual void OnStreamEnding([[maybe_unused]] ArvStream& aStream) {}
  /// Puts back what CreateStream changed on the device, after the stream was released or its start failed. A device
  /// that is lost is not spoken to.
  virtual void OnStreamReleased([[maybe_unused]] bool aIsLost) {}
};

} // namespace krtransport

#pragma once
// Frames of a device: a set of buffers that go round between the device and the application.
// What is done with a frame is left to the application, how it arrives to the device's link.

#include "krbase/krresult.h"
#include "krbuffer/krbuffer.h"

#include <cstddef>
#include <cstdint>
#include <memory>

class KrDevice;

/// What a stream counted since it was started.
struct KrStreamStatistics {
  std::uint64_t received = 0;       ///< Frames that came whole.
  std::uint64_t incomplete = 0;     ///< Frames of which a part never came.
  std::uint64_t missingPackets = 0; ///< Packets that did not come in time.
  std::uint64_t resentPackets = 0;  ///< Packets that came after a resend was asked for.
  std::uint64_t discarded = 0;      ///< Frames dropped for want of a free buffer.
  std::uint64_t bytes = 0;          ///< Payload bytes of the frames received.
};

/// A stream of frames.
///
/// Thread: Start and Stop one at a time; Retrieve, Release and GetStatistics from any thread.
/// Ownership: borrows the device, which must outlive it; owns the buffers, which are lent between Retrieve and Release.
///
///     KrStream stream(*device);
///     if (stream.Start().IsOK()) {
///       KrBuffer* buffer = nullptr;
///       while (stream.Retrieve(buffer, 1000).IsOK()) {
///         KrResult shown = window.Display(*buffer, false);
///         KrResult released = stream.Release(buffer);
///       }
///     }
class KR_EXPORT KrStream {
public:
  /// A stream of a channel with a number of buffers between 2 and 1024 (others are moved to the nearer end).
  explicit KrStream(KrDevice& aDevice, std::size_t aBufferCount = 16, std::uint32_t aChannel = 0);
  /// Stops.
  ~KrStream();
  KrStream(const KrStream&) = delete;
  KrStream& operator=(const KrStream&) = delete;

  /// Allocates the buffers at the device's present payload size and starts acquisition. WrongState when it runs
  /// already, NotSupported for a device without that channel, SystemError when memory does not suffice.
  KrResult Start();
  /// Takes the next frame, in the order of arrival, waiting up to aTimeoutMs milliseconds (0 does not wait).
  /// The buffer's status says whether it is whole. Without one: TimeLimitExceeded, Aborted when the stream is stopped
  /// or stops meanwhile, ConnectionLost at once when the device is lost.
  KrResult Retrieve(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs);
  /// Gives a buffer back to be filled again. InvalidInput for one that was not lent by this stream. After Stop it does
  /// nothing and succeeds.
  KrResult Release(KrBuffer* aBuffer);
  /// Stops acquisition; waiting calls of Retrieve return. Buffers still lent stay readable until the next Start or the
  /// stream's destruction. Stopping what is stopped does nothing.
  void Stop();
  bool IsRunning() const;
  /// The counters of the running stream, or of the last one.
  KrStreamStatistics GetStatistics() const;

private:
  struct Body;
  std::unique_ptr<Body> mBody;
};

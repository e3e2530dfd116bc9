#pragma once
// Frames of a device: a set of buffers that go round between the device and the application.
// What is done with a frame is left to the application, how it arrives to the device's link.

#include "krbase/krresult.h"
#include "krbuffer/krbuffer.h"

#include <cstddef>
#include <cstdint>
#include <memory>

class KrDevice;
class KrGenParameterArray;

/// What a stream counted since it was started.
struct KrStreamStatistics {
  std::uint64_t received = 0;       ///< Frames that came whole.
  std::uint64_t incomplete = 0;     ///< Frames of which a part never came.
  std::uint64_t missingPackets = 0; ///< Packets that did not come in time.
  std::uint64_t resentPackets = 0;  ///< Packets that came after a resend was asked for.
  std::uint64_t discarded = 0;      ///< Frames dropped for want of a free buffer.
  std::uint64_t bytes = 0;          ///< Payload bytes of the frames received.
  /// Frames of which nothing came: the numbers that the frames retrieved skip, without those of discarded frames. A
  /// device that begins its numbers anew loses nothing by that.
  std::uint64_t missingFrames = 0;
  std::uint64_t shown = 0; ///< Frames that were shown, as CountShown was told.
};

/// A stream of frames.
///
/// Thread: Start and Stop one at a time; all else from any thread.
/// Ownership: borrows the device, which must outlive it; owns the buffers, which are lent between Retrieve and Release.
///
///     KrStream stream(*device);
///     if (stream.Start().IsOK()) {
///       KrBuffer* buffer = nullptr;
///       while (stream.Retrieve(buffer, 1000).IsOK()) {
///         if (window.Display(*buffer, false).IsOK())
///           stream.CountShown();
///         KrResult released = stream.Release(buffer);
///       }
///     }
class KR_EXPORT KrStream {
public:
  /// A stream of a channel with a number of buffers between 2 and 1024 (others are moved to the nearer end), which
  /// StreamBufferCountManual of its parameters changes.
  explicit KrStream(KrDevice& aDevice, std::size_t aBufferCount = 16, std::uint32_t aChannel = 0);
  /// Stops.
  ~KrStream();
  KrStream(const KrStream&) = delete;
  KrStream& operator=(const KrStream&) = delete;

  /// Allocates the buffers at the device's present payload size and starts acquisition. What a frame's size depends on
  /// is locked until the device's last stream has stopped (GenApi, TLParamsLocked); a device whose description cannot
  /// be read streams all the same. WrongState when it runs already, Busy while another stream of this channel runs,
  /// NotSupported for a device without that channel, InvalidInput or BadData for a payload size that cannot be,
  /// SystemError when memory does not suffice; as the device answers ConnectionLost, TimeLimitExceeded, AccessDenied or
  /// ProtocolError.
  KrResult Start();
  /// Takes the next frame, in the order of arrival, waiting up to aTimeoutMs milliseconds (0 does not wait). Of several
  /// threads one at a time waits at the device; the others, within their own limits, for their turn.
  /// The buffer's status says whether it is whole, its payload type what it is; both come as the device sent them.
  /// An incomplete frame has the size of the last whole one; before the first whole one it is raw data.
  /// Without a buffer: TimeLimitExceeded, Aborted when the stream is stopped or stops meanwhile and when Cancel is
  /// called meanwhile, ConnectionLost at once when the device is lost.
  KrResult Retrieve(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs);
  /// Ends the waits of the moment: calls of Retrieve that have begun return at once, with Aborted where no frame was
  /// there. One that begins after Cancel has returned waits as ever. The stream goes on.
  void Cancel();
  /// Gives a buffer back to be filled again. InvalidInput for one that was not lent by this stream. After Stop it does
  /// nothing and succeeds. Null is InvalidInput.
  KrResult Release(KrBuffer* aBuffer);
  /// Stops acquisition; waiting calls of Retrieve return. Buffers still lent stay readable until the next Start or the
  /// stream's destruction. Stopping what is stopped does nothing. With a device that is dead it takes as
  /// long as its transport's calls, seconds with GigE Vision.
  void Stop();
  /// Whether it was started and not stopped since. Thread: any.
  bool IsRunning() const;
  /// Counts a frame that was shown; to be called by whoever shows the stream's frames.
  void CountShown();
  /// The counters of the running stream, or of the last one. While it runs none of them decreases, and no more frames
  /// are shown than arrived.
  KrStreamStatistics GetStatistics() const;
  /// Gives the stream's own parameters, before, while and after it runs: its buffers, its counters (as GetStatistics
  /// has them, with polling times and a command to begin anew), and what its receiver can be set to, for example how
  /// lost packets are asked for again. What is set holds for the stream of the moment, unless it is locked while one
  /// runs, and for later ones of the same channel until the device is closed; nothing is locked by the device's own
  /// lock. The first call makes the array, further ones give the same. It belongs to the stream; accesses end before
  /// the stream is destroyed. NotSupported for a device without the stream's channel.
  KrResult GetParameters(KrGenParameterArray*& aParameters);

private:
  struct Body;
  std::unique_ptr<Body> mBody;
};

#pragma once
// What an open device gives, whatever it is connected by: registers, sources of buffers, byte channels, word of its
// loss. What the registers mean is the parameter array's business; which buffers a stream uses is KrStream's.

#include "krbase/krresult.h"
#include "krbuffer/krbuffer.h"
#include "krgenicam/ikrregisterport.h"
#include "krgenicam/krgendescription.h"
#include "krsystem/hostfeature.h"
#include "krsystem/ibytechannel.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stop_token>

namespace krsystem {

/// What a source of buffers counted since it was started.
struct SourceStatistics {
  std::uint64_t received = 0;       ///< Frames that came whole.
  std::uint64_t incomplete = 0;     ///< Frames of which a part never came.
  std::uint64_t missingPackets = 0; ///< Packets that did not come in time, whether or not a resend brought them.
  std::uint64_t resentPackets = 0;  ///< Packets that came after a resend was asked for.
  std::uint64_t discarded = 0;      ///< Frames dropped for want of a free buffer.
  std::uint64_t bytes = 0;          ///< Payload bytes of the frames received.
};

/// Where a source's buffers are.
struct SourceBuffers {
  std::size_t empty = 0;  ///< Wait to be filled, or are being filled.
  std::size_t filled = 0; ///< Wait to be retrieved.
};

/// A device's stream channel: takes empty buffers, gives filled ones.
///
/// Thread: Queue, Retrieve and GetStatistics from any thread; GetPayloadSize, Start and Stop one at a time.
/// Ownership: belongs to its link; buffers are borrowed between Queue and Retrieve or Stop.
class KR_EXPORT IBufferSource {
public:
  virtual ~IBufferSource() = default;

  /// Asks the device how many bytes one frame takes as it is set up now.
  virtual KrResult GetPayloadSize(std::uint64_t& aBytes) = 0;
  /// Hands over an empty buffer of at least the payload's size. WrongState after the device was lost.
  virtual KrResult Queue(KrBuffer* aBuffer) = 0;
  /// Opens the stream channel and starts acquisition. Counters start at 0. What a frame's size depends on is
  /// kept from changing by KrStream.
  virtual KrResult Start() = 0;
  /// Takes the next filled buffer, waiting up to aTimeoutMs milliseconds (0 does not wait). OK with a buffer, whose
  /// status says whether it is whole; without one TimeLimitExceeded, Aborted after Stop and at once when aCancel is
  /// stopped, or ConnectionLost at once when the device is lost.
  virtual KrResult Retrieve(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs, const std::stop_token& aCancel = {}) = 0;
  /// Stops acquisition and gives up every buffer: afterwards no thread of the source touches one. Waiting calls of
  /// Retrieve return Aborted. Ends within the link's time limits even when the device is dead. Stopping what is stopped
  /// does nothing.
  virtual void Stop() = 0;
  /// The counters since the last start; they stay as they are from the stop on. None decreases in between.
  virtual SourceStatistics GetStatistics() const = 0;
  /// Where the buffers are at the moment; nowhere while it is stopped. Any thread.
  virtual SourceBuffers CountBuffers() const { return {}; }
  /// The receiver's own settings and counters. What is set holds from then on, beyond stop and start; what can be set
  /// while frames come has effect at once. The functions may be called as long as the source lives. Any thread.
  virtual HostFeatures ListFeatures() { return {}; }
};

/// Hears of a device's loss and return.
///
/// Thread: called on a thread of the link, never on the caller's of another operation; a sink may call anything but
/// what destroys the link.
class KR_EXPORT IDeviceLinkSink {
public:
  virtual ~IDeviceLinkSink() = default;
  /// The device does not answer any more; aReason says how that showed.
  virtual void OnLinkLost(const KrResult& aReason) = 0;
  /// A device that was lost answers again. It has to be opened anew.
  virtual void OnLinkBack() = 0;
};

/// An open device.
///
/// Thread: any, but for destruction.
/// Ownership: the opener's; register port and buffer source end with it. Destruction gives control back and waits for
/// what still runs, within the transport's own time limits.
class KR_EXPORT IDeviceLink {
public:
  virtual ~IDeviceLink() = default;

  /// The device's registers; they live as long as the link.
  virtual IKrRegisterPort& GetRegisterPort() = 0;
  /// The stream channel of a number, or null where the device has none of that number.
  virtual IBufferSource* GetBufferSource(std::uint32_t aChannel) = 0;
  /// Which registers say where the device's description is.
  virtual KrGenBootstrap GetBootstrap() const = 0;
  /// The byte channel of a serial port's number (0 and 1 for the UARTs, 2 to 9 for the bulk ports), or null where the
  /// device has none of that number.
  virtual std::shared_ptr<IByteChannel> GetByteChannel([[maybe_unused]] std::uint32_t aNumber) { return nullptr; }
  /// What there is to see and to set of the connection. The functions may be called as long as the link lives.
  virtual HostFeatures ListFeatures() { return {}; }
  /// Stops streams and gives control of the device back at once, as when the process is about to end: others can take
  /// it without waiting for a heartbeat to run out. Afterwards the device counts as lost for this link, without word of
  /// it. Ends within the transport's own time limits; does nothing for a link without control. It comes while the
  /// process ends, perhaps after static objects were destroyed: what it uses must not be one of them.
  virtual void GiveBackControl() = 0;
  /// False once the device is lost.
  virtual bool IsConnected() const = 0;
  /// Sets who hears of loss and return; null for nobody. Returns when no call of the former sink is running on another
  /// thread.
  virtual void SetSink(IDeviceLinkSink* aSink) = 0;
};

} // namespace krsystem

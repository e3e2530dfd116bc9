#pragma once
// The host's side of a serial bridge: a tty, a pseudo-terminal of our own, or a program that uses the Camera Link
// serial functions. What comes from it and goes to it is the bridge's business.

#include "krbase/krresult.h"
#include "krserial/krserialportconfiguration.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <vector>

namespace krserial {

/// What a host's end asks about the device's port, and of it.
struct DevicePortSpeed {
  std::vector<std::uint32_t> supported = {}; ///< None where the device cannot say.
  std::uint32_t current = 0;                 ///< In baud; 0 where it is not known.
};

/// The host's side of a bridge.
///
/// Thread: Read on one thread, Write on another, both at the same time; the rest from any. A stop of a token ends a
/// waiting call at once, with Aborted.
/// Ownership: the bridge's.
class IHostEnd {
public:
  virtual ~IHostEnd() = default;

  /// Waits for bytes and takes at most aSize of them. ConnectionLost when the port has gone, SystemError as the system
  /// says.
  virtual KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, const std::stop_token& aStop) = 0;
  /// Gives all bytes, waiting for room. aWritten says how many were taken, also on failure. Results as of Read. While
  /// nobody is at the other end the bytes wait, 64 KiB at most, and the oldest are dropped; without a far end that
  /// could come, and where one is to start empty, they are dropped at once.
  virtual KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                         const std::stop_token& aStop) = 0;
  /// Whether the end wants to know when the device has nothing more to read, and learns it.
  virtual bool AsksForEmptiness() const { return false; }
  virtual void TellEmpty() {}
  /// Called in Recover with what keeps the end from being had, whenever that is something else.
  using TellHindrance = std::function<void(const KrResult& aHindrance)>;
  /// Waits until the end that was lost can be had again, and takes it. OK, or Aborted.
  virtual KrResult Recover(const std::stop_token& aStop, const TellHindrance& aTell) = 0;

  /// Sets how the host's port is set; NotSupported where it cannot be set so, and nothing changes. OK for an end that
  /// has no such settings.
  virtual KrResult Configure(const KrSerialPortConfiguration& aConfiguration) = 0;

  /// Called, on a thread of the end's or in Read, when the other end asks for a speed; it answers what became of it and
  /// must not call back. 0, which is always OK, says that who has asked is gone, and a refusal with him. Set before the
  /// first Read.
  using SpeedRequest = std::function<KrResult(std::uint32_t aBaudRate)>;
  virtual void SetSpeedRequest(SpeedRequest aRequest) = 0;
  /// Tells the end what the device's port can do and is set to. May come at any time.
  virtual void TellSpeed(const DevicePortSpeed& aSpeed) = 0;
};

} // namespace krserial

#pragma once
// A serial port of a device, to be read and written. Which bytes mean what is left to whoever opens it.

#include "krbase/krresult.h"
#include "krserial/krdeviceserial.h"

#include <cstdint>
#include <memory>
#include <stop_token>

class IKrDeviceAdapter;

/// A serial port of a device. A port comes from the device's transport; one that the transport does not have, from
/// standard or well-known features that carry a serial line (KrSerialFeatures).
///
/// Thread: any. Read and Write may run at the same time; calls of Write come one after the other, in their order. Open
/// and Close wait for calls that run, which Cancel ends at once. Ownership: the holder's. An open port needs its
/// adapter no longer; once the device has ended its calls fail with ConnectionLost.
///
///     KrDeviceSerialPort port;
///     KrResult result = port.Open(&adapter, KrDeviceSerial::Serial0);
///     std::uint32_t written = 0;
///     if (result.IsOK())
///       result = port.Write(reinterpret_cast<const std::uint8_t*>("*IDN?\r"), 6, written);
class KR_EXPORT KrDeviceSerialPort {
public:
  KrDeviceSerialPort();
  /// Closes the port.
  ~KrDeviceSerialPort();
  KrDeviceSerialPort(const KrDeviceSerialPort&) = delete;
  KrDeviceSerialPort& operator=(const KrDeviceSerialPort&) = delete;

  /// Whether the device offers the port; false without an adapter. May ask the device a few questions the first time.
  /// One that did not answer lacks all ports for a second: it is not asked for each of them.
  static bool IsSupported(IKrDeviceAdapter* aAdapter, KrDeviceSerial aPort);

  /// Opens a port; what it received before is dropped. InvalidInput without an adapter, WrongState when this object has
  /// a port open, NotSupported (26) for a port that the device lacks, Busy when somebody of this process has it open,
  /// ConnectionLost or TimeLimitExceeded for a device that does not answer.
  KrResult Open(IKrDeviceAdapter* aAdapter, KrDeviceSerial aPort);
  /// Whether a port is open; one whose device was lost stays so until it is closed.
  bool IsOpened() const;
  /// Closes the port; running calls end with Aborted. Closing what is closed does nothing. Always OK.
  KrResult Close();
  /// Takes what was received, at most aBufferSize bytes, waiting up to aTimeoutMs milliseconds (0 does not wait) for
  /// the first one. TimeLimitExceeded (30) when none came, WrongState when no port is open, Aborted by Cancel and
  /// Close, ConnectionLost when the device is gone, InvalidInput without room for a byte, ProtocolError for bytes that
  /// the device could not give (once, after those that it gave before) and for nonsense that it says. What a line of
  /// the application's throws is SystemError here and in Open and Write.
  KrResult Read(std::uint8_t* aBuffer, std::uint32_t aBufferSize, std::uint32_t& aBytesRead, std::uint32_t aTimeoutMs);
  /// The same, ended with Aborted when aCancel is stopped as well; other calls and later ones go on.
  KrResult Read(std::uint8_t* aBuffer, std::uint32_t aBufferSize, std::uint32_t& aBytesRead, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel);
  /// Sends bytes, waiting until the line has taken them all, however long that takes. aBytesWritten says how many were
  /// taken, also on failure. Results as of Read, but for TimeLimitExceeded, which comes only from a device that does
  /// not answer, and InvalidInput for a zero byte on a line of texts: what stands before it was taken then. Nothing
  /// (size 0) is written at once.
  KrResult Write(const std::uint8_t* aData, std::uint32_t aSize, std::uint32_t& aBytesWritten);
  /// The same, ended with Aborted when aCancel is stopped as well; other calls and later ones go on.
  KrResult Write(const std::uint8_t* aData, std::uint32_t aSize, std::uint32_t& aBytesWritten,
                 const std::stop_token& aCancel);
  /// The same, ended with TimeLimitExceeded when the line has not taken all bytes within aTimeoutMs milliseconds from
  /// its turn on.
  KrResult Write(const std::uint8_t* aData, std::uint32_t aSize, std::uint32_t& aBytesWritten, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel);
  /// Ends the calls that run, and all later ones until the next Open, with Aborted: to be called before the threads
  /// that read and write are joined.
  void Cancel();

private:
  struct Body;
  std::unique_ptr<Body> mBody;
};

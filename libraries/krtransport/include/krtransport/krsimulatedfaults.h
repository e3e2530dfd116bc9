#pragma once
// Faults of the simulated cameras on order, so that an application can be tried out with a camera that misbehaves.
// Without an order a simulated camera has none.

#include "krbase/krresult.h"
#include "krbase/krstring.h"

#include <cstdint>
#include <memory>

/// What a buffer holds where packets were lost.
enum class KrPacketGap {
  Zeroed, ///< Zeros.
  Kept,   ///< What it held before.
};

/// A direction of a serial port, as the camera sees it.
enum class KrSerialDirection {
  Received, ///< From what is attached behind the port to whoever reads it.
  Sent,     ///< From whoever writes it.
};

/// What a serial port has done since the lab was made.
struct KrSimulatedSerialCounts {
  std::uint64_t sent = 0;              ///< Bytes that went onto the line, those that were lost there included.
  std::uint64_t received = 0;          ///< Bytes that came to be read.
  std::uint64_t lostSent = 0;          ///< Bytes that were lost on order.
  std::uint64_t lostReceived = 0;      ///< The same.
  std::uint64_t overflowed = 0;        ///< Bytes lost for want of room, on a line without flow control.
  std::uint64_t repeatedSent = 0;      ///< Bytes that came twice on order; received counts both.
  std::uint64_t repeatedReceived = 0;  ///< The same.
  std::uint64_t corruptedSent = 0;     ///< Bytes that were changed on order.
  std::uint64_t corruptedReceived = 0; ///< The same.
};

/// The orders to one simulated camera. Orders on frames wait in a queue: each takes the next frames that are due after
/// those of the orders before it. Frames for which no buffer is free use up no order of lost or late packets. A frame's
/// packets are those that carry its bytes, of the size that the feature GevSCPSPacketSize has less 36 bytes of headers.
///
/// Thread: any.
/// Ownership: the holder's; the orders stay with the camera, also when this object has gone.
///
///     std::shared_ptr<KrSimulatedFaults> faults;
///     if (KrFindSimulatedFaults("02:4b:52:00:77:10", faults).IsOK())
///       faults->LosePackets(3, 2); // two packets of each of the next three frames
class KR_EXPORT KrSimulatedFaults {
public:
  virtual ~KrSimulatedFaults() = default;

  /// Loses aPackets packets of each of the next aFrames frames, from packet aFirstPacket (0 is the first) on, as far as
  /// the frame has them. The frames come incomplete; their missing packets are counted.
  virtual void LosePackets(std::uint32_t aFrames, std::uint32_t aPackets, std::uint32_t aFirstPacket = 0,
                           KrPacketGap aGap = KrPacketGap::Zeroed) = 0;
  /// Lets aPackets packets of each of the next aFrames frames come aDelayMs milliseconds of the camera's clock late, on
  /// being asked for again. The frames come whole, unless the stream is set not to ask again (StreamPacketResendEnable)
  /// or not to wait so long (StreamFrameRetention); the packets are counted as missing and, where they came, as resent.
  virtual void DelayPackets(std::uint32_t aFrames, std::uint32_t aPackets, std::uint32_t aDelayMs) = 0;
  /// Loses the next aFrames frames altogether: their numbers are left out, nothing else tells of them.
  virtual void DropFrames(std::uint32_t aFrames) = 0;
  /// Forgets the orders on frames that are left.
  virtual void EndFrameFaults() = 0;

  /// Leaves accesses that touch the byte at aAddress without an answer: the next aTimes ones, or, with 0, all until
  /// EndRegisterFaults.
  virtual void SilenceRegister(std::uint64_t aAddress, std::uint32_t aTimes = 0) = 0;
  /// Leaves all accesses without an answer until EndRegisterFaults.
  virtual void SilenceRegisters() = 0;
  /// Lets every answer take aDelayMs milliseconds; 0 for none.
  virtual void SlowRegisters(std::uint32_t aDelayMs) = 0;
  /// Answers all accesses at once again.
  virtual void EndRegisterFaults() = 0;

  /// Loses every aEvery-th byte of a direction of a serial port, the first one after aEvery - 1 others, until another
  /// such order or EndSerialFaults; 0 for none. Ports are numbered as IDeviceLink's: 0 and 1 are the UARTs, 2 to 9 the
  /// bulk ports. In loopback a byte passes both directions. NotFound for a port that the camera does not have.
  virtual KrResult LoseSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aEvery) = 0;
  /// Loses the next aBytes bytes, besides those of former such orders that are left. Results as LoseSerialBytes.
  virtual KrResult LoseNextSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aBytes) = 0;
  /// Lets every aEvery-th byte of a direction come twice. Order and results as LoseSerialBytes.
  virtual KrResult RepeatSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aEvery) = 0;
  /// The same of the next aBytes bytes; as LoseNextSerialBytes.
  virtual KrResult RepeatNextSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aBytes) = 0;
  /// Changes a bit of every aEvery-th byte of a direction. Order and results as LoseSerialBytes.
  virtual KrResult CorruptSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aEvery) = 0;
  /// The same of the next aBytes bytes; as LoseNextSerialBytes.
  virtual KrResult CorruptNextSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aBytes) = 0;
  /// Whether nothing is heard of what is attached behind a port, a camera for example, which hears and does what it is
  /// told all the same; until another such order or EndSerialFaults. Results as LoseSerialBytes.
  virtual KrResult SilenceSerialPort(std::uint32_t aPort, bool aIsSilent) = 0;
  /// Leaves bytes of all ports alone again.
  virtual void EndSerialFaults() = 0;
  /// What a serial port has done. Results as LoseSerialBytes.
  virtual KrResult GetSerialCounts(std::uint32_t aPort, KrSimulatedSerialCounts& aCounts) const = 0;

  /// Whether the camera refuses to be opened (AccessDenied). Who has it open keeps it.
  virtual void RefuseOpening(bool aRefused) = 0;
  /// The camera vanishes, as when its cable is pulled: links to it are lost. It stays away until Return.
  virtual void Disappear() = 0;
  /// Has the camera return after its loss.
  virtual void Return() = 0;
  /// The camera vanishes, as when its power fails, and stays away until Return: what it was set to is as at its start,
  /// its user-defined name and its IP configuration aside.
  virtual void LosePower() = 0;
};

/// Finds the orders to a simulated camera by its unique ID, as discovery tells it: the MAC address of a GigE Vision
/// camera, the GUID of a USB3 Vision one. NotFound when none of the
/// transports that are installed simulates such a camera. Any thread.
KR_EXPORT KrResult KrFindSimulatedFaults(const KrString& aUniqueID, std::shared_ptr<KrSimulatedFaults>& aFaults);

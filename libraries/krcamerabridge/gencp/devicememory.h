#pragma once
// A camera's registers as memory: accesses of any length, cut into what camera and line carry. Limits of callers are
// left to PortWorker.

#include "gencp/commandcycle.h"
#include "gencp/packet.h"
#include "gencp/piecesize.h"
#include "krbase/krresult.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <stop_token>

namespace krcamerabridge {

/// Results: ProtocolError with the camera's words when it refuses, or when what comes is damaged; others as of
/// CommandCycle.
///
/// Thread: one at a time. Ownership: borrows the cycle.
class DeviceMemory {
public:
  explicit DeviceMemory(CommandCycle& aCycle) : mCycle(aCycle) {}

  /// Reads so many bytes as aData has room for, at least one. Some cameras take far less in one command than the
  /// standard has room for: after a failure that may come from that, less is asked for, until more goes well again.
  KrResult Read(std::uint64_t aAddress, std::span<std::uint8_t> aData, const std::stop_token& aStop);
  /// Writes all of aData. What the camera may have done already it is never told anew: a write that was not answered,
  /// or by damaged answers alone, fails.
  KrResult Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData, const std::stop_token& aStop);
  /// Numbers of 4 or 8 bytes, as the registers of the standard have them.
  KrResult ReadValue(std::uint64_t aAddress, std::size_t aBytes, std::uint64_t& aValue, const std::stop_token& aStop);
  KrResult WriteValue(std::uint64_t aAddress, std::size_t aBytes, std::uint64_t aValue, const std::stop_token& aStop);
  /// Whether the camera answered the last command, if only with a refusal: a ProtocolError is of damage else.
  bool HasAnswered() const { return mHasAnswered; }

private:
  KrResult ReadPiece(std::uint64_t aAddress, std::span<std::uint8_t> aData, std::uint16_t& aStatus,
                     const std::stop_token& aStop);
  KrResult WritePiece(std::uint64_t aAddress, std::span<const std::uint8_t> aData, std::size_t& aWritten,
                      std::uint16_t& aStatus, const std::stop_token& aStop);

  CommandCycle& mCycle;
  PieceSize mReadSize{kMaxReadBytes};
  PieceSize mWriteSize{kMaxWriteBytes};
  bool mHasAnswered = false;
};

} // namespace krcamerabridge

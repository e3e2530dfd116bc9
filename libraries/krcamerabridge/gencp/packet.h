#pragma once
// The packets of GenCP on a serial line (GenCP 1.3.1, packet layout and serial port implementations): built, checked
// and taken apart. When they are sent is left to CommandCycle.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace krcamerabridge {

constexpr std::size_t kMaxPacketBytes = 1024;
constexpr std::size_t kPacketHeaderBytes = 16; ///< Prefix and common command data, before the specific data.
constexpr std::size_t kMaxSpecificBytes = kMaxPacketBytes - kPacketHeaderBytes;
constexpr std::size_t kMaxReadBytes = kMaxSpecificBytes;
constexpr std::size_t kMaxWriteBytes = kMaxSpecificBytes - 8;
constexpr std::size_t kReadMemoryBytes = 12; ///< Specific data of a command that reads.
constexpr std::size_t kSafeBytes = 64;       ///< Every camera is known to read and to write so many.
constexpr std::size_t kBitsPerByte = 10;     ///< With start and stop bit.

/// Only the control channel is used.
constexpr std::uint16_t kControlChannel = 0;

constexpr std::uint16_t kRequestAcknowledge = 1u << 14;
constexpr std::uint16_t kCommandResend = 1u << 15;

constexpr std::uint16_t kReadMemoryCommand = 0x0800;
constexpr std::uint16_t kWriteMemoryCommand = 0x0802;
constexpr std::uint16_t kPendingAcknowledge = 0x0805;

/// The acknowledge that answers a command.
constexpr std::uint16_t GetAcknowledge(std::uint16_t aCommandID) {
  return static_cast<std::uint16_t>(aCommandID | 1u);
}

/// What goes over the line.
struct Packet {
  std::uint16_t channel = kControlChannel;
  std::uint16_t code = 0; ///< A command's flags, an acknowledge's status.
  std::uint16_t commandID = 0;
  std::uint16_t requestID = 0;
  std::vector<std::uint8_t> specific = {}; ///< At most kMaxSpecificBytes.

  friend bool operator==(const Packet&, const Packet&) = default;
};

/// Numbers on the line have their most significant byte first.
void AppendNumber(std::vector<std::uint8_t>& aBytes, std::uint64_t aNumber, std::size_t aSize);
std::uint64_t ReadNumber(std::span<const std::uint8_t> aBytes);

/// The packet's bytes, with preamble and checksums.
std::vector<std::uint8_t> BuildPacket(const Packet& aPacket);
/// The specific data of a command that reads, and of one that writes.
std::vector<std::uint8_t> BuildReadMemory(std::uint64_t aAddress, std::size_t aSize);
std::vector<std::uint8_t> BuildWriteMemory(std::uint64_t aAddress, std::span<const std::uint8_t> aData);

/// The one's complement of the one's-complement sum of 16-bit words, as UDP has it; an odd byte at the end is filled up
/// with zero.
std::uint16_t GetChecksum(std::span<const std::uint8_t> aBytes);

/// What bytes from a preamble on are.
enum class PacketState {
  Incomplete, ///< The beginning of a packet.
  Damaged,    ///< No packet, or one that was changed on its way.
  Complete,
};

/// Looks at the bytes from aBytes' beginning on. For a complete packet aPacket is set, and aSize is how many bytes it
/// has.
PacketState ParsePacket(std::span<const std::uint8_t> aBytes, Packet& aPacket, std::size_t& aSize);

} // namespace krcamerabridge

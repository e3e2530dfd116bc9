#pragma once
// GenCP packets on a serial line (GenCP 1.3.1, serial port implementations): finds the host's commands among the bytes
// that come, and makes packets of answers. What commands mean is left to GenCPCamera.

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace krtransport {

/// A command as it came.
struct GenCPCommand {
  std::uint16_t channel = 0;
  std::uint16_t flags = 0;
  std::uint16_t id = 0;
  std::uint16_t request = 0;
  std::vector<std::uint8_t> data;
  bool isTooLong = false; ///< It says that more data follow than a packet holds; they were not waited for.
};

/// An answer to be sent.
struct GenCPAnswer {
  std::uint16_t channel = 0;
  std::uint16_t status = 0;
  std::uint16_t id = 0;
  std::uint16_t request = 0;
  std::vector<std::uint8_t> data = {};
};

/// A packet's bytes besides its data, and the most that it may have.
inline constexpr std::size_t kGenCPHeaderBytes = 16;
inline constexpr std::size_t kGenCPPacketBytes = 1024;

/// The checksum of GenCP: the one's complement of the one's complement sum of 16-bit words, most significant byte
/// first; an odd byte at the end stands before a zero. Any thread.
std::uint16_t MakeGenCPChecksum(std::span<const std::uint8_t> aBytes);
/// The bytes of an answer. Any thread.
std::vector<std::uint8_t> MakeGenCPPacket(const GenCPAnswer& aAnswer);

/// Thread: one at a time.
class GenCPListener {
public:
  /// Takes a byte that came.
  void Hear(std::uint8_t aByte) { mBytes.push_back(aByte); }
  /// The next whole command whose checksums are right. Everything else is passed over byte by byte, so that what stands
  /// behind something broken is found.
  std::optional<GenCPCommand> Take();
  void Clear() { mBytes.clear(); }

private:
  bool SkipToHeader();

  std::vector<std::uint8_t> mBytes;
};

} // namespace krtransport

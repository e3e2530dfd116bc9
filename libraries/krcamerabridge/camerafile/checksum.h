#pragma once
// The checksums that serial protocols of cameras guard their messages with. Where one stands in a message, and how it
// is written, is left to the templates.

#include <cstdint>
#include <string_view>

namespace krcamerabridge {

enum class ChecksumKind : std::uint8_t {
  None,
  Sum8,            ///< The sum of all bytes, modulo 256.
  TwosComplement8, ///< What makes the sum of all bytes, with it, 0 modulo 256.
  OnesComplement8, ///< The bits of Sum8 turned over.
  Xor8,
  Sum16,       ///< The sum of all bytes, modulo 65536.
  Crc8,        ///< Polynomial 0x07, start 0.
  Crc16Ccitt,  ///< Polynomial 0x1021, start 0xFFFF, highest bit first.
  Crc16Xmodem, ///< Polynomial 0x1021, start 0, highest bit first.
  Crc16Modbus, ///< Polynomial 0x8005, start 0xFFFF, lowest bit first.
};

/// Any thread.
std::uint16_t ComputeChecksum(ChecksumKind aKind, std::string_view aBytes);
/// Whether it has 16 bits; the others have 8.
bool IsWideChecksum(ChecksumKind aKind);

} // namespace krcamerabridge

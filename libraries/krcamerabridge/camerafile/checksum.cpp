#include "camerafile/checksum.h"

#include <numeric>

namespace krcamerabridge {

namespace {

std::uint16_t Sum(std::string_view aBytes) {
  return std::accumulate(aBytes.begin(), aBytes.end(), std::uint16_t{0}, [](std::uint16_t aSum, char aByte) {
    return static_cast<std::uint16_t>(aSum + static_cast<std::uint8_t>(aByte));
  });
}

std::uint16_t Xor(std::string_view aBytes) {
  return std::accumulate(aBytes.begin(), aBytes.end(), std::uint16_t{0}, [](std::uint16_t aXor, char aByte) {
    return static_cast<std::uint16_t>(aXor ^ static_cast<std::uint8_t>(aByte));
  });
}

// Highest bit first; the register has aWidth bits.
std::uint16_t Divide(std::string_view aBytes, unsigned aWidth, std::uint32_t aPolynomial, std::uint32_t aStart) {
  const std::uint32_t top = 1U << (aWidth - 1);
  std::uint32_t rest = aStart;
  for (const char byte : aBytes) {
    rest ^= static_cast<std::uint32_t>(static_cast<std::uint8_t>(byte)) << (aWidth - 8);
    for (int bit = 0; bit < 8; ++bit)
      rest = (rest & top) != 0 ? (rest << 1) ^ aPolynomial : rest << 1;
  }
  return static_cast<std::uint16_t>(rest & ((top << 1) - 1));
}

// Lowest bit first, with the polynomial 0x8005 turned round.
std::uint16_t DivideReflected(std::string_view aBytes) {
  std::uint32_t rest = 0xFFFF;
  for (const char byte : aBytes) {
    rest ^= static_cast<std::uint8_t>(byte);
    for (int bit = 0; bit < 8; ++bit)
      rest = (rest & 1U) != 0 ? (rest >> 1) ^ 0xA001U : rest >> 1;
  }
  return static_cast<std::uint16_t>(rest);
}

} // namespace

std::uint16_t ComputeChecksum(ChecksumKind aKind, std::string_view aBytes) {
  switch (aKind) {
  case ChecksumKind::None:
    return 0;
  case ChecksumKind::Sum8:
    return Sum(aBytes) & 0xFF;
  case ChecksumKind::TwosComplement8:
    return (0x100 - (Sum(aBytes) & 0xFF)) & 0xFF;
  case ChecksumKind::OnesComplement8:
    return 0xFF - (Sum(aBytes) & 0xFF);
  case ChecksumKind::Xor8:
    return Xor(aBytes);
  case ChecksumKind::Sum16:
    return Sum(aBytes);
  case ChecksumKind::Crc8:
    return Divide(aBytes, 8, 0x07, 0);
  case ChecksumKind::Crc16Ccitt:
    return Divide(aBytes, 16, 0x1021, 0xFFFF);
  case ChecksumKind::Crc16Xmodem:
    return Divide(aBytes, 16, 0x1021, 0);
  case ChecksumKind::Crc16Modbus:
    return DivideReflected(aBytes);
  }
  return 0;
}

bool IsWideChecksum(ChecksumKind aKind) {
  return aKind == ChecksumKind::Sum16 || aKind >= ChecksumKind::Crc16Ccitt;
}

} // namespace krcamerabridge

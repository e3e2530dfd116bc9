#pragma once
// Numbers from and to the bytes of a register. Where the bytes come from is left to the register nodes.

#include <cstddef>
#include <cstdint>
#include <span>

namespace krgenicam {

/// Bits of a number, counted from the least significant one.
struct BitRange {
  unsigned lowest = 0;
  unsigned count = 0; ///< 1 to 64.
};

/// The number that at most 8 bytes are, and back.
std::uint64_t LoadUnsigned(std::span<const std::uint8_t> aBytes, bool aIsBigEndian);
void StoreUnsigned(std::uint64_t aValue, std::span<std::uint8_t> aBytes, bool aIsBigEndian);

/// The number in some bits, with the sign its highest bit tells or without; one of 64 bits keeps its bits.
std::int64_t ExtractBits(std::uint64_t aWord, BitRange aBits, bool aIsSigned);
/// The word with some of its bits replaced.
std::uint64_t ReplaceBits(std::uint64_t aWord, BitRange aBits, std::int64_t aValue);
/// The smallest and largest number of so many bits; without sign at most the largest of 64 bits with sign.
std::int64_t GetSmallest(unsigned aBitCount, bool aIsSigned);
std::int64_t GetLargest(unsigned aBitCount, bool aIsSigned);

/// The IEEE 754 number that 4 or 8 bytes are, and back.
double LoadFloat(std::span<const std::uint8_t> aBytes, bool aIsBigEndian);
void StoreFloat(double aValue, std::span<std::uint8_t> aBytes, bool aIsBigEndian);

/// Turns each whole word of 4 bytes round.
void SwapWords(std::span<std::uint8_t> aBytes);

} // namespace krgenicam

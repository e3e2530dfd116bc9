#include "nodes/registercodec.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace krgenicam {

namespace {

constexpr unsigned kWordBits = 64;

std::uint64_t MakeMask(unsigned aBitCount) {
  return aBitCount >= kWordBits ? ~std::uint64_t{0} : (std::uint64_t{1} << aBitCount) - 1;
}

} // namespace

std::uint64_t LoadUnsigned(std::span<const std::uint8_t> aBytes, bool aIsBigEndian) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < aBytes.size(); ++i)
    value = value << 8U | aBytes[aIsBigEndian ? i : aBytes.size() - 1 - i];
  return value;
}

void StoreUnsigned(std::uint64_t aValue, std::span<std::uint8_t> aBytes, bool aIsBigEndian) {
  for (std::size_t i = 0; i < aBytes.size(); ++i, aValue >>= 8U)
    aBytes[aIsBigEndian ? aBytes.size() - 1 - i : i] = static_cast<std::uint8_t>(aValue);
}

std::int64_t ExtractBits(std::uint64_t aWord, BitRange aBits, bool aIsSigned) {
  const std::uint64_t mask = MakeMask(aBits.count);
  std::uint64_t value = aWord >> aBits.lowest & mask;
  if (aIsSigned && (value >> (aBits.count - 1) & 1U) != 0)
    value |= ~mask;
  return static_cast<std::int64_t>(value);
}

std::uint64_t ReplaceBits(std::uint64_t aWord, BitRange aBits, std::int64_t aValue) {
  const std::uint64_t mask = MakeMask(aBits.count) << aBits.lowest;
  return (aWord & ~mask) | (static_cast<std::uint64_t>(aValue) << aBits.lowest & mask);
}

std::int64_t GetSmallest(unsigned aBitCount, bool aIsSigned) {
  return aIsSigned ? static_cast<std::int64_t>(~MakeMask(aBitCount - 1)) : 0;
}

std::int64_t GetLargest(unsigned aBitCount, bool aIsSigned) {
  const unsigned valueBits = aIsSigned ? aBitCount - 1 : aBitCount;
  return static_cast<std::int64_t>(MakeMask(std::min(valueBits, kWordBits - 1)));
}

double LoadFloat(std::span<const std::uint8_t> aBytes, bool aIsBigEndian) {
  static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559);
  const std::uint64_t word = LoadUnsigned(aBytes, aIsBigEndian);
  if (aBytes.size() == sizeof(float))
    return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(word)));
  return std::bit_cast<double>(word);
}

void StoreFloat(double aValue, std::span<std::uint8_t> aBytes, bool aIsBigEndian) {
  const std::uint64_t word = aBytes.size() == sizeof(float) ? std::bit_cast<std::uint32_t>(static_cast<float>(aValue))
                                                            : std::bit_cast<std::uint64_t>(aValue);
  StoreUnsigned(word, aBytes, aIsBigEndian);
}

void SwapWords(std::span<std::uint8_t> aBytes) {
  for (std::size_t i = 0; i + 4 <= aBytes.size(); i += 4)
    std::ranges::reverse(aBytes.subspan(i, 4));
}

} // namespace krgenicam

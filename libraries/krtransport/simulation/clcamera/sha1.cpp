#include "simulation/clcamera/sha1.h"

#include "simulation/registermemory.h"

#include <bit>
#include <cstddef>
#include <string>

namespace krtransport {

namespace {

constexpr std::size_t kBlockBytes = 64;
constexpr std::size_t kRounds = 80;
constexpr std::uint32_t kConstants[] = {0x5A827999, 0x6ED9EBA1, 0x8F1BBCDC, 0xCA62C1D6};

using State = std::array<std::uint32_t, 5>;

// The function of each 20 rounds.
std::uint32_t Mix(std::size_t aRound, std::uint32_t aB, std::uint32_t aC, std::uint32_t aD) {
  if (aRound < 20)
    return (aB & aC) | (~aB & aD);
  if (aRound >= 40 && aRound < 60)
    return (aB & aC) | (aB & aD) | (aC & aD);
  return aB ^ aC ^ aD;
}

void AddBlock(const std::uint8_t* aBlock, State& aState) {
  std::array<std::uint32_t, kRounds> words;
  for (std::size_t i = 0; i < kRounds; ++i)
    words[i] = i < 16 ? DecodeInteger(aBlock + 4 * i)
                      : std::rotl(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1);
  auto [a, b, c, d, e] = aState;
  for (std::size_t i = 0; i < kRounds; ++i) {
    const std::uint32_t next = std::rotl(a, 5) + Mix(i, b, c, d) + e + kConstants[i / 20] + words[i];
    e = d;
    d = c;
    c = std::rotl(b, 30);
    b = a;
    a = next;
  }
  const State sum = {a, b, c, d, e};
  for (std::size_t i = 0; i < sum.size(); ++i)
    aState[i] += sum[i];
}

} // namespace

std::array<std::uint8_t, 20> MakeSha1(std::string_view aBytes) {
  std::string padded(aBytes);
  padded += '\x80';
  padded.resize((padded.size() + 8 + kBlockBytes - 1) / kBlockBytes * kBlockBytes);
  auto* const bytes = reinterpret_cast<std::uint8_t*>(padded.data());
  EncodeLong(std::uint64_t{aBytes.size()} * 8, bytes + padded.size() - 8);
  State state = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
  for (std::size_t i = 0; i < padded.size(); i += kBlockBytes)
    AddBlock(bytes + i, state);
  std::array<std::uint8_t, 20> digest;
  for (std::size_t i = 0; i < state.size(); ++i)
    EncodeInteger(state[i], digest.data() + 4 * i);
  return digest;
}

} // namespace krtransport

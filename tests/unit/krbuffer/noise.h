#pragma once
// Bytes without a pattern that a fault could hide behind; the same in every run.

#include <cstddef>
#include <cstdint>
#include <vector>

inline std::vector<std::uint8_t> MakeNoise(std::size_t aBytes, std::uint32_t aSeed = 12345) {
  std::vector<std::uint8_t> noise(aBytes);
  std::uint32_t state = aSeed;
  for (std::uint8_t& byte : noise) {
    state = state * 1664525u + 1013904223u;
    byte = static_cast<std::uint8_t>(state >> 24);
  }
  return noise;
}

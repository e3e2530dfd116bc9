#pragma once
// The chance of a soak, of one seed: the same seed draws the same.

#include <cstdint>
#include <random>

class SoakDice {
public:
  explicit SoakDice(std::uint32_t aSeed) : mRandom(aSeed) {}

  /// A number of a range, its ends included.
  int Draw(int aFirst, int aLast) { return std::uniform_int_distribution<int>(aFirst, aLast)(mRandom); }
  /// Once in so many times.
  bool HasLuck(int aOnceIn) { return Draw(1, aOnceIn) == 1; }

private:
  std::mt19937 mRandom;
};

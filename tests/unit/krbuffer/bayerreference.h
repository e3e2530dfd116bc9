#pragma once
// Bilinear interpolation of a Bayer image, pixel by pixel and from the definition alone: a colour is the mean of those
// samples among the pixel and its eight neighbours, in the mirrored image, whose filter has this colour.
// Written for comparison; slow.

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

class BayerReference {
public:
  /// The filter's first two lines, in letters.
  using Filter = std::array<std::string, 2>;

  BayerReference(Filter aFilter, const std::vector<std::uint8_t>& aBytes, int aWidth, int aHeight, int aStrideBytes)
      : mFilter(std::move(aFilter)), mBytes(aBytes), mWidth(aWidth), mHeight(aHeight), mStrideBytes(aStrideBytes) {}

  std::vector<std::uint8_t> GetBgra() const {
    std::vector<std::uint8_t> bgra;
    for (int y = 0; y < mHeight; ++y)
      for (int x = 0; x < mWidth; ++x) {
        for (const char colour : {'B', 'G', 'R'})
          bgra.push_back(GetColour(colour, x, y));
        bgra.push_back(255);
      }
    return bgra;
  }

private:
  char GetFilter(int aX, int aY) const {
    return mFilter[static_cast<std::size_t>(aY % 2)][static_cast<std::size_t>(aX % 2)];
  }

  int GetSample(int aX, int aY) const { return mBytes[static_cast<std::size_t>(aY * mStrideBytes + aX)]; }

  /// The place that a mirror at both ends puts a neighbour to; -1 where there is nothing to mirror.
  static int Mirror(int aIndex, int aCount) {
    if (aIndex >= 0 && aIndex < aCount)
      return aIndex;
    if (aCount == 1)
      return -1;
    return aIndex < 0 ? -aIndex : 2 * (aCount - 1) - aIndex;
  }

  std::uint8_t GetColour(char aColour, int aX, int aY) const {
    if (GetFilter(aX, aY) == aColour)
      return static_cast<std::uint8_t>(GetSample(aX, aY));
    int sum = 0;
    int count = 0;
    for (int deltaY = -1; deltaY <= 1; ++deltaY)
      for (int deltaX = -1; deltaX <= 1; ++deltaX) {
        const int x = Mirror(aX + deltaX, mWidth);
        const int y = Mirror(aY + deltaY, mHeight);
        if (x < 0 || y < 0 || GetFilter(x, y) != aColour)
          continue;
        sum += GetSample(x, y);
        ++count;
      }
    return static_cast<std::uint8_t>(count == 0 ? 0 : (2 * sum + count) / (2 * count));
  }

  Filter mFilter;
  const std::vector<std::uint8_t>& mBytes;
  int mWidth;
  int mHeight;
  int mStrideBytes;
};

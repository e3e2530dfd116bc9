#pragma once
// Frames of known values for the tests of graphs, packed by plain loops.

#include "krbuffer/krbuffer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <vector>

/// The value of a sample of a line.
using SampleOf = std::function<std::uint32_t(std::uint32_t aSample, std::uint32_t aLine)>;

/// A whole frame with padding, whose lines hold samples of so many bits one after the other, least significant bit
/// first. aBitsEach says how far apart samples begin.
inline KrBuffer MakeFrame(KrPixelType aType, std::uint32_t aWidth, std::uint32_t aHeight, unsigned aSamplesOfLine,
                          unsigned aBitsEach, const SampleOf& aSample, std::uint32_t aPaddingX = 0) {
  KrBuffer frame;
  EXPECT_TRUE(frame.GetImage()->Alloc(aWidth, aHeight, aType, aPaddingX).IsOK());
  const std::size_t stride = (std::size_t{aSamplesOfLine} * aBitsEach + 7) / 8 + aPaddingX;
  for (std::uint32_t y = 0; y < aHeight; ++y)
    for (std::uint32_t i = 0; i < aSamplesOfLine; ++i)
      for (unsigned bit = 0; bit < aBitsEach; ++bit)
        if ((aSample(i, y) >> bit & 1) != 0) {
          const std::size_t place = std::size_t{i} * aBitsEach + bit;
          frame.GetDataPointer()[y * stride + place / 8] |= static_cast<std::uint8_t>(1u << (place % 8));
        }
  frame.SetStatus(KrBufferStatus::Complete);
  return frame;
}

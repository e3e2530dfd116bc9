#pragma once
// Frames to save in tests: every bit of the samples differs from its neighbours', and each sample can be told by its
// place.

#include "krbuffer/krbuffer.h"
#include "krbuffer/krpixeltype.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace krapps {

constexpr std::uint32_t kTestWidth = 7; // Odd, so that packed lines end within a byte.
constexpr std::uint32_t kTestHeight = 5;

/// The sample of a component at a place, counted from 0, with all bits in use.
inline std::uint64_t MakeSample(std::uint32_t aX, std::uint32_t aY, std::uint32_t aComponent, std::uint32_t aBits) {
  std::uint64_t mixed = (std::uint64_t{aY} * kTestWidth + aX) * 4 + aComponent + 1;
  mixed *= 0x9E3779B97F4A7C15U;
  return aBits < 64 ? mixed >> (64 - aBits) : mixed;
}

inline std::uint32_t CountComponents(KrPixelLayout aLayout) {
  const bool hasAlpha = aLayout == KrPixelLayout::RGBa || aLayout == KrPixelLayout::BGRa;
  const bool hasColour =
      aLayout == KrPixelLayout::RGB || aLayout == KrPixelLayout::BGR || aLayout == KrPixelLayout::RGBPlanar;
  return hasAlpha ? 4 : hasColour ? 3 : 1;
}

// Puts samples where the packings of PFNC and of GigE Vision 1.x have them.
class SamplePlacer {
public:
  SamplePlacer(const KrPixelTypeInfo& aInfo, KrBuffer& aFrame, std::uint32_t aPadding)
      : mInfo(aInfo), mComponents(CountComponents(aInfo.layout)), mData(aFrame.GetDataPointer()) {
    const bool isPlanar = aInfo.layout == KrPixelLayout::RGBPlanar;
    mStride = (kTestWidth * aInfo.bitsPerPixel / (isPlanar ? 3 : 1) + 7) / 8 + aPadding;
  }

  void Place(std::uint32_t aX, std::uint32_t aY, std::uint32_t aComponent, std::uint64_t aSample) {
    const bool isPlanar = mInfo.layout == KrPixelLayout::RGBPlanar;
    const std::size_t line = isPlanar ? aComponent * kTestHeight + aY : aY;
    const std::size_t index = isPlanar ? aX : aX * mComponents + aComponent;
    std::uint8_t* const bytes = mData + line * mStride;
    const std::uint32_t wordBits = mInfo.bitsPerPixel / mComponents;
    if (mInfo.packing == KrPixelPacking::GigE)
      PlaceGigE(bytes, index, aSample);
    else
      for (std::uint32_t bit = 0; bit < mInfo.bitsPerSample; ++bit)
        SetBit(bytes, index * wordBits + bit, (aSample >> bit) & 1);
  }

private:
  static void SetBit(std::uint8_t* aBytes, std::size_t aBit, bool aIsSet) {
    if (aIsSet)
      aBytes[aBit / 8] |= static_cast<std::uint8_t>(1U << (aBit % 8));
  }
  // Two samples in three bytes: the upper eight bits of each in the first and third, the lower ones in the second.
  void PlaceGigE(std::uint8_t* aBytes, std::size_t aIndex, std::uint64_t aSample) const {
    const std::uint32_t low = mInfo.bitsPerSample - 8;
    std::uint8_t* const group = aBytes + aIndex / 2 * 3;
    const bool isSecond = aIndex % 2 == 1;
    group[isSecond ? 2 : 0] = static_cast<std::uint8_t>(aSample >> low);
    group[1] |= static_cast<std::uint8_t>((aSample & ((1U << low) - 1)) << (isSecond ? 4 : 0));
  }

  KrPixelTypeInfo mInfo;
  std::uint32_t mComponents;
  std::uint8_t* mData;
  std::size_t mStride = 0;
};

/// A frame of MakeSample's samples, stored as the format says.
inline void FillFrame(KrBuffer& aFrame, KrPixelType aType, std::uint32_t aPadding = 0) {
  const KrPixelTypeInfo info = KrFindPixelType(aType).value();
  ASSERT_TRUE(aFrame.GetImage()->Alloc(kTestWidth, kTestHeight, aType, aPadding).IsOK());
  std::memset(aFrame.GetDataPointer(), 0, aFrame.GetSize());
  SamplePlacer placer(info, aFrame, aPadding);
  for (std::uint32_t y = 0; y < kTestHeight; ++y)
    for (std::uint32_t x = 0; x < kTestWidth; ++x)
      for (std::uint32_t component = 0; component < CountComponents(info.layout); ++component)
        placer.Place(x, y, component, MakeSample(x, y, component, info.bitsPerSample));
  aFrame.SetAcquiredSize(aFrame.GetSize());
  aFrame.SetStatus(KrBufferStatus::Complete);
  aFrame.SetFrameID(4711);
  aFrame.SetTimestampNs(123456789);
  aFrame.SetHostTimestampNs(1'700'000'000'000'000'001);
}

} // namespace krapps

#pragma once
// Frames of one colour each, so that every pixel on the screen tells which frame it is from.

#include "krbuffer/krbuffer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

/// The colour of a frame as 0x00RRGGBB: none is that of another one, neighbours differ much.
constexpr std::uint32_t GetFrameColor(std::uint32_t aNumber) {
  return (aNumber + 1) * 0x9E3779U & 0xFFFFFFU;
}

/// Makes a BGRa8 image a frame.
inline void FillFrame(KrBuffer& aBuffer, std::uint32_t aNumber) {
  const std::vector<std::uint32_t> pixels(aBuffer.GetSize() / 4, GetFrameColor(aNumber) | 0xFF000000U);
  std::memcpy(aBuffer.GetDataPointer(), pixels.data(), aBuffer.GetSize());
}

inline std::shared_ptr<KrBuffer> MakeFrame(std::uint32_t aWidth, std::uint32_t aHeight, std::uint32_t aNumber) {
  auto frame = std::make_shared<KrBuffer>();
  EXPECT_TRUE(frame->GetImage()->Alloc(aWidth, aHeight, KrPixel::BGRa8).IsOK());
  FillFrame(*frame, aNumber);
  return frame;
}

#pragma once
// Images that tests of the display show, and the usual paint of a window.

#include "foreignimage.h"
#include "logic/display/displaycontent.h"
#include "recordingtarget.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

inline KrBuffer MakeImage(std::uint32_t aWidth, std::uint32_t aHeight, KrPixelType aType, std::uint8_t aValue) {
  KrBuffer buffer;
  EXPECT_TRUE(buffer.GetImage()->Alloc(aWidth, aHeight, aType).IsOK());
  std::memset(buffer.GetDataPointer(), aValue, buffer.GetSize());
  return buffer;
}

/// What is shown of an image of Mono8 that has one value.
inline std::vector<std::uint8_t> MakeGreyPixels(std::uint32_t aWidth, std::uint32_t aHeight, std::uint8_t aValue) {
  std::vector<std::uint8_t> pixels;
  for (std::size_t i = 0; i < std::size_t{aWidth} * aHeight; ++i)
    pixels.insert(pixels.end(), {aValue, aValue, aValue, 0xFF});
  return pixels;
}

/// An image of sixteen bytes that states what it is told to, so that sizes no real buffer has can be tried.
struct StatedImage : ForeignImage {
  StatedImage(std::uint32_t aWidth, std::uint32_t aHeight, std::size_t aSize, KrPixelType aType = KrPixel::Mono8)
      : ForeignImage(aWidth, aHeight, aType, std::vector<std::uint8_t>(16)) {
    statedSize = aSize;
  }
};

/// A content with a window of 100 x 100 pixels that is open.
struct OpenDisplay {
  OpenDisplay() { content.SetTarget(&target); }
  ~OpenDisplay() { content.SetTarget(nullptr); }

  krgui::DisplayContent::Paint Show(const KrBuffer& aBuffer) { return Show(aBuffer.GetImage()); }
  krgui::DisplayContent::Paint Show(const IKrImage* aImage) {
    auto paint = krgui::DisplayContent::Paint::NotNeeded;
    EXPECT_TRUE(content.Display(aImage, paint).IsOK());
    return paint;
  }
  krgui::DisplayContent::Painted Paint() { return content.PaintWindow(100, 100, 18); }
  /// What a paint of the window shows now.
  const RecordingTarget::Drawing& Look() {
    Paint();
    return target.GetLast();
  }

  krgui::DisplayContent content;
  RecordingTarget target;
};

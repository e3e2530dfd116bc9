#pragma once
// What a display window holds: the image last accepted, converted for the screen, and the text that belongs to it.
// It decides which images are accepted; when and where they are drawn is left to the window.

#include "krbuffer/krbuffer.h"
#include "krbuffer/krbufferconverter.h"
#include "logic/display/viewgeometry.h"

#include <atomic>
#include <cstdint>
#include <mutex>

namespace krgui {

/// A colour as 0x00BBGGRR.
using ColorRef = std::uint32_t;
constexpr ColorRef MakeColorRef(unsigned char aRed, unsigned char aGreen, unsigned char aBlue) {
  return aRed | static_cast<ColorRef>(aGreen) << 8 | static_cast<ColorRef>(aBlue) << 16;
}
constexpr unsigned char GetRed(ColorRef aColor) {
  return static_cast<unsigned char>(aColor);
}
constexpr unsigned char GetGreen(ColorRef aColor) {
  return static_cast<unsigned char>(aColor >> 8);
}
constexpr unsigned char GetBlue(ColorRef aColor) {
  return static_cast<unsigned char>(aColor >> 16);
}

/// How the overlay looks and where the background shows; read and written from any thread without the display lock.
struct DisplayStyle {
  std::atomic<ColorRef> backgroundColor = MakeColorRef(0x80, 0x80, 0x80);
  std::atomic<ColorRef> overlayColor = MakeColorRef(0x00, 0xFF, 0x00);
  std::atomic<int> overlaySize = 20; ///< Above 0 a line's height, below 0 the characters', 0 the default.
  std::atomic<std::uint32_t> overlayOffsetX = 10;
  std::atomic<std::uint32_t> overlayOffsetY = 10;
};

/// The content of one display window.
///
/// Thread: any; GetInternalBuffer only while no other thread displays.
class DisplayContent {
public:
  /// The format in which images are held and drawn.
  static constexpr KrPixelType kDisplayPixelType = KrPixel::BGRa8;

  /// Checks and converts an image and makes the pending text the displayed one. InvalidInput or Failed with the text
  /// that is logged too; nothing is changed then.
  KrResult Display(const IKrImage* aImage);
  /// Drops the image and both texts.
  void Clear();

  void SetPendingText(const KrString& aText);
  KrString GetPendingText() const;

  KrBufferConverter& GetConverter() { return mConverter; }
  KrBuffer& GetInternalBuffer() { return mInternalBuffer; }
  DisplayStyle& GetStyle() { return mStyle; }

  /// What a drawing needs; valid while the display lock is held.
  struct Frame {
    const IKrImage* image = nullptr; ///< Null when no image is held.
    KrString overlayText;            ///< Empty when none is to be drawn.
    ViewArea view;
  };
  /// Computes the view for a client area in device pixels and draws by aDraw(const Frame&), under the display lock.
  template <typename Draw>
  void Paint(std::int32_t aClientWidth, std::int32_t aClientHeight, const Draw& aDraw) {
    const std::lock_guard lock(mDisplayLock);
    aDraw(PrepareFrame(aClientWidth, aClientHeight));
  }

  /// Whether the size of image or window changed since the last drawing.
  bool IsViewDirty() const;
  /// Says that the window has another size.
  void MarkViewDirty();

private:
  KrResult Check(const IKrImage* aImage) const;
  Frame PrepareFrame(std::int32_t aClientWidth, std::int32_t aClientHeight);

  DisplayStyle mStyle;
  KrBufferConverter mConverter{-1};

  /// Guards everything below.
  mutable std::mutex mDisplayLock;
  KrBuffer mInternalBuffer;
  KrString mPendingText;
  KrString mDisplayedText;
  std::uint32_t mLastWidth = 0;
  std::uint32_t mLastHeight = 0;
  bool mViewDirty = false;
};

} // namespace krgui

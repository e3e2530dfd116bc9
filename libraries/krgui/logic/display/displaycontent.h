#pragma once
// What a display window holds: the image last accepted, ready to be converted for the screen, the view onto it, and the
// text that belongs to it. It decides which images are accepted, and counts what became of them; where they are drawn
// is left to the window's frame target.

#include "krbuffer/krbuffer.h"
#include "krbuffer/krbufferconverter.h"
#include "krbuffer/krlineconversion.h"
#include "krgui/krdisplaystatistics.h"
#include "logic/display/displaystyle.h"
#include "logic/display/frametarget.h"
#include "logic/display/viewgeometry.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

namespace krgui {

/// The content of one display window.
///
/// Thread: any.
class DisplayContent {
public:
  /// The format in which images are drawn.
  static constexpr KrPixelType kDisplayPixelType = KrPixel::BGRa8;

  /// Whether the window must be painted for the call to show: an image of another size, no target, or one that defers.
  enum class Paint { NotNeeded, Needed };

  /// Checks an image, keeps what later paints need of it, makes the pending text the displayed one and draws at once
  /// where its size is that of the image before. InvalidInput or Failed with the text that is logged too; nothing is
  /// changed then. The image's memory is not used after the call.
  KrResult Display(const IKrImage* aImage, Paint& aPaint);
  /// The same for an image that is held instead of being copied, until another one takes its place; null or another
  /// payload than an image is the caller's to refuse.
  KrResult Display(std::shared_ptr<const KrBuffer> aBuffer, Paint& aPaint);
  /// Counts and remembers what was refused before it came to Display, and logs it.
  KrResult Refuse(KrResult::Code aCode, const char* aFunction, const char* aFile, int aLine, const KrString& aText);
  /// Drops the image and both texts.
  void Clear();

  void SetPendingText(const KrString& aText);
  KrString GetPendingText() const;

  KrBufferConverter& GetConverter() { return mConverter; }
  /// The whole image last accepted, converted with the settings of its Display; converted now where that is not done
  /// yet. Without an image it is empty. It changes by this call and by Clear alone.
  KrBuffer& GetInternalBuffer();
  DisplayStyle& GetStyle() { return mStyle; }

  /// Sets where frames are drawn at once; null for nowhere. Returns when no drawing to the former one is running.
  void SetTarget(FrameTarget* aTarget);
  /// Updates the geometry for the client area and draws to the target, as every paint of the window does.
  struct Painted {
    FrameTarget::Outcome outcome = FrameTarget::Outcome::Deferred;
    BarChanges bars;
  };
  Painted PaintWindow(std::int32_t aClientWidth, std::int32_t aClientHeight, std::int32_t aBarThickness);
  /// As PaintWindow for a target of the moment, such as a picture of the window; counts nothing.
  void PaintTo(FrameTarget& aTarget);

  /// Calls aChange(ViewGeometry&) under the display lock and returns what it returns.
  template <typename Change>
  auto ChangeView(const Change& aChange) {
    const std::lock_guard lock(mDisplayLock);
    return aChange(mGeometry);
  }

  KrDisplayStatistics GetStatistics() const;
  void ResetStatistics();

  /// Where the cursor is, in device pixels of the client area; nothing when it is elsewhere.
  void SetCursor(const std::optional<PixelPoint>& aClientPoint);
  /// The pixel that is drawn under the cursor; nothing without an image there.
  std::optional<KrDisplayPixel> GetCursorPixel() const;
  /// Whether the line about that pixel is drawn.
  void SetCursorLineEnabled(bool aEnabled);
  bool IsCursorLineEnabled() const;

private:
  DisplayStyle mStyle;
  KrBufferConverter mConverter{-1};

  /// Guards everything below.
  mutable std::mutex mDisplayLock;
  ViewGeometry mGeometry;
};

} // namespace krgui

#pragma once
// What a display window holds: the image last accepted, ready to be converted for the screen, the view onto it, and the
// text that belongs to it. It decides which images are accepted, and counts what became of them; where they are drawn
// is left to the window's frame target.

#include "krbase/krlogger.h"
#include "krbase/krturnmutex.h"
#include "krbuffer/krbuffer.h"
#include "krbuffer/krbufferconverter.h"
#include "krbuffer/krlineconversion.h"
#include "krgui/krdisplaystatistics.h"
#include "logic/display/displaystyle.h"
#include "logic/display/framecounts.h"
#include "logic/display/frametarget.h"
#include "logic/display/heldimage.h"
#include "logic/display/internalbuffer.h"
#include "logic/display/viewgeometry.h"

#include <chrono>
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
  /// Counts, remembers and logs what was refused before it came to Display; a window that shows no image says so.
  KrResult Refuse(KrResult::Code aCode, const KrLogSite& aSite, const KrString& aText, Paint& aPaint);
  /// Drops the image and both texts. Waits for no conversion of GetInternalBuffer: what one gives is dropped at its
  /// end.
  void Clear();

  void SetPendingText(const KrString& aText);
  KrString GetPendingText() const;

  KrBufferConverter& GetConverter() { return mConverter; }
  /// The whole image last accepted, converted with the settings of its Display; converted now where that is not done
  /// yet. Without an image it is empty, and where one was cleared during the call. It changes by this call and by Clear
  /// alone.
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
  using TimePoint = std::chrono::steady_clock::time_point;

  /// An image as it is drawn.
  struct Shown {
    const KrLineConversion& lines;
    const IKrImage& source;
  };

  /// How a target is asked to draw.
  using DrawingWay = FrameTarget::Outcome (FrameTarget::*)(const Frame&, FrameTarget::Times&);

  static KrDisplayPixel ReadDisplayPixel(const Shown& aShown, PixelPoint aPlace);
  /// aScreenText is what an empty window shows.
  KrResult RefuseWith(KrResult::Code aCode, const KrLogSite& aSite, const KrString& aText, const KrString& aScreenText,
                      Paint& aPaint);
  KrResult RefuseException(const char* aWhat, Paint& aPaint);
  /// Displays what aAsk() gives, which may be foreign code and throw.
  template <typename Ask>
  KrResult DisplayWhat(const Ask& aAsk, const std::shared_ptr<const KrBuffer>& aBuffer, Paint& aPaint);
  KrResult DisplaySnapshot(const ImageSnapshot& aSource, const std::shared_ptr<const KrBuffer>& aBuffer,
                           TimePoint aCallBegin, Paint& aPaint);
  /// Takes an image that can be converted by its format; the copy is kept or, where it is given, the buffer. Says why
  /// not at the first of several in a row for which that could not be done.
  KrResult Accept(const ImageSnapshot& aSource, const std::shared_ptr<const KrBuffer>& aBuffer, TimePoint aCallBegin,
                  Paint& aPaint);

  // What follows is done under the display lock.

  /// Where the image will be held; null where there is no memory.
  std::shared_ptr<HeldImage> FindRoom(const ImageSnapshot& aSource, const std::shared_ptr<const KrBuffer>& aBuffer);
  /// What an image that could not be converted leaves: the image that was held where it has the size last accepted,
  /// else one without light; draws it as Accept does. Returns what is held no more.
  std::shared_ptr<HeldImage> Substitute(bool aIsResized, Paint& aPaint);
  std::shared_ptr<HeldImage> MakeBlack() const;
  Paint DrawAtOnce(const Shown& aShown);
  /// Draws to the window's target, which there is, and counts; null draws no image.
  FrameTarget::Outcome DrawCounted(const Shown* aShown, DrawingWay aWay);
  FrameTarget::Outcome Draw(FrameTarget& aTarget, const Shown* aShown, DrawingWay aWay,
                            FrameTarget::Times& aTimes) const;
  std::optional<Shown> GetHeld() const;
  /// True when the geometry was updated for images of this size.
  bool IsViewOf(const KrLineConversion& aLines) const;
  std::optional<PixelPoint> FindCursorPlace(const KrLineConversion& aLines) const;
  KrString MakeCursorText(const Shown& aShown) const;

  DisplayStyle mStyle;
  KrBufferConverter mConverter{-1};

  std::mutex mConversionLock; ///< One conversion into the internal buffer at a time; taken before the display lock.

  /// Guards everything below.
  mutable KrTurnMutex mDisplayLock; // Else a camera at full rate would keep the user interface from it.
  ViewGeometry mGeometry;
  FrameTarget* mTarget = nullptr;
  /// Shared with GetInternalBuffer alone, which reads it without the lock: it is overwritten when nobody shares it.
  std::shared_ptr<HeldImage> mHeld;
  std::shared_ptr<HeldImage> mSpare; ///< Room for the copy of an image that comes while the held one is read.
  std::uint64_t mNumber = 0;         ///< Counts the images that were accepted.
  std::uint32_t mLastWidth = 0;      ///< Of the image last accepted, whether or not it could be converted.
  std::uint32_t mLastHeight = 0;
  KrString mPendingText;
  KrString mDisplayedText;
  KrString mRefusalText; ///< Of the last image; empty when it was accepted.
  FrameCounts mCounts;
  std::optional<PixelPoint> mCursor;
  bool mIsCursorLineEnabled = false;
  bool mHasLost = false;          ///< The image last accepted could not be converted or kept.
  TimePoint mCallBegin;           ///< Of the call that draws now.
  bool mIsConverting = false;     ///< The internal buffer is written to without the lock, and left alone by others.
  bool mIsConversionVain = false; ///< Clear has come meanwhile.
  InternalBuffer mInternalBuffer;
};

} // namespace krgui

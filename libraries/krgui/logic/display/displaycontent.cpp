#include "logic/display/displaycontent.h"

#include "logic/display/displaytexts.h"

#include <chrono>
#include <exception>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace krgui {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kFunction = "DisplayWnd::Display";
constexpr const char* kFile = "displaywnd";

/// A text that there is no memory for is not drawn.
void CopyText(KrString& aTo, const KrString& aFrom) noexcept {
  try {
    aTo = aFrom;
  } catch (const std::bad_alloc&) {
    aTo.Clear();
  }
}

} // namespace

KrResult DisplayContent::RefuseWith(KrResult::Code aCode, const KrLogSite& aSite, const KrString& aText,
                                    const KrString& aScreenText, Paint& aPaint) {
  KrLogger("KrGUILib").Log(KrLogLevel::Error, aSite, aText);
  const std::lock_guard lock(mDisplayLock);
  mCounts.Refuse(aText);
  mRefusalText = aScreenText;
  aPaint = mHeld ? Paint::NotNeeded : Paint::Needed;
  return {aCode, aText};
}

KrResult DisplayContent::Refuse(KrResult::Code aCode, const KrLogSite& aSite, const KrString& aText, Paint& aPaint) {
  return RefuseWith(aCode, aSite, aText, aText, aPaint);
}

KrResult DisplayContent::RefuseException(const char* aWhat, Paint& aPaint) {
  const KrString text = aWhat ? KrString("Displaying an image was ended by an exception: ") + aWhat
                              : KrString("Displaying an image was ended by an exception of unknown type");
  return Refuse(KrResult::Code::Failed, {kFunction, kFile}, text, aPaint);
}

KrResult DisplayContent::Display(const IKrImage* aImage, Paint& aPaint) {
  if (!aImage)
    return Refuse(KrResult::Code::InvalidInput, {kFunction, kFile},
                  "There is no image to display: the pointer given is null", aPaint);
  // The image may be the application's own class. It is asked without the lock.
  try {
    return DisplaySnapshot(ImageSnapshot(*aImage), nullptr, aPaint);
  } catch (const std::exception& error) {
    return RefuseException(error.what(), aPaint);
  } catch (...) {
    return RefuseException(nullptr, aPaint);
  }
}

KrResult DisplayContent::Display(std::shared_ptr<const KrBuffer> aBuffer, Paint& aPaint) {
  const ImageSnapshot source(*aBuffer->GetImage());
  return DisplaySnapshot(source, std::move(aBuffer), aPaint);
}

KrResult DisplayContent::DisplaySnapshot(const ImageSnapshot& aSource, std::shared_ptr<const KrBuffer> aBuffer,
                                         Paint& aPaint) {
  const auto width = static_cast<std::uint16_t>(aSource.GetWidth());
  const auto height = static_cast<std::uint16_t>(aSource.GetHeight());
  const auto size = static_cast<std::uint32_t>(aSource.GetImageSize());
  if (width == 0 || height == 0 || size == 0)
    return Refuse(KrResult::Code::InvalidInput, {kFunction, kFile, 156},
                  "The width, height and size of the buffer must be greater than 0 (width=" + std::to_string(width) +
                      ", height=" + std::to_string(height) + ", size=" + std::to_string(size),
                  aPaint);
  const KrPixelType type = aSource.GetPixelType();
  if (!KrBufferConverter::IsConversionSupported(type, kDisplayPixelType))
    return RefuseWith(KrResult::Code::Failed, {kFunction, kFile, 162},
                      "Cannot convert from pixel type " + std::to_string(type) + " to " +
                          std::to_string(kDisplayPixelType),
                      MakeFormatText(type), aPaint);
  Accept(aSource, std::move(aBuffer), aPaint);
  return {};
}

void DisplayContent::Accept(const ImageSnapshot& aSource, std::shared_ptr<const KrBuffer> aBuffer, Paint& aPaint) {
  const std::uint32_t width = aSource.GetWidth();
  const std::uint32_t height = aSource.GetHeight();
  // Released when the lock is given up: the deleter of a buffer that was held is the application's code.
  std::shared_ptr<HeldImage> former;
  const std::lock_guard lock(mDisplayLock);
  CopyText(mDisplayedText, mPendingText);
  mRefusalText.Clear();
  const bool isResized = width != mLastWidth || height != mLastHeight;
  mLastWidth = width;
  mLastHeight = height;
  if (isResized)
    mGeometry.MarkDirty();

  const Clock::time_point begin = Clock::now();
  KrLineConversion lines;
  std::shared_ptr<HeldImage> next;
  if (lines.Open(mConverter, aSource).IsOK())
    next = FindRoom(aSource, std::move(aBuffer));
  if (!next) {
    // A conversion's failure is not reported; what is held then is shown.
    mCounts.Lose();
    former = std::exchange(mHeld, FindSubstitute(width, height));
    if (former != mHeld) {
      mCounts.Drop();
      ++mHeldNumber;
    }
    const Shown* none = nullptr;
    aPaint = Paint::Needed;
    if (mHeld && !isResized && CanDrawAtOnce(mHeld->GetLines())) {
      const Shown shown{mHeld->GetLines(), mHeld->GetSource()};
      aPaint = DrawCounted(&shown) ? Paint::NotNeeded : Paint::Needed;
    }
    static_cast<void>(none);
    return;
  }
  FrameTarget::Times copying{Clock::now() - begin, {}};
  mCounts.Accept();
  // The frame is drawn from the source itself and only then copied, so that it is seen as early as can be.
  aPaint = Paint::Needed;
  if (!isResized && CanDrawAtOnce(lines)) {
    const Shown shown{lines, aSource};
    aPaint = DrawCounted(&shown) ? Paint::NotNeeded : Paint::Needed;
  }
  const Clock::time_point copyBegin = Clock::now();
  [[maybe_unused]] const bool taken = next->Take(aSource, std::move(lines));
  copying.conversion += Clock::now() - copyBegin;
  mCounts.AddTimes(copying);
  former = std::exchange(mHeld, std::move(next));
  ++mHeldNumber;
}

std::shared_ptr<HeldImage> DisplayContent::FindRoom(const ImageSnapshot& aSource,
                                                    std::shared_ptr<const KrBuffer> aBuffer) {
  try {
    if (aBuffer)
      return std::make_shared<HeldImage>(std::move(aBuffer));
    const bool isFree = mHeld && mHeld->IsCopy() && mHeld.use_count() == 1;
    std::shared_ptr<HeldImage> room = isFree ? mHeld : std::make_shared<HeldImage>();
    return room->MakeRoom(aSource) ? room : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

std::shared_ptr<HeldImage> DisplayContent::FindSubstitute(std::uint32_t aWidth, std::uint32_t aHeight) {
  if (mHeld && mHeld->GetLines().GetWidth() == aWidth && mHeld->GetLines().GetHeight() == aHeight)
    return mHeld;
  try {
    auto black = std::make_shared<HeldImage>();
    return black->TakeBlack(mConverter, aWidth, aHeight) ? black : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void DisplayContent::Clear() {
  // Released when the locks are given up, as in Accept.
  std::shared_ptr<HeldImage> former;
  const std::lock_guard internalLock(mInternalLock);
  const std::lock_guard lock(mDisplayLock);
  mPendingText.Clear();
  mDisplayedText.Clear();
  mRefusalText.Clear();
  if (mHeld) {
    former = std::move(mHeld);
    mLastWidth = 0;
    mCounts.Drop();
  }
  mInternalBuffer.Free();
  mInternalNumber = 0;
}

void DisplayContent::SetPendingText(const KrString& aText) {
  const std::lock_guard lock(mDisplayLock);
  mPendingText = aText;
}

KrString DisplayContent::GetPendingText() const {
  const std::lock_guard lock(mDisplayLock);
  return mPendingText;
}

KrBuffer& DisplayContent::GetInternalBuffer() {
  // Released when the locks are given up, as in Accept.
  std::shared_ptr<HeldImage> held;
  const std::lock_guard internalLock(mInternalLock);
  std::uint64_t number = 0;
  {
    const std::lock_guard lock(mDisplayLock);
    held = mHeld;
    number = mHeldNumber;
  }
  // The buffer is lent to the application, which may have put something else into it.
  mInternalBuffer.SetPayloadType(KrPayloadType::Image);
  const IKrImage& image = *mInternalBuffer.GetImage();
  const bool isOurs = held && mInternalBuffer.GetDataPointer() == mInternalData && image.GetImageSize() != 0 &&
                      image.GetWidth() == held->GetLines().GetWidth() &&
                      image.GetHeight() == held->GetLines().GetHeight() && image.GetPixelType() == kDisplayPixelType &&
                      image.GetPaddingX() == 0;
  if (!isOurs) {
    mInternalBuffer.Free();
    mInternalNumber = 0;
  }
  if (held && mInternalNumber != number) {
    const bool isConverted = held->GetLines().ConvertAll(mConverter, mInternalBuffer).IsOK();
    if (!isConverted)
      mInternalBuffer.Free();
    mInternalNumber = isConverted ? number : 0;
    mInternalData = mInternalBuffer.GetDataPointer();
  }
  const std::lock_guard lock(mDisplayLock);
  // While it is still held its memory is to be written again by the thread that takes the lock next.
  if (held == mHeld)
    held.reset();
  return mInternalBuffer;
}

void DisplayContent::SetTarget(FrameTarget* aTarget) {
  const std::lock_guard lock(mDisplayLock);
  mTarget = aTarget;
}

bool DisplayContent::CanDrawAtOnce(const KrLineConversion& aLines) const {
  // Until the first paint for an image of this size the geometry is that of another one.
  const ViewArea& area = mGeometry.GetArea();
  return mTarget && area.imageWidth == aLines.GetWidth() && area.imageHeight == aLines.GetHeight();
}

FrameTarget::Outcome DisplayContent::Draw(FrameTarget& aTarget, const Shown* aShown, FrameTarget::Times& aTimes) {
  try {
    Frame frame;
    frame.view = mGeometry.GetArea();
    if (aShown) {
      frame.image = &aShown->lines;
      frame.overlayText = mDisplayedText;
      if (mIsCursorLineEnabled)
        frame.cursorText = MakeCursorText(*aShown);
    } else {
      frame.refusalText = mHeld ? KrString() : mRefusalText;
    }
    return aTarget.Draw(frame, aTimes);
  } catch (const std::bad_alloc&) {
    return FrameTarget::Outcome::Dropped;
  }
}

bool DisplayContent::DrawCounted(const Shown* aShown) {
  FrameTarget::Times times;
  const FrameTarget::Outcome outcome = Draw(*mTarget, aShown, times);
  mCounts.AddTimes(times);
  if (outcome == FrameTarget::Outcome::Shown)
    mCounts.Show();
  return outcome == FrameTarget::Outcome::Shown;
}

DisplayContent::Painted DisplayContent::PaintWindow(std::int32_t aClientWidth, std::int32_t aClientHeight,
                                                    std::int32_t aBarThickness) {
  const std::lock_guard lock(mDisplayLock);
  mGeometry.SetClient(aClientWidth, aClientHeight, aBarThickness);
  Painted painted;
  painted.bars = mGeometry.Update(mLastWidth, mLastHeight);
  if (!mTarget)
    return painted;
  FrameTarget::Times times;
  if (mHeld) {
    const Shown shown{mHeld->GetLines(), mHeld->GetSource()};
    painted.outcome = Draw(*mTarget, &shown, times);
  } else {
    painted.outcome = Draw(*mTarget, nullptr, times);
  }
  mCounts.AddTimes(times);
  if (painted.outcome == FrameTarget::Outcome::Shown)
    mCounts.Show();
  return painted;
}

void DisplayContent::PaintTo(FrameTarget& aTarget) {
  const std::lock_guard lock(mDisplayLock);
  FrameTarget::Times times;
  if (mHeld) {
    const Shown shown{mHeld->GetLines(), mHeld->GetSource()};
    Draw(aTarget, &shown, times);
  } else {
    Draw(aTarget, nullptr, times);
  }
}

KrDisplayStatistics DisplayContent::GetStatistics() const {
  const std::lock_guard lock(mDisplayLock);
  return mCounts.Get();
}

void DisplayContent::ResetStatistics() {
  const std::lock_guard lock(mDisplayLock);
  mCounts.Reset();
}

void DisplayContent::SetCursor(const std::optional<PixelPoint>& aClientPoint) {
  const std::lock_guard lock(mDisplayLock);
  mCursor = aClientPoint;
}

std::optional<PixelPoint> DisplayContent::FindCursorPlace(const KrLineConversion& aLines) const {
  const ViewArea& area = mGeometry.GetArea();
  if (!mCursor || area.imageWidth != aLines.GetWidth() || area.imageHeight != aLines.GetHeight())
    return std::nullopt;
  return FindImagePixel(area, *mCursor);
}

std::optional<KrDisplayPixel> DisplayContent::GetCursorPixel() const {
  const std::lock_guard lock(mDisplayLock);
  if (!mHeld)
    return std::nullopt;
  const KrLineConversion& lines = mHeld->GetLines();
  const std::optional<PixelPoint> place = FindCursorPlace(lines);
  if (!place)
    return std::nullopt;
  KrDisplayPixel pixel;
  pixel.x = static_cast<std::uint32_t>(place->x);
  pixel.y = static_cast<std::uint32_t>(place->y);
  // A format that cannot tell leaves the value without samples.
  [[maybe_unused]] const KrResult read = KrReadPixel(mHeld->GetSource(), pixel.x, pixel.y, pixel.raw);
  std::vector<std::uint8_t> line(std::size_t{lines.GetWidth()} * 4);
  lines.ConvertLine(pixel.y, line.data());
  const std::uint8_t* shown = line.data() + std::size_t{pixel.x} * 4;
  pixel.blue = shown[0];
  pixel.green = shown[1];
  pixel.red = shown[2];
  return pixel;
}

KrString DisplayContent::MakeCursorText(const Shown& aShown) const {
  const std::optional<PixelPoint> place = FindCursorPlace(aShown.lines);
  if (!place)
    return {};
  const auto x = static_cast<std::uint32_t>(place->x);
  const auto y = static_cast<std::uint32_t>(place->y);
  KrPixelValue value;
  // A format that cannot tell leaves the value without samples.
  [[maybe_unused]] const KrResult read = KrReadPixel(aShown.source, x, y, value);
  return MakePixelText(x, y, value);
}

void DisplayContent::SetCursorLineEnabled(bool aEnabled) {
  const std::lock_guard lock(mDisplayLock);
  mIsCursorLineEnabled = aEnabled;
}

bool DisplayContent::IsCursorLineEnabled() const {
  const std::lock_guard lock(mDisplayLock);
  return mIsCursorLineEnabled;
}

} // namespace krgui

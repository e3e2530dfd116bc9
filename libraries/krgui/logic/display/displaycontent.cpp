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

KrPixelValue ReadRawPixel(const IKrImage& aSource, PixelPoint aPlace) {
  KrPixelValue value;
  // A format that cannot tell leaves the value without samples.
  [[maybe_unused]] const KrResult read =
      KrReadPixel(aSource, static_cast<std::uint32_t>(aPlace.x), static_cast<std::uint32_t>(aPlace.y), value);
  return value;
}

/// Why an image could not be kept; without a reason of the conversion there was no memory.
KrResult DescribeLoss(const KrResult& aOpened) {
  return aOpened.IsOK() ? KrResult(KrResult::Code::SystemError,
                                   "An image was not displayed: there is too little memory for it. Free buffers.")
                        : aOpened;
}

} // namespace

KrDisplayPixel DisplayContent::ReadDisplayPixel(const Shown& aShown, PixelPoint aPlace) {
  constexpr std::size_t kBgraBytes = 4;
  KrDisplayPixel pixel;
  pixel.x = static_cast<std::uint32_t>(aPlace.x);
  pixel.y = static_cast<std::uint32_t>(aPlace.y);
  pixel.raw = ReadRawPixel(aShown.source, aPlace);
  std::vector<std::uint8_t> line(kBgraBytes * aShown.lines.GetWidth());
  aShown.lines.ConvertLine(pixel.y, line.data());
  const std::uint8_t* bgra = line.data() + kBgraBytes * pixel.x;
  pixel.blue = bgra[0];
  pixel.green = bgra[1];
  pixel.red = bgra[2];
  return pixel;
}

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
  return DisplayWhat([aImage] { return ImageSnapshot(*aImage); }, nullptr, aPaint);
}

KrResult DisplayContent::Display(std::shared_ptr<const KrBuffer> aBuffer, Paint& aPaint) {
  const IKrImage& image = *aBuffer->GetImage();
  return DisplayWhat([&image] { return ImageSnapshot(image); }, aBuffer, aPaint);
}

template <typename Ask>
KrResult DisplayContent::DisplayWhat(const Ask& aAsk, const std::shared_ptr<const KrBuffer>& aBuffer, Paint& aPaint) {
  const TimePoint callBegin = Clock::now();
  try {
    return DisplaySnapshot(aAsk(), aBuffer, callBegin, aPaint);
  } catch (const std::exception& error) {
    return RefuseException(error.what(), aPaint);
  } catch (...) {
    return RefuseException(nullptr, aPaint);
  }
}

KrResult DisplayContent::DisplaySnapshot(const ImageSnapshot& aSource, const std::shared_ptr<const KrBuffer>& aBuffer,
                                         TimePoint aCallBegin, Paint& aPaint) {
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
  const KrResult kept = Accept(aSource, aBuffer, aCallBegin, aPaint);
  // Display succeeds all the same; without a word nobody would know why nothing moves.
  if (!kept.IsOK())
    KrLogger("KrGUILib").Log(KrLogLevel::Warning, {kFunction, kFile}, kept.GetDescription());
  return {};
}

KrResult DisplayContent::Accept(const ImageSnapshot& aSource, const std::shared_ptr<const KrBuffer>& aBuffer,
                                TimePoint aCallBegin, Paint& aPaint) {
  // Released when the lock is given up: the deleter of a buffer that was held is the application's code.
  std::shared_ptr<HeldImage> former;
  const std::lock_guard lock(mDisplayLock);
  mCallBegin = aCallBegin;
  const bool isResized = aSource.GetWidth() != mLastWidth || aSource.GetHeight() != mLastHeight;
  mLastWidth = aSource.GetWidth();
  mLastHeight = aSource.GetHeight();
  ++mNumber;
  CopyText(mDisplayedText, mPendingText);
  mRefusalText.Clear();
  if (isResized)
    mGeometry.MarkDirty();

  const Clock::time_point openBegin = Clock::now();
  KrLineConversion lines;
  std::shared_ptr<HeldImage> next;
  const KrResult opened = lines.Open(mConverter, aSource);
  if (opened.IsOK())
    next = FindRoom(aSource, aBuffer);
  if (!next) {
    former = Substitute(isResized, aPaint);
    return std::exchange(mHasLost, true) ? KrResult() : DescribeLoss(opened);
  }
  mHasLost = false;
  std::chrono::nanoseconds conversion = Clock::now() - openBegin;
  mCounts.Accept();
  // The frame is drawn from the source itself and only then copied, so that it is seen as early as can be.
  aPaint = isResized ? Paint::Needed : DrawAtOnce({lines, aSource});
  const Clock::time_point copyBegin = Clock::now();
  next->Take(aSource, std::move(lines));
  conversion += Clock::now() - copyBegin;
  mCounts.AddTimes({conversion, {}});
  // The memory of the image before is mostly written again; it is then held by nobody else.
  if (next != mHeld)
    former = std::exchange(mHeld, std::move(next));
  return {};
}

std::shared_ptr<HeldImage> DisplayContent::Substitute(bool aIsResized, Paint& aPaint) {
  mCounts.Lose();
  std::shared_ptr<HeldImage> former;
  if (!mHeld || mHeld->GetLines().GetWidth() != mLastWidth || mHeld->GetLines().GetHeight() != mLastHeight) {
    former = std::exchange(mHeld, MakeBlack());
    mCounts.Drop();
  }
  aPaint = aIsResized || !mHeld ? Paint::Needed : DrawAtOnce({mHeld->GetLines(), mHeld->GetSource()});
  return former;
}

std::shared_ptr<HeldImage> DisplayContent::FindRoom(const ImageSnapshot& aSource,
                                                    const std::shared_ptr<const KrBuffer>& aBuffer) {
  try {
    if (aBuffer)
      return std::make_shared<HeldImage>(aBuffer);
    const bool isFree = mHeld && mHeld->IsCopy() && mHeld.use_count() == 1;
    std::shared_ptr<HeldImage> room = isFree ? mHeld : std::exchange(mSpare, nullptr);
    if (!room)
      room = std::make_shared<HeldImage>();
    return room->MakeRoom(aSource) ? room : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

std::shared_ptr<HeldImage> DisplayContent::MakeBlack() const {
  try {
    auto black = std::make_shared<HeldImage>();
    return black->TakeBlack(mConverter, mLastWidth, mLastHeight) ? black : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void DisplayContent::Clear() {
  // Released when the lock is given up, as in Accept.
  std::shared_ptr<HeldImage> former;
  const std::lock_guard lock(mDisplayLock);
  mPendingText.Clear();
  mDisplayedText.Clear();
  mRefusalText.Clear();
  if (mHeld) {
    former = std::move(mHeld);
    mLastWidth = 0;
    mCounts.Drop();
  }
  mSpare.reset();
  if (mIsConverting)
    mIsConversionVain = true;
  else
    mInternalBuffer.Clear();
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
  const std::lock_guard conversionLock(mConversionLock);
  std::uint64_t number = 0;
  {
    const std::lock_guard lock(mDisplayLock);
    held = mHeld;
    number = mNumber;
    mIsConverting = held != nullptr;
    if (!held)
      mInternalBuffer.Clear();
  }
  if (held)
    mInternalBuffer.Convert(held->GetLines(), number, mConverter);
  const std::lock_guard lock(mDisplayLock);
  mIsConverting = false;
  if (std::exchange(mIsConversionVain, false))
    mInternalBuffer.Clear();
  // Given back under the lock, so that who takes it next may write to the memory.
  else if (held == mHeld)
    held.reset();
  else if (held && held->IsCopy())
    mSpare = std::move(held);
  return mInternalBuffer.Get();
}

void DisplayContent::SetTarget(FrameTarget* aTarget) {
  const std::lock_guard lock(mDisplayLock);
  mTarget = aTarget;
}

DisplayContent::Paint DisplayContent::DrawAtOnce(const Shown& aShown) {
  // Until the first paint for an image of this size the geometry is that of another one.
  if (!mTarget || !IsViewOf(aShown.lines))
    return Paint::Needed;
  return DrawCounted(&aShown, &FrameTarget::Draw) == FrameTarget::Outcome::Shown ? Paint::NotNeeded : Paint::Needed;
}

FrameTarget::Outcome DisplayContent::DrawCounted(const Shown* aShown, DrawingWay aWay) {
  FrameTarget::Times times;
  const FrameTarget::Outcome outcome = Draw(*mTarget, aShown, aWay, times);
  mCounts.AddTimes(times);
  if (outcome == FrameTarget::Outcome::Shown)
    mCounts.Show();
  return outcome;
}

FrameTarget::Outcome DisplayContent::Draw(FrameTarget& aTarget, const Shown* aShown, DrawingWay aWay,
                                          FrameTarget::Times& aTimes) const {
  try {
    Frame frame;
    frame.callBegin = mCallBegin;
    frame.view = mGeometry.GetArea();
    frame.number = mNumber;
    if (aShown && IsViewOf(aShown->lines)) {
      frame.image = &aShown->lines;
      frame.overlayText = mDisplayedText;
      frame.cursorText = mIsCursorLineEnabled ? MakeCursorText(*aShown) : KrString();
    } else {
      frame.refusalText = aShown ? KrString() : mRefusalText;
    }
    return (aTarget.*aWay)(frame, aTimes);
  } catch (...) {
    // Mostly there is no memory for it now. What is held must be in order whatever the target does.
    return FrameTarget::Outcome::Dropped;
  }
}

std::optional<DisplayContent::Shown> DisplayContent::GetHeld() const {
  if (!mHeld)
    return std::nullopt;
  return Shown{mHeld->GetLines(), mHeld->GetSource()};
}

DisplayContent::Painted DisplayContent::PaintWindow(std::int32_t aClientWidth, std::int32_t aClientHeight,
                                                    std::int32_t aBarThickness) {
  const TimePoint callBegin = Clock::now();
  const std::lock_guard lock(mDisplayLock);
  mCallBegin = callBegin;
  mGeometry.SetClient(aClientWidth, aClientHeight, aBarThickness);
  Painted painted;
  painted.bars = mGeometry.Update(mLastWidth, mLastHeight);
  const std::optional<Shown> held = GetHeld();
  if (mTarget)
    painted.outcome = DrawCounted(held ? &*held : nullptr, &FrameTarget::Paint);
  return painted;
}

void DisplayContent::PaintTo(FrameTarget& aTarget) {
  const std::lock_guard lock(mDisplayLock);
  const std::optional<Shown> held = GetHeld();
  FrameTarget::Times times;
  Draw(aTarget, held ? &*held : nullptr, &FrameTarget::Draw, times);
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

bool DisplayContent::IsViewOf(const KrLineConversion& aLines) const {
  const ViewArea& area = mGeometry.GetArea();
  return area.imageWidth == aLines.GetWidth() && area.imageHeight == aLines.GetHeight();
}

std::optional<PixelPoint> DisplayContent::FindCursorPlace(const KrLineConversion& aLines) const {
  return mCursor && IsViewOf(aLines) ? FindImagePixel(mGeometry.GetArea(), *mCursor) : std::nullopt;
}

std::optional<KrDisplayPixel> DisplayContent::GetCursorPixel() const {
  const std::lock_guard lock(mDisplayLock);
  const std::optional<PixelPoint> place = mHeld ? FindCursorPlace(mHeld->GetLines()) : std::nullopt;
  if (!place)
    return std::nullopt;
  try {
    return ReadDisplayPixel({mHeld->GetLines(), mHeld->GetSource()}, *place);
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
}

KrString DisplayContent::MakeCursorText(const Shown& aShown) const {
  const std::optional<PixelPoint> place = FindCursorPlace(aShown.lines);
  if (!place)
    return {};
  return MakePixelText(static_cast<std::uint32_t>(place->x), static_cast<std::uint32_t>(place->y),
                       ReadRawPixel(aShown.source, *place));
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

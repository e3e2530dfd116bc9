#include "logic/display/displaycontent.h"

#include "krbase/krlogger.h"

#include <string>

namespace krgui {

namespace {

KrResult Refuse(KrResult::Code aCode, int aLine, const std::string& aText) {
  KrLogger("KrGUILib").Log(KrLogLevel::Error, {"DisplayWnd::Display", "displaywnd", aLine}, aText);
  return {aCode, aText};
}

// The buffer is lent to the application, which may have put something else into it.
bool IsDrawable(const IKrImage* aImage) {
  return aImage && aImage->GetImageSize() > 0 && aImage->GetPixelType() == DisplayContent::kDisplayPixelType &&
         aImage->GetPaddingX() == 0;
}

} // namespace

KrResult DisplayContent::Check(const IKrImage* aImage) const {
  if (!aImage)
    return Refuse(KrResult::Code::InvalidInput, 0, "There is no image to display: the pointer given is null");

  const auto width = static_cast<std::uint16_t>(aImage->GetWidth());
  const auto height = static_cast<std::uint16_t>(aImage->GetHeight());
  const auto size = static_cast<std::uint32_t>(aImage->GetImageSize());
  if (width == 0 || height == 0 || size == 0)
    return Refuse(KrResult::Code::InvalidInput, 156,
                  "The width, height and size of the buffer must be greater than 0 (width=" + std::to_string(width) +
                      ", height=" + std::to_string(height) + ", size=" + std::to_string(size));
  if (!mConverter.IsConversionSupported(aImage->GetPixelType(), kDisplayPixelType))
    return Refuse(KrResult::Code::Failed, 162,
                  "Cannot convert from pixel type " + std::to_string(aImage->GetPixelType()) + " to " +
                      std::to_string(kDisplayPixelType));
  return {};
}

KrResult DisplayContent::Display(const IKrImage* aImage) {
  if (KrResult result = Check(aImage); !result.IsOK())
    return result;

  const std::uint32_t width = aImage->GetWidth();
  const std::uint32_t height = aImage->GetHeight();
  const std::lock_guard lock(mDisplayLock);
  if (width != mLastWidth || height != mLastHeight)
    mViewDirty = true;
  mLastWidth = width;
  mLastHeight = height;
  mDisplayedText = mPendingText;

  // The application may have used the buffer for something else.
  mInternalBuffer.SetPayloadType(KrPayloadType::Image);
  IKrImage* shown = mInternalBuffer.GetImage();
  if (shown->GetWidth() != width || shown->GetHeight() != height || shown->GetPixelType() != kDisplayPixelType) {
    // Should it fail, the conversion tries again. An image that then cannot be converted either leaves the window with
    // whatever the internal buffer holds.
    [[maybe_unused]] const KrResult allocated = shown->Alloc(width, height, kDisplayPixelType);
  }
  [[maybe_unused]] const KrResult converted = mConverter.Convert(aImage, &mInternalBuffer, true, false);
  return {};
}

void DisplayContent::Clear() {
  const std::lock_guard lock(mDisplayLock);
  mPendingText.Clear();
  mDisplayedText.Clear();
  if (mInternalBuffer.GetDataPointer()) {
    mInternalBuffer.Free();
    mLastWidth = 0;
  }
}

void DisplayContent::SetPendingText(const KrString& aText) {
  const std::lock_guard lock(mDisplayLock);
  mPendingText = aText;
}

KrString DisplayContent::GetPendingText() const {
  const std::lock_guard lock(mDisplayLock);
  return mPendingText;
}

bool DisplayContent::IsViewDirty() const {
  const std::lock_guard lock(mDisplayLock);
  return mViewDirty;
}

void DisplayContent::MarkViewDirty() {
  const std::lock_guard lock(mDisplayLock);
  mViewDirty = true;
}

DisplayContent::Frame DisplayContent::PrepareFrame(std::int32_t aClientWidth, std::int32_t aClientHeight) {
  mViewDirty = false;
  Frame frame;
  const IKrImage* image = mInternalBuffer.GetImage();
  if (!IsDrawable(image)) {
    frame.view = ComputeFitView(aClientWidth, aClientHeight, 0, 0);
    return frame;
  }
  frame.image = image;
  frame.overlayText = mDisplayedText;
  frame.view = ComputeFitView(aClientWidth, aClientHeight, image->GetWidth(), image->GetHeight());
  return frame;
}

} // namespace krgui

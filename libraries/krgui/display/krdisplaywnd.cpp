#include "krgui/krdisplaywnd.h"

#include "display/displaywnd.h"
#include "krbase/krlogger.h"

#include <exception>

KrDisplayWnd::KrDisplayWnd() {
  mWnd = std::make_unique<krgui::DisplayWnd>();
}

KrDisplayWnd::~KrDisplayWnd() {
  DeleteWnd();
}

krgui::DisplayWnd& KrDisplayWnd::GetWnd() const {
  return static_cast<krgui::DisplayWnd&>(*mWnd);
}

KrResult KrDisplayWnd::Display(const KrBuffer& aBuffer, bool aFlag) {
  if (aBuffer.GetPayloadType() != KrPayloadType::Image) {
    const KrString text = "aBuffer payload type not image";
    KrLogger("KrGUILib").Log(KrLogLevel::Error, {"KrDisplayWnd::Display", "krdisplaywnd", 85}, text);
    return {KrResult::Code::InvalidInput, text};
  }
  return Display(aBuffer.GetImage(), aFlag);
}

KrResult KrDisplayWnd::Display(const IKrImage* aImage, bool) {
  // The image may be the application's own class.
  try {
    return GetWnd().Display(aImage);
  } catch (const std::exception& error) {
    return {KrResult::Code::Failed, KrString("Displaying an image was ended by an exception: ") + error.what()};
  } catch (...) {
    return {KrResult::Code::Failed, "Displaying an image was ended by an exception of unknown type"};
  }
}

void KrDisplayWnd::Clear() {
  GetWnd().Clear();
}

KrBufferConverter& KrDisplayWnd::GetConverter() {
  return GetWnd().GetContent().GetConverter();
}

KrBuffer& KrDisplayWnd::GetInternalBuffer() {
  return GetWnd().GetContent().GetInternalBuffer();
}

KrResult KrDisplayWnd::SetBackgroundColor(unsigned char aRed, unsigned char aGreen, unsigned char aBlue) {
  GetWnd().GetContent().GetStyle().backgroundColor = krgui::MakeColorRef(aRed, aGreen, aBlue);
  return {};
}

void KrDisplayWnd::SetTextOverlay(const KrString& aText) {
  GetWnd().GetContent().SetPendingText(aText);
}

KrString KrDisplayWnd::GetTextOverlay() const {
  return GetWnd().GetContent().GetPendingText();
}

void KrDisplayWnd::SetTextOverlayColor(unsigned char aRed, unsigned char aGreen, unsigned char aBlue) {
  GetWnd().GetContent().GetStyle().overlayColor = krgui::MakeColorRef(aRed, aGreen, aBlue);
}

void KrDisplayWnd::GetTextOverlayColor(unsigned char& aRed, unsigned char& aGreen, unsigned char& aBlue) const {
  const krgui::ColorRef color = GetWnd().GetContent().GetStyle().overlayColor;
  aRed = krgui::GetRed(color);
  aGreen = krgui::GetGreen(color);
  aBlue = krgui::GetBlue(color);
}

KrResult KrDisplayWnd::SetTextOverlaySize(int aSize) {
  GetWnd().GetContent().GetStyle().overlaySize = aSize;
  return {};
}

int KrDisplayWnd::GetTextOverlaySize() const {
  return GetWnd().GetContent().GetStyle().overlaySize;
}

void KrDisplayWnd::SetTextOverlayOffsetX(unsigned int aOffset) {
  GetWnd().GetContent().GetStyle().overlayOffsetX = aOffset;
}

void KrDisplayWnd::SetTextOverlayOffsetY(unsigned int aOffset) {
  GetWnd().GetContent().GetStyle().overlayOffsetY = aOffset;
}

int KrDisplayWnd::GetTextOverlayOffsetX() const {
  return static_cast<int>(GetWnd().GetContent().GetStyle().overlayOffsetX.load());
}

int KrDisplayWnd::GetTextOverlayOffsetY() const {
  return static_cast<int>(GetWnd().GetContent().GetStyle().overlayOffsetY.load());
}

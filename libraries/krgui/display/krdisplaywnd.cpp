#include "krgui/krdisplaywnd.h"

#include "display/displaywnd.h"

#include <utility>

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
  return aBuffer.GetPayloadType() == KrPayloadType::Image ? Display(aBuffer.GetImage(), aFlag)
                                                          : GetWnd().RefusePayload();
}

KrResult KrDisplayWnd::Display(const IKrImage* aImage, bool) {
  return GetWnd().Display(aImage);
}

KrResult KrDisplayWnd::DisplayHeld(std::shared_ptr<const KrBuffer> aBuffer, bool) {
  return GetWnd().DisplayHeld(std::move(aBuffer));
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

void KrDisplayWnd::Zoom1_1() {
  GetWnd().Zoom1_1();
}

void KrDisplayWnd::ZoomFit() {
  GetWnd().ZoomFit();
}

void KrDisplayWnd::ZoomIn() {
  GetWnd().ZoomIn();
}

void KrDisplayWnd::ZoomOut() {
  GetWnd().ZoomOut();
}

HWND KrDisplayWnd::GetHScrollHandle() const {
  return GetWnd().GetScrollHandle(krgui::ViewAxis::Horizontal);
}

HWND KrDisplayWnd::GetVScrollHandle() const {
  return GetWnd().GetScrollHandle(krgui::ViewAxis::Vertical);
}

int KrDisplayWnd::GetHScrollPos() const {
  return GetWnd().GetScrollPos(krgui::ViewAxis::Horizontal);
}

int KrDisplayWnd::GetVScrollPos() const {
  return GetWnd().GetScrollPos(krgui::ViewAxis::Vertical);
}

void KrDisplayWnd::GetHScrollRange(int& aMin, int& aMax) const {
  GetWnd().GetScrollRange(krgui::ViewAxis::Horizontal, aMin, aMax);
}

void KrDisplayWnd::GetVScrollRange(int& aMin, int& aMax) const {
  GetWnd().GetScrollRange(krgui::ViewAxis::Vertical, aMin, aMax);
}

KrResult KrDisplayWnd::SetHScrollPos(int aPosition) {
  return GetWnd().SetScrollPos(krgui::ViewAxis::Horizontal, aPosition);
}

KrResult KrDisplayWnd::SetVScrollPos(int aPosition) {
  return GetWnd().SetScrollPos(krgui::ViewAxis::Vertical, aPosition);
}

KrDisplayStatistics KrDisplayWnd::GetStatistics() const {
  return GetWnd().GetContent().GetStatistics();
}

void KrDisplayWnd::ResetStatistics() {
  GetWnd().GetContent().ResetStatistics();
}

std::optional<KrDisplayPixel> KrDisplayWnd::GetCursorPixel() const {
  return GetWnd().GetContent().GetCursorPixel();
}

std::optional<KrDisplayMapping> KrDisplayWnd::GetMapping() const {
  return GetWnd().GetMapping();
}

void KrDisplayWnd::SetCursorLineEnabled(bool aEnabled) {
  GetWnd().SetCursorLineEnabled(aEnabled);
}

bool KrDisplayWnd::IsCursorLineEnabled() const {
  return GetWnd().GetContent().IsCursorLineEnabled();
}

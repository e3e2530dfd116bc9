#include "krgui/krcamerabridgemanagerwnd.h"

#include "camerabridge/camerabridgemanagerwnd.h"

KrCameraBridgeManagerWnd::KrCameraBridgeManagerWnd() {
  mWnd = std::make_unique<krgui::CameraBridgeManagerWnd>();
}

KrCameraBridgeManagerWnd::~KrCameraBridgeManagerWnd() {
  DeleteWnd();
}

krgui::CameraBridgeManagerWnd& KrCameraBridgeManagerWnd::GetWnd() const {
  return static_cast<krgui::CameraBridgeManagerWnd&>(*mWnd);
}

KrResult KrCameraBridgeManagerWnd::SetDevice(KrDevice* aDevice) {
  return GetWnd().SetDevice(aDevice);
}

KrResult KrCameraBridgeManagerWnd::SetStream(KrStream* aStream) {
  return GetWnd().SetStream(aStream);
}

KrResult KrCameraBridgeManagerWnd::Load(KrConfigurationReader& aReader, KrStringList& aErrors) {
  return GetWnd().Load(aReader, aErrors);
}

KrResult KrCameraBridgeManagerWnd::Save(KrConfigurationWriter& aWriter) {
  return GetWnd().Save(aWriter);
}

KrResult KrCameraBridgeManagerWnd::Recover() {
  return krgui::CameraBridgeManagerWnd::Recover();
}

int KrCameraBridgeManagerWnd::GetBridgeCount() {
  return GetWnd().GetBridgeCount();
}

KrCameraBridge* KrCameraBridgeManagerWnd::GetBridge(int aIndex) {
  return GetWnd().GetBridge(aIndex);
}

KrDeviceSerial KrCameraBridgeManagerWnd::GetBridgePort(int aIndex) {
  return GetWnd().GetBridgePort(aIndex);
}

void KrCameraBridgeManagerWnd::ShowPCF() {
  GetWnd().SetPCFVisible(true);
}

void KrCameraBridgeManagerWnd::HidePCF() {
  GetWnd().SetPCFVisible(false);
}

bool KrCameraBridgeManagerWnd::IsPCFVisible() {
  return GetWnd().IsPCFVisible();
}

#include "krgui/krserialbridgemanagerwnd.h"

#include "serial/serialbridgemanagerwnd.h"

KrSerialBridgeManagerWnd::KrSerialBridgeManagerWnd() {
  mWnd = std::make_unique<krgui::SerialBridgeManagerWnd>();
}

KrSerialBridgeManagerWnd::~KrSerialBridgeManagerWnd() {
  DeleteWnd();
}

krgui::SerialBridgeManagerWnd& KrSerialBridgeManagerWnd::GetWnd() const {
  return static_cast<krgui::SerialBridgeManagerWnd&>(*mWnd);
}

KrResult KrSerialBridgeManagerWnd::SetDevice(IKrDeviceAdapter* aAdapter) {
  return GetWnd().SetDevice(aAdapter);
}

void KrSerialBridgeManagerWnd::SetCreatingPorts(bool aIsOn) {
  GetWnd().SetCreatingPorts(aIsOn);
}

KrResult KrSerialBridgeManagerWnd::Load(KrPropertyList& aPropertyList, KrStringList& aErrorList) {
  return GetWnd().Load(aPropertyList, aErrorList);
}

KrResult KrSerialBridgeManagerWnd::Save(KrPropertyList& aPropertyList) {
  return GetWnd().Save(aPropertyList);
}

KrResult KrSerialBridgeManagerWnd::Recover() {
  return krgui::SerialBridgeManagerWnd::Recover();
}

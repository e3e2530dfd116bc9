#include "keptbridges.h"

#include <string>
#include <utility>

namespace krviewer {

namespace {

bool HasBridge(const KrPropertyList& aBridges, KrDeviceSerial aPort) {
  return aBridges.GetProperty(GetPortName(aPort)) != nullptr;
}

bool IsWithoutHostPort(const KrPropertyList& aBridges, KrDeviceSerial aPort) {
  const KrString name = GetPortName(aPort);
  const KrProperty* const kind = aBridges.GetProperty(name);
  return kind && kind->GetValue() == "COMPort" && !aBridges.GetProperty(name + "Port");
}

// No port's name begins with another one's, and every property of a port's bridge begins with its name.
void AddBridge(KrPropertyList& aTo, const KrPropertyList& aFrom, KrDeviceSerial aPort) {
  const std::string name = GetPortName(aPort).ToUtf8();
  for (const KrProperty& property : aFrom)
    if (property.GetName().ToUtf8().starts_with(name))
      aTo.Add(property);
}

} // namespace

KrPropertyList KeptBridges::GetWanted() const {
  KrPropertyList wanted;
  for (const KrDeviceSerial port : kDeviceSerialPorts)
    if (!IsWithoutHostPort(mWanted, port))
      AddBridge(wanted, mWanted, port);
  return wanted;
}

void KeptBridges::Want(const KrPropertyList& aBridges) {
  mWanted = aBridges;
  mFailed.clear();
}

void KeptBridges::Keep(const KrPropertyList& aNow) {
  NoteChange(aNow);
  KrPropertyList kept;
  for (const KrDeviceSerial port : kDeviceSerialPorts)
    AddBridge(kept, mFailed.contains(port) ? mWanted : aNow, port);
  Want(kept);
}

void KeptBridges::NoteStart(const KrPropertyList& aNow) {
  const KrPropertyList wanted = GetWanted();
  mFailed.clear();
  for (const KrDeviceSerial port : kDeviceSerialPorts)
    if (HasBridge(wanted, port) && !HasBridge(aNow, port))
      mFailed.insert(port);
}

void KeptBridges::NoteChange(const KrPropertyList& aNow) {
  std::erase_if(mFailed, [&aNow](KrDeviceSerial aPort) { return HasBridge(aNow, aPort); });
}

} // namespace krviewer

#include "bridges/keptbridges.h"

#include <iterator>
#include <string>

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

bool CanLinkStart(const KrPropertyList& aBridges, KrDeviceSerial aPort) {
  const KrProperty* const kind = aBridges.GetProperty(GetPortName(aPort));
  return kind &&
         (kind->GetValue() == "CLDLL" || (kind->GetValue() == "COMPort" && !IsWithoutHostPort(aBridges, aPort)));
}

// No port's name begins with another one's, and every property of a port's bridge begins with its name.
void AddBridge(KrPropertyList& aTo, const KrPropertyList& aFrom, KrDeviceSerial aPort) {
  const std::string name = GetPortName(aPort).ToUtf8();
  for (const KrProperty& property : aFrom)
    if (property.GetName().ToUtf8().starts_with(name))
      aTo.Add(property);
}

} // namespace

const KeptBridgeRules kSerialBridgeRules = {CanLinkStart, IsWithoutHostPort};
const KeptBridgeRules kCameraBridgeRules = {HasBridge, [](const KrPropertyList&, KrDeviceSerial) { return false; }};

void KeptBridges::Want(const KrPropertyList& aBridges) {
  mWanted = aBridges;
  mFailed.clear();
}

KrPropertyList KeptBridges::GetSetup(const KrPropertyList& aNow) const {
  KrPropertyList setup;
  for (const KrDeviceSerial port : kDeviceSerialPorts)
    AddBridge(setup, mFailed.contains(port) ? mWanted : aNow, port);
  return setup;
}

void KeptBridges::Keep(const KrPropertyList& aNow) {
  NoteChange(aNow);
  const KrPropertyList setup = GetSetup(aNow);
  KrPropertyList kept;
  for (const KrDeviceSerial port : kDeviceSerialPorts)
    if (!mRules.isBegun(setup, port))
      AddBridge(kept, setup, port);
  Want(kept);
}

void KeptBridges::NoteStart(const KrPropertyList& aNow, const Ports& aPorts) {
  mFailed.clear();
  for (const KrDeviceSerial port : kDeviceSerialPorts)
    if (mRules.canStart(mWanted, port) && (aPorts.empty() || aPorts.contains(port)) && !HasBridge(aNow, port))
      mFailed.emplace(port, Trial::None);
}

void KeptBridges::NoteChange(const KrPropertyList& aNow) {
  for (auto failed = mFailed.begin(); failed != mFailed.end();) {
    auto& [port, trial] = *failed;
    const bool isSetUp = HasBridge(aNow, port);
    const bool isUsers = isSetUp ? !mRules.isBegun(aNow, port) : trial == Trial::Begun;
    if (isSetUp)
      trial = Trial::Begun;
    failed = isUsers ? mFailed.erase(failed) : std::next(failed);
  }
}

} // namespace krviewer

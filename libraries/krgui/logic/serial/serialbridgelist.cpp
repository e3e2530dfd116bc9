#include "logic/serial/serialbridgelist.h"

#include "krserial/krdeviceserialport.h"
#include "krserial/krgenparameterarraycl.h"
#include "logic/serial/savedserialbridge.h"

#include <algorithm>

namespace krgui {

namespace {

void AddError(KrStringList& aErrors, const KrString& aReason) {
  aErrors.Add("Serial bridge manager: " + aReason);
}

} // namespace

SerialBridgeList::SerialBridgeList() = default;

SerialBridgeList::~SerialBridgeList() = default;

void SerialBridgeList::SetDevice(IKrDeviceAdapter* aAdapter, const KrString& aDeviceText) {
  // They still need the old one.
  mBridges.clear();
  mAdapter = aAdapter;
  mDeviceText = aDeviceText;
  Build();
  for (const auto& bridge : mBridges) {
    bridge->SetKind(BridgeKind::CameraLinkDLL);
    // A name that cannot be published now is told of when it is to be used. The others wait for the same process.
    if (bridge->StartCLDLL(MakeCLDLLName(*bridge), true) == KrResult::Code::Busy)
      break;
  }
  KrStringList names;
  // Asked for so that names of processes that have died are gone before these ports are published.
  (void)KrGenParameterArrayCL::GetPortIDs(names);
  for (const auto& bridge : mBridges)
    bridge->SetKind(BridgeKind::None);
}

void SerialBridgeList::SetCreatingPorts(bool aIsOn) {
  mIsCreatingPorts = aIsOn;
  for (const auto& bridge : mBridges)
    bridge->SetCreatingPorts(aIsOn);
}

SerialBridge* SerialBridgeList::Find(KrDeviceSerial aPort) const {
  const auto found = std::find_if(mBridges.begin(), mBridges.end(),
                                  [aPort](const auto& aBridge) { return aBridge->GetPort() == aPort; });
  return found == mBridges.end() ? nullptr : found->get();
}

KrString SerialBridgeList::MakeCLDLLName(const SerialBridge& aBridge) const {
  return mDeviceText + "-" + aBridge.GetPortName();
}

void SerialBridgeList::Build() {
  ++mGeneration;
  mBridges.clear();
  for (const KrDeviceSerial port : kDeviceSerialPorts) {
    if (!KrDeviceSerialPort::IsSupported(mAdapter, port))
      continue;
    auto bridge = std::make_unique<SerialBridge>(mAdapter);
    bridge->SetPort(port);
    bridge->SetCreatingPorts(mIsCreatingPorts);
    mBridges.push_back(std::move(bridge));
  }
}

void SerialBridgeList::Load(const KrPropertyList& aProperties, KrStringList& aErrors) {
  Build();
  for (const KrDeviceSerial port : kDeviceSerialPorts) {
    if (const KrProperty* const type = aProperties.GetProperty(GetPortName(port)))
      LoadPort(port, type->GetValue(), aProperties, aErrors);
  }
}

void SerialBridgeList::LoadPort(KrDeviceSerial aPort, const KrString& aType, const KrPropertyList& aProperties,
                                KrStringList& aErrors) {
  SerialBridge* const bridge = Find(aPort);
  if (bridge == nullptr) {
    AddError(aErrors, "Port " + GetPortName(aPort) + " found in persistence file, not supported by device.");
    return;
  }
  SetType(*bridge, aType, aErrors);
  if (bridge->GetKind() != BridgeKind::None && !bridge->Load(aProperties, aErrors))
    bridge->SetKind(BridgeKind::None);
}

void SerialBridgeList::SetType(SerialBridge& aBridge, const KrString& aType, KrStringList& aErrors) const {
  const BridgeKind kind = FindSavedKind(aType);
  aBridge.SetKind(kind);
  if (kind == BridgeKind::CameraLinkDLL) {
    const KrResult result = aBridge.StartCLDLL(MakeCLDLLName(aBridge), false);
    if (result.IsOK())
      return;
    aBridge.SetKind(BridgeKind::None);
    AddError(aErrors, "Unable to start Camera Link DLL bridge for " + aBridge.GetPortName() + ": " +
                          result.GetCodeString() + ", " + result.GetDescription() + ".");
  } else if (kind == BridgeKind::None) {
    AddError(aErrors, "Unexpected bridge type, " + aType + " on " + aBridge.GetPortName() + ".");
  }
}

void SerialBridgeList::Save(KrPropertyList& aProperties) const {
  aProperties.Clear();
  for (const auto& bridge : mBridges) {
    if (bridge->GetKind() == BridgeKind::None || bridge->IsAskingForBaudRate())
      continue;
    aProperties.Add({bridge->GetPortName(), GetSavedWord(bridge->GetKind())});
    bridge->Save(aProperties);
  }
}

} // namespace krgui

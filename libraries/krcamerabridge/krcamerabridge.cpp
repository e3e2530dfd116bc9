#include "krcamerabridge/krcamerabridge.h"

#include "clprotocol/cldriverlist.h"
#include "clprotocol/clprotocolport.h"
#include "connection/bridgebody.h"
#include "connection/grabberfeatures.h"
#include "gencp/gencpport.h"
#include "krdevice/krdeviceadapter.h"

#include <string>
#include <vector>

using krcamerabridge::CameraChoice;
using krcamerabridge::CameraWay;
using krcamerabridge::CLProtocolPort;
using krcamerabridge::FindPoCLSwitch;
using krcamerabridge::GenCPPort;
using krcamerabridge::ICameraLine;
using krcamerabridge::kCameraFileWay;
using krcamerabridge::kCLProtocolWay;
using krcamerabridge::kGenCPWay;

struct KrCameraBridge::Body : krcamerabridge::BridgeBody {
  using BridgeBody::BridgeBody;

  KrResult GetChosen(const CameraWay& aWay, KrString CameraChoice::*aText, KrString& aValue) const {
    if (KrResult result = CheckWay(aWay); !result.IsOK())
      return result;
    aValue = GetConnection()->GetChoice().*aText;
    return {};
  }
};

KrCameraBridge::KrCameraBridge(KrDevice* aDevice, KrDeviceSerial aPort, KrStream* aStream)
    : mBody(std::make_unique<Body>(aDevice, aPort, aStream)) {}

KrCameraBridge::~KrCameraBridge() = default;

void KrCameraBridge::SetCLProtocolDirectories(const KrStringList& aDirectories) {
  std::vector<std::string> directories;
  for (const KrString& directory : aDirectories)
    directories.push_back(directory.ToUtf8());
  krcamerabridge::SetCLDriverDirectories(directories);
}

KrResult KrCameraBridge::GetCLProtocolTemplates(KrStringList& aTemplates) {
  return CLProtocolPort::GetTemplates(aTemplates);
}

KrResult KrCameraBridge::ProbeCLProtocol(const KrString& aTemplate, KrString& aCameraID, KrStringList& aXMLIDs) {
  return mBody->AskUnconnected([&](ICameraLine& aLine, const std::stop_token& aStop) {
    return CLProtocolPort(aLine).Probe(aTemplate, aCameraID, aXMLIDs, aStop);
  });
}

KrResult KrCameraBridge::ConnectCLProtocol(const KrString& aTemplate, const KrString& aXMLID) {
  return mBody->Connect({.way = &kCLProtocolWay, .driverTemplate = aTemplate, .xmlID = aXMLID});
}

KrResult KrCameraBridge::GetGenCPXMLIDs(KrStringList& aXMLIDs) {
  return mBody->AskUnconnected(
      [&](ICameraLine& aLine, const std::stop_token& aStop) { return GenCPPort(aLine).GetXMLIDs(aXMLIDs, aStop); });
}

KrResult KrCameraBridge::ConnectGenCP(const KrString& aXMLID) {
  return mBody->Connect({.way = &kGenCPWay, .xmlID = aXMLID});
}

KrResult KrCameraBridge::ConnectTolvanCameraFile(const KrString& aPath) {
  return mBody->Connect({.way = &kCameraFileWay, .path = aPath});
}

KrStringList KrCameraBridge::GetTolvanCameraFileParserErrors() const {
  return mBody->GetMistakes();
}

void KrCameraBridge::Disconnect() {
  mBody->Disconnect();
}

bool KrCameraBridge::IsConnected() const {
  return mBody->IsConnected();
}

KrResult KrCameraBridge::GetCameraState() const {
  return mBody->GetCameraState();
}

void KrCameraBridge::Cancel() {
  mBody->Cancel();
}

KrGenParameterArray* KrCameraBridge::GetParameters() {
  return mBody->GetConnection() ? &mBody->GetConnection()->GetParameters() : nullptr;
}

KrString KrCameraBridge::GetSource() const {
  return mBody->GetSync().GetSource();
}

KrResult KrCameraBridge::SetSource(const KrString& aSource) {
  return mBody->SetSource(aSource);
}

bool KrCameraBridge::GetParametersSyncEnabled() const {
  return mBody->GetSync().IsOn();
}

KrResult KrCameraBridge::SetParametersSyncEnabled(bool aIsOn) {
  mBody->GetSync().SetOn(aIsOn);
  return {};
}

KrString KrCameraBridge::GetParametersSyncText() const {
  return mBody->GetSync().GetText();
}

std::uint64_t KrCameraBridge::GetBytesSentToCamera() const {
  return mBody->GetLine().GetBytesSent();
}

std::uint64_t KrCameraBridge::GetBytesReceivedFromCamera() const {
  return mBody->GetLine().GetBytesReceived();
}

void KrCameraBridge::ResetStatistics() {
  mBody->GetLine().ResetStatistics();
}

KrResult KrCameraBridge::GetTolvanCameraFilePath(KrString& aPath) const {
  return mBody->GetChosen(kCameraFileWay, &CameraChoice::path, aPath);
}

KrResult KrCameraBridge::GetCLProtocolCameraID(KrString& aCameraID) const {
  if (KrResult result = mBody->CheckWay(kCLProtocolWay); !result.IsOK())
    return result;
  aCameraID = mBody->GetConnection()->GetCameraID();
  return {};
}

KrResult KrCameraBridge::GetCLProtocolTemplate(KrString& aTemplate) const {
  return mBody->GetChosen(kCLProtocolWay, &CameraChoice::driverTemplate, aTemplate);
}

KrResult KrCameraBridge::GetCLProtocolXMLID(KrString& aXMLID) const {
  return mBody->GetChosen(kCLProtocolWay, &CameraChoice::xmlID, aXMLID);
}

KrResult KrCameraBridge::GetGenCPXMLID(KrString& aXMLID) const {
  return mBody->GetChosen(kGenCPWay, &CameraChoice::xmlID, aXMLID);
}

KrResult KrCameraBridge::Save(const KrString& aName, KrConfigurationWriter& aWriter) {
  return mBody->Save(aName, aWriter);
}

KrResult KrCameraBridge::SaveConnection(const KrString& aName, KrConfigurationWriter& aWriter) const {
  return mBody->SaveConnection(aName, aWriter);
}

KrResult KrCameraBridge::Load(const KrString& aName, const KrConfigurationReader& aReader, KrStringList& aErrors) {
  return mBody->Load(aName, aReader, aErrors);
}

bool KrCameraBridge::IsPoCLSupported(KrDevice* aDevice) {
  if (!aDevice)
    return false;
  KrDeviceAdapter adapter(*aDevice);
  const KrString name = FindPoCLSwitch(adapter);
  return !name.IsEmpty() && adapter.IsParameterAvailable(name);
}

bool KrCameraBridge::IsPoCLEnabled(KrDevice* aDevice) {
  if (!aDevice)
    return false;
  KrDeviceAdapter adapter(*aDevice);
  const KrString name = FindPoCLSwitch(adapter);
  bool isOn = false;
  return !name.IsEmpty() && adapter.GetBooleanValue(name, isOn).IsOK() && isOn;
}

KrResult KrCameraBridge::SetPoCLEnabled(KrDevice* aDevice, bool aIsOn) {
  if (!aDevice)
    return {KrResult::Code::InvalidInput, "Switching Power over Camera Link: there is no device."};
  KrDeviceAdapter adapter(*aDevice);
  const KrString name = FindPoCLSwitch(adapter);
  if (name.IsEmpty())
    return {KrResult::Code::NotSupported, "Switching Power over Camera Link: the device does not have it."};
  return adapter.SetBooleanValue(name, aIsOn);
}

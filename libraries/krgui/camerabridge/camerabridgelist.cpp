#include "camerabridge/camerabridgelist.h"

#include "krgenicam/krgenaccessstop.h"
#include "krgenicam/krgenparameterarray.h"
#include "logic/browser/browserfilling.h"
#include "logic/camerabridge/cameratexts.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace krgui {

bool ReadParameters(KrGenParameterArray& aParameters, const KrGenProgress& aProgress, const std::stop_token& aStop) {
  const auto goesOn = [&] { return !aStop.stop_requested() && aProgress(0, 0); };
  const KrGenAccessStop end(aStop);
  ReadBeforeFilling(aParameters, goesOn);
  return goesOn();
}

void CameraBridgeEntry::Reset(CameraBridgeKind aKind) {
  kind = aKind;
  templates.Clear();
  xmlIDs.Clear();
  texts = {};
}

void CameraBridgeEntry::UpdateStatus() {
  const KrGenParameterArray* const parameters = bridge->GetParameters();
  texts.status = FormatBridgeStatus(parameters ? std::optional(parameters->GetCount()) : std::nullopt);
}

void CameraBridgeEntry::ReadBack() {
  KrString path;
  KrString cameraID;
  KrString driverTemplate;
  KrString xmlID;
  if (bridge->GetTolvanCameraFilePath(path).IsOK()) {
    kind = CameraBridgeKind::CameraFile;
    texts.path = path;
  } else if (bridge->GetCLProtocolCameraID(cameraID).IsOK() && bridge->GetCLProtocolTemplate(driverTemplate).IsOK() &&
             bridge->GetCLProtocolXMLID(xmlID).IsOK()) {
    kind = CameraBridgeKind::CLProtocol;
    texts.driverTemplate = ShortenTemplate(driverTemplate);
    texts.probeStatus = ShortenCameraID(cameraID);
    texts.xmlID = ShortenXMLID(xmlID);
  } else if (bridge->GetGenCPXMLID(xmlID).IsOK()) {
    kind = CameraBridgeKind::GenCP;
    texts.xmlID = xmlID;
  }
  UpdateStatus();
}

bool EndingBridges::AreNone() const {
  const std::lock_guard lock(mMutex);
  return mEntries.empty();
}

void EndingBridges::End() {
  // Not locked, so that whoever hurries reaches the bridge that waits.
  for (const CameraBridgeEntry& entry : mEntries)
    entry.bridge->Disconnect();
  std::vector<CameraBridgeEntry> ended;
  const std::lock_guard lock(mMutex);
  ended.swap(mEntries);
}

void EndingBridges::Hurry() {
  const std::lock_guard lock(mMutex);
  for (const CameraBridgeEntry& entry : mEntries)
    entry.bridge->Cancel();
}

CameraBridgeList::Entries CameraBridgeList::SetDevice(KrDevice* aDevice) {
  ++mGeneration;
  mDevice = aDevice;
  mHasPorts = false;
  return std::exchange(mEntries, {});
}

void CameraBridgeList::MakeEntries(const std::vector<KrDeviceSerial>& aPorts) {
  mHasPorts = true;
  for (const KrDeviceSerial port : aPorts)
    mEntries.push_back({.port = port, .bridge = std::make_unique<KrCameraBridge>(mDevice, port, mStream)});
}

CameraBridgeEntry* CameraBridgeList::Find(KrDeviceSerial aPort) {
  const auto found = std::find_if(mEntries.begin(), mEntries.end(),
                                  [aPort](const CameraBridgeEntry& aEntry) { return aEntry.port == aPort; });
  return found == mEntries.end() ? nullptr : &*found;
}

KrResult CameraBridgeList::Save(KrConfigurationWriter& aWriter, const KrGenProgress& aProgress) {
  return KrSaveCameraBridges(GetBridges(), KrCameraBridgeContent::Everything, aWriter, aProgress);
}

KrResult CameraBridgeList::Load(const KrConfigurationReader& aReader, KrStringList& aErrors,
                                const KrGenProgress& aProgress) {
  return KrLoadCameraBridges(GetBridges(), aReader, aErrors, aProgress);
}

std::vector<KrCameraBridgeAtPort> CameraBridgeList::GetBridges() const {
  std::vector<KrCameraBridgeAtPort> bridges;
  for (const CameraBridgeEntry& entry : mEntries)
    bridges.push_back({entry.port, entry.bridge.get()});
  return bridges;
}

void CameraBridgeList::ReadBack() {
  for (CameraBridgeEntry& entry : mEntries)
    entry.ReadBack();
}

void CameraBridgeList::Cancel() {
  for (const CameraBridgeEntry& entry : mEntries)
    entry.bridge->Cancel();
}

} // namespace krgui

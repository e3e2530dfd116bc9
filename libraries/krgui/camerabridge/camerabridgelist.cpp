#include "camerabridge/camerabridgelist.h"

#include "krgenicam/krgenaccessstop.h"
#include "krgenicam/krgenparameterarray.h"
#include "logic/browser/browserfilling.h"
#include "logic/camerabridge/cameratexts.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <optional>
#include <utility>

namespace krgui {

namespace {

/// How long cameras may take to be given free while the user interface waits: less than a register's time-out.
constexpr std::chrono::milliseconds kPatience{600};

} // namespace

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
  Forget();
}

void EndingBridges::Forget() {
  std::vector<CameraBridgeEntry> ended;
  const std::lock_guard lock(mMutex);
  ended.swap(mEntries);
}

void EndingBridges::EndSoon() {
  // Where there is no thread to be had, a bridge's own end is what disconnects it.
  std::vector<std::future<void>> ends;
  for (const CameraBridgeEntry& entry : mEntries)
    if (entry.bridge->IsConnected())
      ends.push_back(std::async([&bridge = *entry.bridge] { bridge.Disconnect(); }));
  const auto limit = std::chrono::steady_clock::now() + kPatience;
  const auto isInTime = [limit](const std::future<void>& aEnd) {
    return aEnd.wait_until(limit) == std::future_status::ready;
  };
  if (!std::ranges::all_of(ends, isInTime))
    Hurry();
  ends.clear(); // Waits for them.
  Forget();
}

void EndingBridges::Hurry() {
  const std::lock_guard lock(mMutex);
  for (const CameraBridgeEntry& entry : mEntries)
    entry.bridge->Cancel();
}

CameraBridgeList::~CameraBridgeList() {
  EndingBridges(std::move(mEntries)).EndSoon();
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

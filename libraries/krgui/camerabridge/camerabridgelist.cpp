#include "camerabridge/camerabridgelist.h"

#include "krgenicam/krgenaccessstop.h"
#include "krgenicam/krgenparameterarray.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "logic/browser/browserfilling.h"
#include "logic/camerabridge/camerabridgeindex.h"
#include "logic/camerabridge/cameratexts.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace krgui {

namespace {

KrResult ReportEnd() {
  return {KrResult::Code::Aborted, "The camera bridges were left before all of them were done."};
}

void NoteFirst(KrResult& aFirst, const KrResult& aResult) {
  if (aFirst.IsOK())
    aFirst = aResult;
}

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
  KrResult result;
  std::vector<KrDeviceSerial> saved;
  std::size_t done = 0;
  for (const CameraBridgeEntry& entry : mEntries) {
    if (!aProgress(done++, mEntries.size()))
      return ReportEnd();
    const KrResult stored = entry.bridge->Save(GetPortName(entry.port), aWriter);
    if (stored.IsOK())
      saved.push_back(entry.port);
    else if (!(stored == KrResult::Code::WrongState)) // Of a bridge without a camera there is nothing to save.
      NoteFirst(result, stored);
  }
  NoteFirst(result, aWriter.Store(kCameraBridgeIndex, MakeCameraBridgeIndex(saved)));
  return result;
}

KrResult CameraBridgeList::Load(const KrConfigurationReader& aReader, KrStringList& aErrors,
                                const KrGenProgress& aProgress) {
  KrPropertyList index;
  KrResult result = aReader.Restore(kCameraBridgeIndex, index);
  if (!result.IsOK())
    return result;
  std::size_t done = 0;
  std::set<KrDeviceSerial> loaded;
  for (const KrProperty& property : index) {
    if (!aProgress(done++, index.GetCount()))
      return ReportEnd();
    const KrString& name = property.GetValue();
    const KrDeviceSerial port = FindPort(name);
    if (const CameraBridgeEntry* const entry = Find(port)) {
      // Loaded again it would be the same.
      if (loaded.insert(port).second)
        NoteFirst(result, entry->bridge->Load(name, aReader, aErrors));
    } else {
      aErrors.Add(FormatMissingPort(name));
      NoteFirst(result, {KrResult::Code::NotFound, FormatMissingPort(name)});
    }
  }
  return result;
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

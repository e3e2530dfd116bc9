#include "krcamerabridge/krcamerabridgeset.h"

#include "krcamerabridge/krcamerabridge.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "saved/bridgeindex.h"

#include <algorithm>
#include <cstddef>
#include <set>

using krcamerabridge::FormatMissingPort;
using krcamerabridge::kBridgeIndex;
using krcamerabridge::MakeBridgeIndex;

namespace {

KrResult ReportEnd() {
  return {KrResult::Code::Aborted, "The camera bridges were left before all of them were done."};
}

void NoteFirst(KrResult& aFirst, const KrResult& aResult) {
  if (aFirst.IsOK())
    aFirst = aResult;
}

KrCameraBridge* Find(const std::vector<KrCameraBridgeAtPort>& aBridges, KrDeviceSerial aPort) {
  const auto found = std::ranges::find(aBridges, aPort, &KrCameraBridgeAtPort::port);
  return found == aBridges.end() ? nullptr : found->bridge;
}

} // namespace

KrResult KrSaveCameraBridges(const std::vector<KrCameraBridgeAtPort>& aBridges, KrCameraBridgeContent aContent,
                             KrConfigurationWriter& aWriter, const KrGenProgress& aProgress) {
  KrResult result;
  std::vector<KrDeviceSerial> saved;
  std::size_t done = 0;
  for (const auto& [port, bridge] : aBridges) {
    if (aProgress && !aProgress(done++, aBridges.size()))
      return ReportEnd();
    const KrString name = GetPortName(port);
    const KrResult stored = aContent == KrCameraBridgeContent::Everything ? bridge->Save(name, aWriter)
                                                                          : bridge->SaveConnection(name, aWriter);
    if (stored.IsOK())
      saved.push_back(port);
    else if (!(stored == KrResult::Code::WrongState)) // Of a bridge without a camera there is nothing to save.
      NoteFirst(result, stored);
  }
  NoteFirst(result, aWriter.Store(kBridgeIndex, MakeBridgeIndex(saved)));
  return result;
}

KrResult KrLoadCameraBridges(const std::vector<KrCameraBridgeAtPort>& aBridges, const KrConfigurationReader& aReader,
                             KrStringList& aErrors, const KrGenProgress& aProgress) {
  KrPropertyList index;
  KrResult result = aReader.Restore(kBridgeIndex, index);
  if (!result.IsOK())
    return result;
  std::size_t done = 0;
  std::set<KrDeviceSerial> loaded;
  for (const KrProperty& property : index) {
    if (aProgress && !aProgress(done++, index.GetCount()))
      return ReportEnd();
    const KrString& name = property.GetValue();
    const KrDeviceSerial port = FindPort(name);
    if (KrCameraBridge* const bridge = Find(aBridges, port)) {
      // Loaded again it would be the same.
      if (loaded.insert(port).second)
        NoteFirst(result, bridge->Load(name, aReader, aErrors));
    } else {
      aErrors.Add(FormatMissingPort(name));
      NoteFirst(result, {KrResult::Code::NotFound, FormatMissingPort(name)});
    }
  }
  return result;
}

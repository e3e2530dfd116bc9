#include "gencp/gencpport.h"

#include "gencp/gencpsession.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace krcamerabridge {

GenCPPort::GenCPPort(ICameraLine& aLine, const CycleTimes& aTimes)
    : SessionPort("GenCP"), mLine(aLine), mTimes(aTimes) {}

KrResult GenCPPort::GetXMLIDs(KrStringList& aXMLIDs, const std::stop_token& aStop) {
  if (KrResult result = CheckUnconnected(); !result.IsOK())
    return result;
  GenCPSession session(mLine, mTimes);
  std::vector<ManifestEntry> entries;
  if (KrResult result = session.Open(aStop); !result.IsOK())
    return result;
  if (KrResult result = session.ReadManifest(entries, aStop); !result.IsOK())
    return result;
  aXMLIDs.Clear();
  for (const ManifestEntry& entry : entries)
    aXMLIDs.Add(entry.xmlID);
  return {};
}

KrResult GenCPPort::Connect(const KrString& aXMLID, KrGenDescription& aDescription, const std::stop_token& aStop) {
  if (KrResult result = CheckUnconnected(); !result.IsOK())
    return result;
  auto session = std::make_unique<GenCPSession>(mLine, mTimes);
  std::vector<ManifestEntry> entries;
  if (KrResult result = session->Open(aStop); !result.IsOK())
    return result;
  if (KrResult result = session->ReadManifest(entries, aStop); !result.IsOK())
    return result;
  const auto entry = std::ranges::find(entries, aXMLID, &ManifestEntry::xmlID);
  if (entry == entries.end())
    return {KrResult::Code::NotFound, "The camera has no description " + aXMLID + "; ask it for those that it has."};
  if (KrResult result = session->TakeControl(aStop); !result.IsOK())
    return result;
  if (KrResult result = session->ReadDescription(*entry, aDescription, aStop); !result.IsOK())
    return result;
  const PortWorkerTimes times{session->GetKeepAliveMs()};
  Begin(std::move(session), times);
  return {};
}

} // namespace krcamerabridge

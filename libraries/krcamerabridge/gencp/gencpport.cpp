#include "gencp/gencpport.h"

#include "gencp/gencpsession.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace krcamerabridge {

namespace {

KrResult OpenDescribed(GenCPSession& aSession, const KrString& aXMLID, KrGenDescription& aDescription,
                       const std::stop_token& aStop) {
  std::vector<ManifestEntry> entries;
  if (KrResult result = aSession.Open(aStop); !result.IsOK())
    return result;
  if (KrResult result = aSession.ReadManifest(entries, aStop); !result.IsOK())
    return result;
  const auto entry = std::ranges::find(entries, aXMLID, &ManifestEntry::xmlID);
  if (entry == entries.end())
    return {KrResult::Code::NotFound, "The camera has no description " + aXMLID + "; ask it for those that it has."};
  if (KrResult result = aSession.TakeControl(aStop); !result.IsOK())
    return result;
  return aSession.ReadDescription(*entry, aDescription, aStop);
}

} // namespace

GenCPPort::GenCPPort(ICameraLine& aLine, const CycleTimes& aTimes)
    : SessionPort("GenCP"), mLine(aLine), mTimes(aTimes) {}

KrResult GenCPPort::GetXMLIDs(KrStringList& aXMLIDs, const std::stop_token& aStop) {
  if (KrResult result = CheckUnconnected(); !result.IsOK())
    return result;
  GenCPSession session(mLine, mTimes);
  std::vector<ManifestEntry> entries;
  KrResult result = session.Open(aStop);
  if (result.IsOK())
    result = session.ReadManifest(entries, aStop);
  session.Close(aStop);
  if (!result.IsOK())
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
  if (KrResult result = OpenDescribed(*session, aXMLID, aDescription, aStop); !result.IsOK()) {
    session->Close(aStop);
    return result;
  }
  const PortWorkerTimes times{session->GetKeepAliveMs()};
  Begin(std::move(session), times);
  return {};
}

} // namespace krcamerabridge

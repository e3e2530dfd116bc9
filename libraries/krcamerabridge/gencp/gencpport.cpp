#include "gencp/gencpport.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace krcamerabridge {

namespace {

KrResult TellConnected() {
  return {KrResult::Code::WrongState, "A GenCP camera is connected already; disconnect it first."};
}

KrResult TellDisconnected() {
  return {KrResult::Code::WrongState, "No GenCP camera is connected."};
}

} // namespace

GenCPPort::GenCPPort(ICameraLine& aLine, const CycleTimes& aTimes) : mLine(aLine), mTimes(aTimes) {}

GenCPPort::~GenCPPort() {
  Disconnect();
}

KrResult GenCPPort::GetXMLIDs(KrStringList& aXMLIDs, const std::stop_token& aStop) {
  if (mWorker)
    return TellConnected();
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
  if (mWorker)
    return TellConnected();
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
  mSession = std::move(session);
  mWorker = std::make_unique<PortWorker>(*mSession, PortWorkerTimes{mSession->GetKeepAliveMs()});
  return {};
}

void GenCPPort::Disconnect() {
  mWorker.reset();
  mSession.reset();
}

void GenCPPort::End() {
  if (mWorker)
    mWorker->End();
}

KrResult GenCPPort::Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                         const std::stop_token& aCancel) {
  return mWorker ? mWorker->Read(aAddress, aData, aLength, aTimeoutMs, aCancel) : TellDisconnected();
}

KrResult GenCPPort::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                          const std::stop_token& aCancel) {
  return mWorker ? mWorker->Write(aAddress, aData, aLength, aTimeoutMs, aCancel) : TellDisconnected();
}

} // namespace krcamerabridge

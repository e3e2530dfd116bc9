#include "line/sessionport.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace krcamerabridge {

SessionPort::~SessionPort() {
  SessionPort::Disconnect({});
}

KrResult SessionPort::CheckUnconnected() const {
  if (!mWorker)
    return {};
  return {KrResult::Code::WrongState, "A " + mName + " camera is connected already; disconnect it first."};
}

KrResult SessionPort::TellDisconnected() const {
  return {KrResult::Code::WrongState, "No " + mName + " camera is connected."};
}

// A limit of 0 stays one, and is refused.
std::uint32_t SessionPort::GetLimitMs(std::size_t aLength, std::uint32_t aTimeoutMs) const {
  const std::uint64_t lineMs = aTimeoutMs == 0 ? 0 : mSession->GetLineMs(aLength);
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(aTimeoutMs + lineMs, UINT32_MAX));
}

void SessionPort::Begin(std::unique_ptr<ILineSession> aSession, const PortWorkerTimes& aTimes) {
  auto worker = std::make_unique<PortWorker>(*aSession, aTimes);
  const std::unique_lock alone(mAccesses);
  mSession = std::move(aSession);
  mWorker = std::move(worker);
}

void SessionPort::Disconnect(const std::stop_token& aStop) {
  if (!mSession)
    return;
  End(); // Those inside leave at once.
  std::unique_ptr<ILineSession> session;
  std::unique_ptr<PortWorker> worker;
  {
    const std::unique_lock alone(mAccesses);
    session = std::move(mSession);
    worker = std::move(mWorker);
  }
  const std::stop_callback onStop(aStop, [&session] { session->Abandon(); });
  worker.reset();
  session->Close(aStop);
}

void SessionPort::End() {
  const std::shared_lock inside(mAccesses);
  if (mWorker)
    mWorker->End();
}

KrResult SessionPort::Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                           const std::stop_token& aCancel) {
  const std::shared_lock inside(mAccesses);
  return mWorker ? mWorker->Read(aAddress, aData, aLength, GetLimitMs(aLength, aTimeoutMs), aCancel)
                 : TellDisconnected();
}

KrResult SessionPort::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                            const std::stop_token& aCancel) {
  const std::shared_lock inside(mAccesses);
  return mWorker ? mWorker->Write(aAddress, aData, aLength, GetLimitMs(aLength, aTimeoutMs), aCancel)
                 : TellDisconnected();
}

} // namespace krcamerabridge

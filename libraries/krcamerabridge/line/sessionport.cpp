#include "line/sessionport.h"

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

void SessionPort::Begin(std::unique_ptr<ILineSession> aSession, const PortWorkerTimes& aTimes) {
  mSession = std::move(aSession);
  mWorker = std::make_unique<PortWorker>(*mSession, aTimes);
}

void SessionPort::Disconnect(const std::stop_token& aStop) {
  mWorker.reset();
  if (mSession)
    mSession->Close(aStop);
  mSession.reset();
}

void SessionPort::End() {
  if (mWorker)
    mWorker->End();
}

KrResult SessionPort::Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                           const std::stop_token& aCancel) {
  return mWorker ? mWorker->Read(aAddress, aData, aLength, aTimeoutMs, aCancel) : TellDisconnected();
}

KrResult SessionPort::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                            const std::stop_token& aCancel) {
  return mWorker ? mWorker->Write(aAddress, aData, aLength, aTimeoutMs, aCancel) : TellDisconnected();
}

} // namespace krcamerabridge

#include "simulation/simulatedlink.h"

#include <string>
#include <utility>

namespace krtransport {

namespace {

constexpr std::size_t kLargestAccess = std::size_t{16} << 20;

KrResult CheckArguments(const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs) {
  if (!aData || aTimeoutMs == 0)
    return {KrResult::Code::InvalidInput,
            "Accessing registers: data (not null) and a time limit of at least 1 ms are needed."};
  if (aLength == 0 || aLength > kLargestAccess)
    return {KrResult::Code::InvalidInput,
            "Accessing registers: " + std::to_string(aLength) + " bytes; 1 byte to 16 MiB can be accessed at once."};
  return {};
}

} // namespace

KrResult SimulatedLink::Open(std::shared_ptr<SimulatedCamera> aCamera, krsystem::DeviceAccess aAccess,
                             std::unique_ptr<krsystem::IDeviceLink>& aLink) {
  std::unique_ptr<SimulatedLink> link(new SimulatedLink(std::move(aCamera), aAccess));
  const KrResult attached = link->mCamera->Attach(aAccess, *link);
  if (attached.IsOK())
    aLink = std::move(link);
  return attached;
}

SimulatedLink::SimulatedLink(std::shared_ptr<SimulatedCamera> aCamera, krsystem::DeviceAccess aAccess)
    : mCamera(std::move(aCamera)), mAddress(mCamera->GetIPConfiguration().address),
      mChannelAccess(std::make_shared<ChannelAccess>(aAccess != krsystem::DeviceAccess::Monitor)),
      mGate(mCamera->GetFaults(), mCamera->GetName()), mSource(*mCamera, *this) {}

SimulatedLink::~SimulatedLink() {
  // A sink that is being called may use the link until it returns.
  mEvents.SetSink(nullptr);
  mSource.Stop();
  mChannelAccess->End({KrResult::Code::ConnectionLost, "The camera was closed."});
  mCamera->Detach(*this);
}

std::shared_ptr<krsystem::IByteChannel> SimulatedLink::GetByteChannel(std::uint32_t aNumber) {
  std::shared_ptr<SerialLine> line = mCamera->GetSerialPorts().Find(aNumber);
  return line ? std::make_shared<SerialChannel>(std::move(line), mChannelAccess) : nullptr;
}

krsystem::IBufferSource* SimulatedLink::GetBufferSource(std::uint32_t aChannel) {
  return aChannel == 0 ? &mSource : nullptr;
}

void SimulatedLink::GiveBackControl() {
  if (!mCamera->IsControlledBy(*this))
    return;
  mLost = true;
  const KrResult reason(KrResult::Code::ConnectionLost, "Control of the camera was given back; open it anew.");
  mGate.End(reason);
  mChannelAccess->End(reason);
  mSource.SetLost(reason);
  mSource.Stop();
  mCamera->Detach(*this);
}

void SimulatedLink::SetSink(krsystem::IDeviceLinkSink* aSink) {
  mEvents.SetSink(aSink);
}

KrResult SimulatedLink::Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                             const std::stop_token& aCancel) {
  KrResult result = CheckArguments(aData, aLength, aTimeoutMs);
  if (result.IsOK())
    result = mGate.Await(aAddress, aLength, aTimeoutMs, aCancel);
  return result.IsOK() ? mCamera->Read(*this, aAddress, aData, aLength) : result;
}

KrResult SimulatedLink::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                              const std::stop_token& aCancel) {
  KrResult result = CheckArguments(aData, aLength, aTimeoutMs);
  if (result.IsOK())
    result = mGate.Await(aAddress, aLength, aTimeoutMs, aCancel);
  return result.IsOK() ? mCamera->Write(*this, aAddress, aData, aLength) : result;
}

void SimulatedLink::OnCameraLost(const KrResult& aReason) {
  if (mLost.exchange(true))
    return;
  mGate.End(aReason);
  mChannelAccess->End(aReason);
  mSource.SetLost(aReason);
  mEvents.ReportLost(aReason);
}

// Who asks where the camera was does not hear it elsewhere. It is told once, as the loss is: the link stays lost.
void SimulatedLink::OnCameraBack() {
  if (mCamera->GetIPConfiguration().address == mAddress && !mIsBack.exchange(true))
    mEvents.ReportBack();
}

void SimulatedLink::OnCameraChanged() {
  mSource.SetChanged();
}

} // namespace krtransport

#include "usb3vision/usb3visionlink.h"

#include <array>
#include <utility>

namespace krtransport {
namespace {

// The version of GenCP: a register that every device has and that reading does not change.
constexpr std::uint64_t kVersionRegister = 0;
constexpr std::uint32_t kProbeTimeoutMs = 1000;

} // namespace

KrResult Usb3VisionLink::Open(const Usb3VisionNames& aNames, UsbWatch::Subject aSubject, krsystem::DeviceAccess aAccess,
                              std::unique_ptr<krsystem::IDeviceLink>& aLink) {
  Parts parts;
  KrResult result = parts.ioThread->RunToEnd([&](const std::atomic<bool>&) {
    std::shared_ptr<Usb3VisionDevice> device;
    KrResult opened = Usb3VisionDevice::Open(aNames, device);
    if (!opened.IsOK())
      return opened;
    parts.channel = std::make_shared<Usb3VisionChannel>(device, aAccess);
    if (aAccess != krsystem::DeviceAccess::Monitor)
      parts.streamDevice = std::move(device);
    return KrResult();
  });
  if (result.IsOK())
    aLink = std::make_unique<Usb3VisionLink>(std::move(aSubject), std::move(parts));
  return result;
}

Usb3VisionLink::Usb3VisionLink(UsbWatch::Subject aSubject, Parts aParts)
    : mIoThread(std::move(aParts.ioThread)), mChannel(std::move(aParts.channel)),
      mSource(aParts.streamDevice != nullptr
                  ? std::make_unique<AravisBufferSource>(*mIoThread, std::move(aParts.streamDevice))
                  : nullptr),
      mWatch(
          std::move(aSubject), [this] { return Probe(); }, [this](const KrResult& aReason) { OnLost(aReason); }),
      mPort(std::make_unique<ChannelRegisterPort>(*mIoThread, mWatch, mChannel)) {}

Usb3VisionLink::~Usb3VisionLink() {
  mWatch.Stop();
  // From here on nobody waits for an access; the one that runs ends before the device is released behind it.
  mIoThread->Interrupt({KrResult::Code::Aborted, "The device is being closed."});
  ReleaseDevice();
}

krsystem::IBufferSource* Usb3VisionLink::GetBufferSource(std::uint32_t aChannel) {
  return aChannel == 0 ? mSource.get() : nullptr;
}

void Usb3VisionLink::GiveBackControl() {
  mWatch.Stop();
  mWatch.GiveUp();
  const KrResult reason(KrResult::Code::ConnectionLost, "Control of the device was given back.");
  mIoThread->Interrupt(reason);
  if (mSource != nullptr)
    mSource->Stop();
  OnLost(reason);
  ReleaseDevice();
}

KrResult Usb3VisionLink::Probe() {
  const auto bytes = std::make_shared<std::array<std::uint8_t, 4>>();
  return mIoThread->Run(
      [channel = mChannel, bytes](const std::atomic<bool>&) { return channel->Read(kVersionRegister, *bytes); },
      kProbeTimeoutMs);
}

void Usb3VisionLink::OnLost(const KrResult& aReason) {
  mIoThread->Interrupt(aReason);
  if (mSource != nullptr)
    mSource->OnLost(aReason);
}

void Usb3VisionLink::ReleaseDevice() {
  mSource.reset();
  // Released where it was used: its destruction makes blocking calls.
  const KrResult released = mIoThread->RunToEnd([this](const std::atomic<bool>&) {
    mChannel->Release();
    return KrResult();
  });
  static_cast<void>(released); // Releasing cannot fail.
}

} // namespace krtransport

#include "usb3vision/usb3visionlink.h"

#include "krbase/krlogger.h"
#include "usb3vision/readonlychannel.h"

#include <array>
#include <utility>

namespace krtransport {
namespace {

// The version of GenCP: a register that every device has and that reading does not change.
constexpr std::uint64_t kVersionRegister = 0;
constexpr std::uint32_t kProbeTimeoutMs = 1000;
constexpr std::uint32_t kGiveBackTimeoutMs = 2000;

} // namespace

Usb3VisionLink::Parts::Parts(const UsbDevice& aDevice)
    : ioThread(std::make_unique<IoThread>("The device at USB port " + aDevice.port)) {}

KrResult Usb3VisionLink::Open(const Usb3VisionNames& aNames, UsbWatch::Subject aSubject, krsystem::DeviceAccess aAccess,
                              std::unique_ptr<krsystem::IDeviceLink>& aLink) {
  Parts parts(aSubject.device);
  std::shared_ptr<Usb3VisionDevice> device;
  if (KrResult result =
          parts.ioThread->RunToEnd([&](const std::atomic<bool>&) { return Usb3VisionDevice::Open(aNames, device); });
      !result.IsOK())
    return result;
  parts.release = [device] { device->Release(); };
  if (aAccess == krsystem::DeviceAccess::Monitor) {
    parts.channel = std::make_shared<ReadOnlyChannel>(std::move(device));
  } else {
    parts.channel = device;
    parts.streamDevice = std::move(device);
  }
  aLink = std::make_unique<Usb3VisionLink>(std::move(aSubject), std::move(parts));
  return {};
}

Usb3VisionLink::Usb3VisionLink(UsbWatch::Subject aSubject, Parts aParts)
    : mUsbDevice(aSubject.device), mChannel(std::move(aParts.channel)), mStreamDevice(std::move(aParts.streamDevice)),
      mRelease(std::move(aParts.release)), mIoThread(std::move(aParts.ioThread)),
      mSource(mStreamDevice != nullptr ? std::make_unique<AravisBufferSource>(*mIoThread, mStreamDevice) : nullptr),
      mWatch(
          std::move(aSubject), [this] { return Probe(); }, [this](const KrResult& aReason) { OnLost(aReason); }),
      mPort(std::make_unique<ChannelRegisterPort>(*mIoThread, mWatch, mChannel)) {}

Usb3VisionLink::~Usb3VisionLink() {
  // A sink that is being called may use the link until it returns.
  mWatch.SetSink(nullptr);
  mWatch.Stop();
  // From here on nobody waits for an access; the one that runs ends before the device is released behind it.
  mIoThread->Interrupt({KrResult::Code::Aborted, "The device is being closed."});
  mSource.reset();
  // Released where it was used: that makes blocking calls.
  const KrResult released = mIoThread->RunToEnd([this](const std::atomic<bool>&) {
    mRelease();
    return KrResult();
  });
  static_cast<void>(released); // Releasing cannot fail.
}

krsystem::IBufferSource* Usb3VisionLink::GetBufferSource(std::uint32_t aChannel) {
  return aChannel == 0 ? mSource.get() : nullptr;
}

krsystem::HostFeatures Usb3VisionLink::ListFeatures() {
  return ListUsbLinkFeatures(mUsbDevice, mChannel->GetLimits().maxBytes);
}

void Usb3VisionLink::GiveBackControl() {
  if (mIsGivenBack.exchange(true))
    return;
  const KrResult reason(KrResult::Code::ConnectionLost, "Control of the device was given back.");
  const bool answers = mWatch.IsConnected() && !mWatch.IsSilent();
  // Nobody waits for an access from here on, and those that wait their turn are skipped.
  mIoThread->Interrupt(reason);
  mWatch.Disconnect();
  if (mSource != nullptr)
    mSource->Detach(reason, answers);
  const KrResult result = mIoThread->RunRegardless(
      [release = mRelease](const std::atomic<bool>&) {
        release();
        return KrResult();
      },
      kGiveBackTimeoutMs);
  if (!result.IsOK())
    KrLogger("USB3Vision")
        .Log(KrLogLevel::Warning, {"Usb3VisionLink::GiveBackControl", "usb3visionlink"}, result.GetDescription());
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

} // namespace krtransport

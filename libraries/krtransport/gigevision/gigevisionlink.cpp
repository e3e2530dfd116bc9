#include "gigevision/gigevisionlink.h"

#include "gigevision/devicefields.h"
#include "gigevision/monitorchannel.h"
#include "gigevision/statedlength.h"
#include "krbase/krlogger.h"
#include "krsystem/ipv4address.h"

#include <chrono>
#include <utility>

namespace krtransport {
namespace {

// With the half second in which a dead device is found, two seconds.
constexpr std::uint32_t kGiveBackTimeoutMs = 1500;
constexpr GvcpPatience kIdentityPatience{std::chrono::milliseconds(200), 2, std::chrono::milliseconds(400)};

KrResult Connect(const LinkTarget& aTarget, GvcpClient& aClient) {
  return aTarget.isOffRoute
             ? GvcpClient::ConnectOnAdapter(aTarget.deviceAddress, aTarget.localAddress, aTarget.adapterName, aClient)
             : GvcpClient::Connect(aTarget.deviceAddress, aTarget.localAddress, aClient);
}

KrString NameDevice(const LinkTarget& aTarget) {
  return "The device at " + krsystem::FormatIPv4(aTarget.deviceAddress);
}

// Who has the device, as far as it tells.
KrString DescribeHolder(const LinkTarget& aTarget, GvcpClient& aClient) {
  const KrString holder = "another application";
  std::uint32_t address = 0;
  if (!aClient.ReadRegister(kPrimaryApplicationAddressRegister, address, GvcpPatience{}).IsOK() || address == 0)
    return holder;
  return address == aTarget.localAddress ? holder + " on this computer"
                                         : holder + " at " + krsystem::FormatIPv4(address);
}

// An address may have gone to another device since it was found there. One that says nothing of itself is believed.
KrResult CheckIdentity(const LinkTarget& aTarget, GvcpClient& aClient) {
  DiscoveryPayload payload;
  if (aTarget.uniqueID.IsEmpty() || !aClient.Discover(payload, kIdentityPatience).IsOK() ||
      MakeUniqueID(payload) == aTarget.uniqueID)
    return {};
  return {KrResult::Code::NotFound,
          "At " + krsystem::FormatIPv4(aTarget.deviceAddress) + " another device answers, " + MakeDisplayID(payload) +
              ", number " + payload.serialNumber +
              ". Look for devices again: the one that was there may have another address now."};
}

} // namespace

using krsystem::DeviceAccess;

GigEVisionLink::Parts::Parts(const LinkTarget& aTarget)
    : ioThread(std::make_unique<IoThread>(NameDevice(aTarget).ToUtf8())) {}

KrResult GigEVisionLink::Open(const LinkTarget& aTarget, std::unique_ptr<krsystem::IDeviceLink>& aLink) {
  Parts parts(aTarget);
  if (KrResult result = Connect(aTarget, parts.watchClient); !result.IsOK())
    return result;
  if (KrResult result = CheckAccess(aTarget, parts.watchClient); !result.IsOK())
    return result;
  if (KrResult result = OpenChannel(aTarget, parts); !result.IsOK())
    return result;
  aLink.reset(new GigEVisionLink(aTarget, std::move(parts)));
  return {};
}

KrResult GigEVisionLink::CheckAccess(const LinkTarget& aTarget, GvcpClient& aClient) {
  const KrString device = NameDevice(aTarget);
  std::uint32_t privilege = 0;
  const KrResult read = aClient.ReadRegister(kControlPrivilegeRegister, privilege, GvcpPatience{});
  const bool hasAnswered = read.IsOK() || read == KrResult::Code::AccessDenied || read == KrResult::Code::ProtocolError;
  if (!hasAnswered)
    return {KrResult::Code::NotFound,
            device + " cannot be opened. " + read.GetDescription() + " Check its cable and its power."};
  // Discovery is answered whoever holds the device, and another one's holder says nothing of this one.
  if (KrResult same = CheckIdentity(aTarget, aClient); !same.IsOK())
    return same;
  if (read == KrResult::Code::AccessDenied)
    return {KrResult::Code::AccessDenied,
            device + " lets nobody else read: another application holds it exclusively. " + read.GetDescription()};
  if (read == KrResult::Code::ProtocolError)
    return {KrResult::Code::ProtocolError,
            device + " does not say who controls it. " + read.GetDescription() + " Try again in a moment."};
  if ((privilege & kExclusiveBit) != 0)
    return {KrResult::Code::AccessDenied,
            device + " is held exclusively by " + DescribeHolder(aTarget, aClient) + ". Close it there first."};
  if ((privilege & kInUseBits) != 0 && aTarget.access != DeviceAccess::Monitor)
    return {KrResult::Code::AccessDenied,
            device + " is controlled by " + DescribeHolder(aTarget, aClient) + ". Close it there first."};
  return {};
}

KrResult GigEVisionLink::OpenChannel(const LinkTarget& aTarget, Parts& aParts) {
  if (aTarget.access == DeviceAccess::Monitor) {
    GvcpClient client;
    if (KrResult result = Connect(aTarget, client); !result.IsOK())
      return result;
    aParts.channel = std::make_shared<MonitorChannel>(std::move(client));
    return {};
  }
  if (KrResult result = CheckStatedLengths(aParts.watchClient); !result.IsOK())
    return result;
  KrResult result = aParts.ioThread->RunToEnd(
      [&](const std::atomic<bool>&) { return GigEVisionDevice::Open(aTarget, *aParts.ioThread, aParts.device); });
  aParts.channel = aParts.device;
  return result;
}

GigEVisionLink::GigEVisionLink(const LinkTarget& aTarget, Parts aParts)
    : mTarget(aTarget), mIoThread(std::move(aParts.ioThread)), mDevice(std::move(aParts.device)),
      mSource(mDevice != nullptr ? std::make_unique<AravisBufferSource>(*mIoThread, mDevice) : nullptr),
      mWatch(
          aTarget, std::move(aParts.watchClient), [this] { return mDevice == nullptr || mDevice->HoldsControl(); },
          [this](const KrResult& aReason) { OnLost(aReason); }),
      mPort(std::make_unique<ChannelRegisterPort>(*mIoThread, mWatch, std::move(aParts.channel))) {}

GigEVisionLink::~GigEVisionLink() {
  // A sink that is being called may use the link until it returns.
  mWatch.SetSink(nullptr);
  mWatch.Stop();
  // From here on nobody waits for an access; the one that runs ends before the device is released behind it.
  mIoThread->Interrupt({KrResult::Code::Aborted, "The device is being closed."});
  mSource.reset();
  mPort.reset();
  // Released where it was used: its destruction makes blocking calls.
  const KrResult released = mIoThread->RunToEnd([this](const std::atomic<bool>&) {
    mDevice.reset();
    return KrResult();
  });
  static_cast<void>(released); // Releasing cannot fail.
}

krsystem::IBufferSource* GigEVisionLink::GetBufferSource(std::uint32_t aChannel) {
  return aChannel == 0 ? mSource.get() : nullptr;
}

krsystem::HostFeatures GigEVisionLink::ListFeatures() {
  return ListLinkFeatures(mTarget, mDevice != nullptr ? mDevice->GetPacketSizes() : nullptr);
}

void GigEVisionLink::GiveBackControl() {
  if (mDevice == nullptr || mIsGivenBack.exchange(true))
    return;
  const KrResult reason(KrResult::Code::ConnectionLost, "Control of the device was given back.");
  // Also a device that counts as lost may be back while Aravis still holds control.
  const bool answers = mDevice->HoldsControl() && mDevice->Answers();
  mWatch.Disconnect();
  // Nobody waits for an access from here on, and those that wait their turn are skipped.
  mIoThread->Interrupt(reason);
  mSource->Detach(reason, answers);
  if (!answers)
    return;
  const auto giveBack = [device = mDevice](const std::atomic<bool>&) { return device->GiveBackControl(); };
  if (const KrResult result = mIoThread->RunRegardless(giveBack, kGiveBackTimeoutMs); !result.IsOK())
    KrLogger("GigEVision")
        .Log(KrLogLevel::Warning, {"GigEVisionLink::GiveBackControl", "gigevisionlink"}, result.GetDescription());
}

void GigEVisionLink::OnLost(const KrResult& aReason) {
  mIoThread->Interrupt(aReason);
  if (mSource != nullptr)
    mSource->OnLost(aReason);
}

} // namespace krtransport

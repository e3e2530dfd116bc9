#pragma once
// The backend for GigE Vision devices on this host's network adapters. Discovery and addresses are done with datagrams
// of our own, open devices stand on Aravis; none of that shows here.

#include "gigevision/linkquery.h"
#include "gigevision/packetpacing.h"
#include "krsystem/itransport.h"

namespace krtransport {

/// GigE Vision.
///
/// The interfaces are the host's network adapters; the loopback adapter is among them while it is up, because simulated
/// cameras of other programs answer there.
///
/// Thread, ownership: as ITransport. Reports of Discover come on the caller's thread.
class GigEVisionTransport final : public krsystem::ITransport {
public:
  /// aReadLinkSpeed says how fast an adapter's link is, which cameras that stream on it share.
  explicit GigEVisionTransport(LinkSpeedReader aReadLinkSpeed = GetLinkSpeed);

  KrString GetName() const override { return "GigE Vision"; }
  KrResult ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) override;
  /// Interfaces of another kind are passed over.
  KrResult Discover(const std::vector<krsystem::InterfaceFields>& aInterfaces,
                    const krsystem::DiscoveryRequest& aRequest, const krsystem::DeviceReport& aReport) override;
  KrResult FindAddress(std::uint32_t aAddress, std::uint32_t aTimeoutMs, krsystem::InterfaceFields& aInterface,
                       krsystem::AnyDeviceFields& aDevice) override;
  /// Looks where the device answers, for 300 ms at most, tells it there by ForceIP, and waits for its acknowledge, up
  /// to a second. The configuration lasts until the device is switched off. InvalidInput for texts that are no
  /// addresses, NotFound when no device acknowledges.
  KrResult ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aMask,
                       const KrString& aGateway) override;
  /// As AskAccessType.
  KrResult GetAccessType(const krsystem::AnyDeviceFields& aDevice, krsystem::AccessType& aType) override;
  /// Over the way that ChooseWay gives.
  KrResult Open(const krsystem::InterfaceFields& aInterface, const krsystem::AnyDeviceFields& aDevice,
                krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) override;
  KrResult ReadHost(krsystem::HostReadings& aReadings) override;
  /// As krtransport::FindUsedAddresses; InvalidInput for an interface that is no network adapter.
  KrResult FindUsedAddresses(const krsystem::InterfaceFields& aInterface, const std::vector<std::uint32_t>& aAddresses,
                             std::uint32_t aTimeoutMs, const std::stop_token& aCancel,
                             std::vector<std::uint32_t>& aUsed) override;

private:
  const LinkSpeedReader mReadLinkSpeed;
};

} // namespace krtransport

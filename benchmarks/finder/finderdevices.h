#pragma once
// Devices that answer discovery as a benchmark of the finder wants them: so many of them, behind one adapter, each in
// every round, at once or never.

#include "krsystem/transportregistry.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace benchmarks {

/// A transport of devices that all answer at the begin of a round, which then takes its whole time. Threads and
/// ownership as ITransport.
class FinderDevices final : public krsystem::ITransport {
public:
  explicit FinderDevices(std::size_t aCount);

  KrString GetName() const override { return "Benchmark"; }
  KrResult ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) override;
  KrResult Discover(const std::vector<krsystem::InterfaceFields>& aInterfaces,
                    const krsystem::DiscoveryRequest& aRequest, const krsystem::DeviceReport& aReport) override;
  KrResult FindAddress(std::uint32_t aAddress, std::uint32_t aTimeoutMs, krsystem::InterfaceFields& aInterface,
                       krsystem::AnyDeviceFields& aDevice) override;
  KrResult ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aMask,
                       const KrString& aGateway) override;
  KrResult GetAccessType(const krsystem::AnyDeviceFields& aDevice, krsystem::AccessType& aType) override;
  KrResult Open(const krsystem::InterfaceFields& aInterface, const krsystem::AnyDeviceFields& aDevice,
                krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) override;

private:
  const krsystem::NetworkAdapterFields mAdapter;
  std::vector<krsystem::GEVFields> mDevices;
};

/// Registered while it lives.
class RegisteredDevices {
public:
  explicit RegisteredDevices(std::size_t aCount) : mTransport(std::make_shared<FinderDevices>(aCount)) {
    krsystem::RegisterTransport(mTransport);
  }
  ~RegisteredDevices() { krsystem::UnregisterTransport(mTransport); }
  RegisteredDevices(const RegisteredDevices&) = delete;
  RegisteredDevices& operator=(const RegisteredDevices&) = delete;

private:
  const std::shared_ptr<FinderDevices> mTransport;
};

} // namespace benchmarks

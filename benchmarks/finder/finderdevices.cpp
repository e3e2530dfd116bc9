#include "finderdevices.h"

#include "krsystem/ipv4address.h"

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>

namespace benchmarks {

namespace {

constexpr std::uint32_t kNetwork = 0xAC100000; // 172.16.0.0, which has room for all.
constexpr const char* kMask = "255.255.0.0";

krsystem::NetworkAdapterFields MakeAdapter() {
  krsystem::NetworkAdapterFields fields;
  fields.uniqueID = "bench0";
  fields.name = "bench0";
  fields.displayID = "bench0 172.16.0.1";
  fields.description = "Benchmark";
  fields.macAddress = "02:00:00:00:00:01";
  fields.addresses = {{krsystem::FormatIPv4(kNetwork + 1), kMask}};
  return fields;
}

krsystem::GEVFields MakeDevice(std::size_t aNumber) {
  char mac[18];
  std::snprintf(mac, sizeof mac, "02:00:00:01:%02x:%02x", static_cast<unsigned>(aNumber >> 8 & 0xFF),
                static_cast<unsigned>(aNumber & 0xFF));
  krsystem::GEVFields fields;
  fields.uniqueID = mac;
  fields.macAddress = mac;
  fields.ipAddress = krsystem::FormatIPv4(kNetwork + 256 + static_cast<std::uint32_t>(aNumber));
  fields.subnetMask = kMask;
  fields.vendorName = "Benchmark";
  fields.modelName = "Camera " + std::to_string(aNumber);
  fields.displayID = fields.modelName + " (" + fields.ipAddress + ")";
  fields.version = "1.0";
  fields.manufacturerInfo = "A device that only answers";
  fields.serialNumber = std::to_string(100'000 + aNumber);
  fields.userDefinedName = "camera-" + std::to_string(aNumber);
  fields.gevVersion = 0x00020000;
  fields.ipConfigOptions = 0x7;
  fields.ipConfigCurrent = 0x6;
  return fields;
}

} // namespace

FinderDevices::FinderDevices(std::size_t aCount) : mAdapter(MakeAdapter()) {
  for (std::size_t number = 0; number < aCount; ++number)
    mDevices.push_back(MakeDevice(number));
}

KrResult FinderDevices::ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) {
  aInterfaces = {mAdapter};
  return {};
}

KrResult FinderDevices::Discover(const std::vector<krsystem::InterfaceFields>&,
                                 const krsystem::DiscoveryRequest& aRequest, const krsystem::DeviceReport& aReport) {
  for (const krsystem::GEVFields& device : mDevices)
    aReport(0, device);
  std::mutex mutex; // Guards nothing: the condition wants one.
  std::condition_variable_any woken;
  std::unique_lock lock(mutex);
  woken.wait_for(lock, aRequest.cancel, std::chrono::milliseconds(aRequest.timeoutMs),
                 [&] { return aRequest.cancel.stop_requested(); });
  return aRequest.cancel.stop_requested() ? KrResult(KrResult::Code::Aborted) : KrResult();
}

KrResult FinderDevices::FindAddress(std::uint32_t, std::uint32_t, krsystem::InterfaceFields&,
                                    krsystem::AnyDeviceFields&) {
  return KrResult::Code::NotFound;
}

KrResult FinderDevices::ConfigureIP(const KrString&, const KrString&, const KrString&, const KrString&) {
  return KrResult::Code::NotFound;
}

KrResult FinderDevices::GetAccessType(const krsystem::AnyDeviceFields&, krsystem::AccessType& aType) {
  aType = krsystem::AccessType::Open;
  return {};
}

KrResult FinderDevices::Open(const krsystem::InterfaceFields&, const krsystem::AnyDeviceFields&, krsystem::DeviceAccess,
                             std::unique_ptr<krsystem::IDeviceLink>&) {
  return KrResult::Code::NotSupported;
}

} // namespace benchmarks

#include "simulation/simulationtransport.h"

#include "krbase/krlogger.h"
#include "krsystem/ipv4address.h"
#include "simulation/faultorders.h"
#include "simulation/simulatedcamera.h"
#include "simulation/simulatedlink.h"

#include <algorithm>
#include <cctype>
#include <exception>
#include <optional>
#include <string>
#include <utility>

namespace krtransport {

namespace {

std::string ToLower(const KrString& aText) {
  std::string text = aText.ToUtf8();
  std::ranges::transform(text, text.begin(),
                         [](unsigned char aCharacter) { return static_cast<char>(std::tolower(aCharacter)); });
  return text;
}

krsystem::NetworkAdapterFields MakeFields(const LabAdapter& aAdapter) {
  krsystem::NetworkAdapterFields fields;
  fields.uniqueID = aAdapter.name;
  fields.displayID = aAdapter.name + " " + aAdapter.ipAddress;
  fields.name = aAdapter.name;
  fields.description = aAdapter.description;
  fields.macAddress = aAdapter.macAddress;
  fields.addresses = {{aAdapter.ipAddress, aAdapter.subnetMask}};
  return fields;
}

KrResult MakeUnknown(const KrString& aWhat) {
  return {KrResult::Code::NotFound, "The simulated lab has no camera " + aWhat + "."};
}

} // namespace

SimulationTransport::SimulationTransport(const Lab& aLab, std::shared_ptr<ICameraClock> aClock) {
  if (!aClock)
    aClock = std::make_shared<SteadyCameraClock>();
  for (const LabAdapter& adapter : aLab.adapters) {
    Adapter entry{MakeFields(adapter), {}};
    for (const LabCamera& camera : adapter.cameras)
      entry.cameras.push_back(std::make_shared<SimulatedCamera>(camera, adapter, aClock));
    mAdapters.push_back(std::move(entry));
  }
}

SimulationTransport::~SimulationTransport() = default;

KrString SimulationTransport::GetName() const {
  return "Simulation";
}

KrResult SimulationTransport::ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) {
  aInterfaces.clear();
  for (const Adapter& adapter : mAdapters)
    aInterfaces.emplace_back(adapter.fields);
  return {};
}

KrResult SimulationTransport::Discover(const std::vector<krsystem::InterfaceFields>& aInterfaces,
                                       const krsystem::DiscoveryRequest& aRequest,
                                       const krsystem::DeviceReport& aReport) {
  for (std::size_t i = 0; i < aInterfaces.size(); ++i) {
    const auto adapter = std::ranges::find_if(mAdapters, [&](const Adapter& aAdapter) {
      return krsystem::InterfaceFields(aAdapter.fields) == aInterfaces[i];
    });
    if (adapter != mAdapters.end())
      Answer(*adapter, i, aRequest, aReport);
    else
      KrLogger("KrTransport")
          .Log(KrLogLevel::Warning, {"SimulationTransport::Discover", "simulationtransport"},
               "Looking for simulated devices: interface number " + std::to_string(i) + " is none of the lab's.");
  }
  if (aRequest.cancel.stop_requested())
    return {KrResult::Code::Aborted, "Looking for simulated devices was cancelled."};
  return {};
}

void SimulationTransport::Answer(const Adapter& aAdapter, std::size_t aInterfaceIndex,
                                 const krsystem::DiscoveryRequest& aRequest,
                                 const krsystem::DeviceReport& aReport) const {
  for (const std::shared_ptr<SimulatedCamera>& camera : aAdapter.cameras) {
    if (aRequest.cancel.stop_requested())
      return;
    const krsystem::GEVFields fields = camera->GetFields();
    if (camera->IsPresent() && (fields.configurationValid || !aRequest.subnetBroadcast))
      aReport(aInterfaceIndex, fields);
  }
}

std::shared_ptr<SimulatedCamera> SimulationTransport::FindByID(const KrString& aUniqueID) const {
  for (const Adapter& adapter : mAdapters) {
    for (const std::shared_ptr<SimulatedCamera>& camera : adapter.cameras) {
      if (ToLower(camera->GetFields().uniqueID) == ToLower(aUniqueID))
        return camera;
    }
  }
  return nullptr;
}

std::shared_ptr<SimulatedCamera> SimulationTransport::FindReachable(std::uint32_t aAddress,
                                                                    const Adapter** aAdapter) const {
  for (const Adapter& adapter : mAdapters) {
    for (const std::shared_ptr<SimulatedCamera>& camera : adapter.cameras) {
      if (!camera->IsPresent() || !camera->HasAddress(aAddress) || !camera->GetFields().configurationValid)
        continue;
      if (aAdapter)
        *aAdapter = &adapter;
      return camera;
    }
  }
  return nullptr;
}

KrResult SimulationTransport::FindAddress(std::uint32_t aAddress, std::uint32_t, krsystem::InterfaceFields& aInterface,
                                          krsystem::AnyDeviceFields& aDevice) {
  const Adapter* adapter = nullptr;
  const std::shared_ptr<SimulatedCamera> camera = FindReachable(aAddress, &adapter);
  if (!camera)
    return MakeUnknown("that answers at " + krsystem::FormatIPv4(aAddress));
  aInterface = adapter->fields;
  aDevice = camera->GetFields();
  return {};
}

KrResult SimulationTransport::ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aMask,
                                          const KrString& aGateway) {
  const std::optional<std::uint32_t> address = krsystem::ParseIPv4(aAddress);
  const std::optional<std::uint32_t> mask = krsystem::ParseIPv4(aMask);
  const std::optional<std::uint32_t> gateway = krsystem::ParseIPv4(aGateway);
  if (!address || !mask || !gateway)
    return {KrResult::Code::InvalidInput,
            "Setting the IP configuration of " + aMAC + ": address, mask and gateway are written as in 192.168.1.20."};
  const std::shared_ptr<SimulatedCamera> camera = FindByID(aMAC);
  if (!camera || !camera->IsPresent())
    return MakeUnknown("that answers with the MAC address " + aMAC);
  return camera->ConfigureIP({*address, *mask, *gateway});
}

KrResult SimulationTransport::GetAccessType(const krsystem::AnyDeviceFields& aDevice, krsystem::AccessType& aType) {
  const auto* fields = std::get_if<krsystem::GEVFields>(&aDevice);
  if (!fields)
    return {KrResult::Code::NotSupported, "The simulated lab has GigE Vision cameras only."};
  const std::optional<std::uint32_t> address = krsystem::ParseIPv4(fields->ipAddress);
  const std::shared_ptr<SimulatedCamera> camera = address ? FindReachable(*address, nullptr) : nullptr;
  if (!camera)
    return MakeUnknown("that answers at " + fields->ipAddress);
  aType = camera->GetAccessType();
  return {};
}

KrResult SimulationTransport::Open(const krsystem::InterfaceFields&, const krsystem::AnyDeviceFields& aDevice,
                                   krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) {
  const auto* fields = std::get_if<krsystem::GEVFields>(&aDevice);
  if (!fields)
    return {KrResult::Code::NotSupported, "The simulated lab has GigE Vision cameras only."};
  const std::shared_ptr<SimulatedCamera> camera = FindByID(fields->uniqueID);
  if (!camera)
    return MakeUnknown(fields->displayID);
  try {
    return SimulatedLink::Open(camera, aAccess, aLink);
  } catch (const std::exception& error) {
    return {KrResult::Code::SystemError, "Opening " + fields->displayID + " failed: " + KrString(error.what())};
  }
}

KrResult SimulationTransport::Lose(const KrString& aUniqueID) {
  const std::shared_ptr<SimulatedCamera> camera = FindByID(aUniqueID);
  if (!camera)
    return MakeUnknown(aUniqueID);
  camera->Lose();
  return {};
}

KrResult SimulationTransport::Restore(const KrString& aUniqueID) {
  const std::shared_ptr<SimulatedCamera> camera = FindByID(aUniqueID);
  if (!camera)
    return MakeUnknown(aUniqueID);
  camera->Restore();
  return {};
}

std::shared_ptr<KrSimulatedFaults> SimulationTransport::GetFaults(const KrString& aUniqueID) const {
  const std::shared_ptr<SimulatedCamera> camera = FindByID(aUniqueID);
  return camera ? std::make_shared<FaultOrders>(camera) : nullptr;
}

} // namespace krtransport

#include "simulation/simulationtransport.h"

#include "krbase/krlogger.h"
#include "krsystem/adapterids.h"
#include "krsystem/ipv4address.h"
#include "simulation/faultorders.h"
#include "simulation/simulatedadapter.h"
#include "simulation/simulatedcamera.h"
#include "simulation/simulatedcontroller.h"

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

template <typename Fields>
const KrString& GetUniqueID(const Fields& aFields) {
  return std::visit([](const auto& aKind) -> const KrString& { return aKind.uniqueID; }, aFields);
}

KrResult MakeUnknown(const KrString& aWhat) {
  return {KrResult::Code::NotFound, "The simulated lab has no device " + aWhat + "."};
}

// The IDs of the lab's adapters, in their order. They stay, whoever comes and goes.
std::vector<KrString> MakeUniqueIDs(const std::vector<LabAdapter>& aAdapters) {
  std::vector<krsystem::NetworkAdapterFields> adapters;
  for (const LabAdapter& adapter : aAdapters) {
    krsystem::NetworkAdapterFields& fields = adapters.emplace_back();
    fields.name = adapter.name;
    fields.macAddress = adapter.macAddress;
  }
  krsystem::AssignUniqueIDs(adapters);
  std::vector<KrString> uniqueIDs;
  for (const krsystem::NetworkAdapterFields& fields : adapters)
    uniqueIDs.push_back(fields.uniqueID);
  return uniqueIDs;
}

// A device is opened by its address, whoever it is.
bool IsWhereItWasSeen(const SimulatedDevice& aDevice, const krsystem::AnyDeviceFields& aSeen) {
  const auto* const seen = std::get_if<krsystem::GEVFields>(&aSeen);
  return !seen || krsystem::ParseIPv4(seen->ipAddress) == aDevice.GetAddress();
}

// Of several devices with one ID the one that was seen as it is now; else the first.
std::shared_ptr<SimulatedDevice> Choose(const SimulatedInterface::Devices& aDevices,
                                        const krsystem::AnyDeviceFields& aSeen) {
  const auto same = std::ranges::find_if(
      aDevices, [&](const std::shared_ptr<SimulatedDevice>& aDevice) { return aDevice->GetFields() == aSeen; });
  return same != aDevices.end() ? *same : aDevices.front();
}

} // namespace

SimulationTransport::SimulationTransport(const Lab& aLab, std::shared_ptr<ICameraClock> aClock)
    : mClock(aClock ? std::move(aClock) : std::make_shared<SteadyCameraClock>()), mStartNs(mClock->GetNowNs()),
      mReceiveBufferLimitBytes(aLab.receiveBufferLimitBytes), mUsbMemoryMegabytes(aLab.usbMemoryMegabytes) {
  const std::vector<KrString> uniqueIDs = MakeUniqueIDs(aLab.adapters);
  for (std::size_t i = 0; i < uniqueIDs.size(); ++i)
    mInterfaces.push_back(std::make_unique<SimulatedAdapter>(aLab.adapters[i], uniqueIDs[i], mClock));
  for (const LabController& controller : aLab.controllers)
    mInterfaces.push_back(std::make_unique<SimulatedController>(controller, mClock));
  Update();
  if (HasSchedules())
    mScheduleThread = std::make_unique<ScheduleThread>(mClock, [this] { return UpdateAndFindNext(); });
}

SimulationTransport::~SimulationTransport() = default;

KrString SimulationTransport::GetName() const {
  return "Simulation";
}

std::uint64_t SimulationTransport::Update() const {
  const std::lock_guard lock(mUpdateMutex);
  const std::uint64_t nowNs = mClock->GetNowNs() - mStartNs;
  for (const std::unique_ptr<SimulatedInterface>& interface : mInterfaces)
    interface->Update(nowNs);
  return nowNs;
}

std::uint64_t SimulationTransport::UpdateAndFindNext() const {
  const std::uint64_t nowNs = Update();
  std::uint64_t next = LabSchedule::kNever;
  for (const std::unique_ptr<SimulatedInterface>& interface : mInterfaces)
    next = std::min(next, interface->GetNextChangeNs(nowNs));
  // However many devices have schedules, the thread that waits for them has nothing to do in between.
  return next == LabSchedule::kNever ? next : mStartNs + std::max(next, nowNs + LabSchedule::kLeastStepNs);
}

bool SimulationTransport::HasSchedules() const {
  return std::ranges::any_of(mInterfaces, [](const std::unique_ptr<SimulatedInterface>& aInterface) {
    return aInterface->GetNextChangeNs(0) != LabSchedule::kNever;
  });
}

KrResult SimulationTransport::ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) {
  aInterfaces.clear();
  const std::uint64_t nowNs = Update();
  for (const std::unique_ptr<SimulatedInterface>& interface : mInterfaces) {
    if (interface->IsThere(nowNs))
      aInterfaces.push_back(interface->GetFields(nowNs));
  }
  return {};
}

KrResult SimulationTransport::Discover(const std::vector<krsystem::InterfaceFields>& aInterfaces,
                                       const krsystem::DiscoveryRequest& aRequest,
                                       const krsystem::DeviceReport& aReport) {
  const std::uint64_t nowNs = Update();
  for (std::size_t i = 0; i < aInterfaces.size(); ++i) {
    const SimulatedInterface* const interface = FindInterface(aInterfaces[i]);
    if (!interface) {
      KrLogger("KrTransport")
          .Log(KrLogLevel::Warning, {"SimulationTransport::Discover", "simulationtransport"},
               "Looking for simulated devices: interface number " + std::to_string(i) + " is none of the lab's.");
      continue;
    }
    for (const std::shared_ptr<SimulatedDevice>& device : interface->GetDevices()) {
      if (aRequest.cancel.stop_requested())
        return {KrResult::Code::Aborted, "Looking for simulated devices was cancelled."};
      if (device->IsPresent() && IsHeard(*interface, *device, aRequest.subnetBroadcast, nowNs))
        aReport(i, device->GetFields());
    }
  }
  if (aRequest.cancel.stop_requested())
    return {KrResult::Code::Aborted, "Looking for simulated devices was cancelled."};
  return {};
}

bool SimulationTransport::IsHeard(const SimulatedInterface& aInterface, const SimulatedDevice& aDevice, bool aForSubnet,
                                  std::uint64_t aNowNs) const {
  const std::uint32_t address = aDevice.GetAddress().value_or(0);
  const bool isRoutable = std::ranges::any_of(mInterfaces, [&](const std::unique_ptr<SimulatedInterface>& aOne) {
    return aOne->HasDefaultRoute(aNowNs) || aOne->HasSubnetOf(address, aNowNs);
  });
  return aInterface.IsHeard(
      aDevice,
      {.isForSubnet = aForSubnet, .isAnswerRoutable = isRoutable, .isRoutedHere = aInterface.HasDefaultRoute(aNowNs)});
}

SimulatedInterface* SimulationTransport::FindInterface(const krsystem::InterfaceFields& aFields) const {
  // Its addresses may have changed since it was listed; its ID does not.
  const auto found = std::ranges::find_if(mInterfaces, [&](const std::unique_ptr<SimulatedInterface>& aInterface) {
    return aInterface->GetUniqueID() == GetUniqueID(aFields);
  });
  return found == mInterfaces.end() ? nullptr : found->get();
}

SimulationTransport::Devices SimulationTransport::FindByID(const KrString& aUniqueID) const {
  const std::string id = ToLower(aUniqueID);
  Devices found;
  for (const std::unique_ptr<SimulatedInterface>& interface : mInterfaces) {
    std::ranges::copy_if(
        interface->GetDevices(), std::back_inserter(found),
        [&](const std::shared_ptr<SimulatedDevice>& aDevice) { return ToLower(aDevice->GetUniqueID()) == id; });
  }
  return found;
}

std::shared_ptr<SimulatedCamera> SimulationTransport::FindCamera(const KrString& aUniqueID) const {
  for (const std::shared_ptr<SimulatedDevice>& device : FindByID(aUniqueID)) {
    if (std::shared_ptr<SimulatedCamera> camera = device->GetCamera())
      return camera;
  }
  return nullptr;
}

std::shared_ptr<SimulatedDevice> SimulationTransport::FindReachable(std::uint32_t aAddress,
                                                                    const SimulatedInterface** aInterface) const {
  Update();
  for (const std::unique_ptr<SimulatedInterface>& interface : mInterfaces) {
    for (const std::shared_ptr<SimulatedDevice>& device : interface->GetDevices()) {
      if (device->GetAddress() != aAddress || !device->IsPresent() || !device->IsReachable())
        continue;
      if (aInterface)
        *aInterface = interface.get();
      return device;
    }
  }
  return nullptr;
}

KrResult SimulationTransport::FindAddress(std::uint32_t aAddress, std::uint32_t, krsystem::InterfaceFields& aInterface,
                                          krsystem::AnyDeviceFields& aDevice) {
  const SimulatedInterface* interface = nullptr;
  const std::shared_ptr<SimulatedDevice> device = FindReachable(aAddress, &interface);
  if (!device)
    return MakeUnknown("that answers at " + krsystem::FormatIPv4(aAddress));
  aInterface = interface->GetFields(mClock->GetNowNs() - mStartNs);
  aDevice = device->GetFields();
  return {};
}

SimulationTransport::Devices SimulationTransport::FindAddressed(const SimulatedInterface& aInterface,
                                                                const KrString& aMAC) {
  const std::string mac = ToLower(aMAC);
  Devices found;
  std::ranges::copy_if(aInterface.GetDevices(), std::back_inserter(found),
                       [&](const std::shared_ptr<SimulatedDevice>& aDevice) {
                         return ToLower(aDevice->GetUniqueID()) == mac && aDevice->IsPresent() && aDevice->GetAddress();
                       });
  return found;
}

std::vector<const SimulatedInterface*>
SimulationTransport::ChooseInterfaces(const KrString& aMAC, std::uint32_t aNewAddress, std::uint64_t aNowNs) const {
  std::vector<const SimulatedInterface*> answering;
  std::vector<const SimulatedInterface*> all;
  for (const std::unique_ptr<SimulatedInterface>& interface : mInterfaces) {
    all.push_back(interface.get());
    if (std::ranges::any_of(FindAddressed(*interface, aMAC), [&](const std::shared_ptr<SimulatedDevice>& aDevice) {
          return IsHeard(*interface, *aDevice, false, aNowNs);
        }))
      answering.push_back(interface.get());
  }
  if (answering.empty())
    return all;
  const auto preferred = std::ranges::find_if(
      answering, [&](const SimulatedInterface* aInterface) { return aInterface->HasSubnetOf(aNewAddress, aNowNs); });
  return {preferred != answering.end() ? *preferred : answering.front()};
}

KrResult SimulationTransport::ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aMask,
                                          const KrString& aGateway) {
  const std::optional<std::uint32_t> address = krsystem::ParseIPv4(aAddress);
  const std::optional<std::uint32_t> mask = krsystem::ParseIPv4(aMask);
  const std::optional<std::uint32_t> gateway = krsystem::ParseIPv4(aGateway);
  if (!address || !mask || !gateway)
    return {KrResult::Code::InvalidInput,
            "Setting the IP configuration of " + aMAC + ": address, mask and gateway are written as in 192.168.1.20."};
  const std::uint64_t nowNs = Update();
  KrResult result = MakeUnknown("that answers with the MAC address " + aMAC);
  bool isTaken = false;
  for (const SimulatedInterface* const interface : ChooseInterfaces(aMAC, *address, nowNs)) {
    for (const std::shared_ptr<SimulatedDevice>& device : FindAddressed(*interface, aMAC)) {
      const KrResult configured = device->ConfigureIP({*address, *mask, *gateway});
      if (!isTaken)
        result = configured;
      isTaken = isTaken || configured.IsOK();
    }
  }
  return result;
}

KrResult SimulationTransport::GetAccessType(const krsystem::AnyDeviceFields& aDevice, krsystem::AccessType& aType) {
  const auto* fields = std::get_if<krsystem::GEVFields>(&aDevice);
  if (!fields)
    return {KrResult::Code::NotSupported, "Who controls a simulated device can be asked of GigE Vision cameras only."};
  const std::optional<std::uint32_t> address = krsystem::ParseIPv4(fields->ipAddress);
  const std::shared_ptr<SimulatedDevice> device = address ? FindReachable(*address, nullptr) : nullptr;
  return device ? device->GetAccessType(aType) : MakeUnknown("that answers at " + fields->ipAddress);
}

KrResult SimulationTransport::Open(const krsystem::InterfaceFields&, const krsystem::AnyDeviceFields& aDevice,
                                   krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) {
  Update();
  const KrString displayID =
      std::visit([](const krsystem::DeviceFields& aFields) { return aFields.displayID; }, aDevice);
  const Devices devices = FindByID(GetUniqueID(aDevice));
  if (devices.empty())
    return MakeUnknown(displayID);
  const std::shared_ptr<SimulatedDevice> device = Choose(devices, aDevice);
  if (!IsWhereItWasSeen(*device, aDevice))
    return {KrResult::Code::NotFound, "Opening " + displayID +
                                          ": it does not answer there any more. Look for devices again: it has "
                                          "another address now."};
  try {
    return device->Open(aAccess, aLink);
  } catch (const std::exception& error) {
    return {KrResult::Code::SystemError, "Opening " + displayID + " failed: " + KrString(error.what())};
  }
}

KrResult SimulationTransport::ReadHost(krsystem::HostReadings& aReadings) {
  const std::uint64_t nowNs = Update();
  for (const std::unique_ptr<SimulatedInterface>& interface : mInterfaces) {
    if (interface->IsThere(nowNs))
      interface->ReadHost(nowNs, aReadings);
  }
  if (mReceiveBufferLimitBytes)
    aReadings.receiveBufferLimitBytes = mReceiveBufferLimitBytes;
  if (mUsbMemoryMegabytes)
    aReadings.usbMemoryMegabytes = mUsbMemoryMegabytes;
  return {};
}

KrResult SimulationTransport::FindUsedAddresses(const krsystem::InterfaceFields& aInterface,
                                                const std::vector<std::uint32_t>& aAddresses, std::uint32_t,
                                                const std::stop_token& aCancel, std::vector<std::uint32_t>& aUsed) {
  aUsed.clear();
  const std::uint64_t nowNs = Update();
  const SimulatedInterface* const interface = FindInterface(aInterface);
  if (!interface || !interface->IsUsable(nowNs))
    return {KrResult::Code::NotSupported, "Asking who uses an address: nobody can be asked on that interface."};
  for (const std::uint32_t address : aAddresses) {
    if (aCancel.stop_requested())
      return {KrResult::Code::Aborted, "Asking who uses an address was cancelled."};
    bool isUsed = false;
    const KrResult asked = interface->IsAddressUsed(address, isUsed);
    if (!asked.IsOK())
      return asked;
    if (isUsed)
      aUsed.push_back(address);
  }
  return {};
}

KrResult SimulationTransport::Lose(const KrString& aUniqueID) {
  const std::shared_ptr<SimulatedCamera> camera = FindCamera(aUniqueID);
  if (!camera)
    return MakeUnknown(aUniqueID);
  camera->Lose();
  return {};
}

KrResult SimulationTransport::Restore(const KrString& aUniqueID) {
  const std::shared_ptr<SimulatedCamera> camera = FindCamera(aUniqueID);
  if (!camera)
    return MakeUnknown(aUniqueID);
  camera->Restore();
  return {};
}

std::shared_ptr<KrSimulatedFaults> SimulationTransport::GetFaults(const KrString& aUniqueID) const {
  const std::shared_ptr<SimulatedCamera> camera = FindCamera(aUniqueID);
  return camera ? std::make_shared<FaultOrders>(camera) : nullptr;
}

} // namespace krtransport

#include "simulationchoice.h"

#include "krsystem/transportregistry.h"

#include <algorithm>
#include <vector>

namespace krapps {

namespace {

constexpr const char* kSimulation = "Simulation";

using krsystem::AccessType;
using krsystem::AnyDeviceFields;
using krsystem::ITransport;

const krsystem::DeviceFields& GetCommon(const AnyDeviceFields& aDevice) {
  return std::visit([](const krsystem::DeviceFields& aFields) -> const krsystem::DeviceFields& { return aFields; },
                    aDevice);
}

// Other kinds are shown and never opened.
bool IsReachableCamera(const AnyDeviceFields& aDevice) {
  const bool isCamera =
      std::holds_alternative<krsystem::GEVFields>(aDevice) || std::holds_alternative<krsystem::U3VFields>(aDevice);
  return isCamera && GetCommon(aDevice).configurationValid;
}

// One that does not say who holds it, as those on a USB bus do not, may be free.
bool IsFree(ITransport& aTransport, const AnyDeviceFields& aDevice) {
  AccessType type = AccessType::Unknown;
  return !aTransport.GetAccessType(aDevice, type).IsOK() || type == AccessType::Open;
}

KrResult ListCameras(ITransport& aTransport, std::vector<AnyDeviceFields>& aCameras) {
  std::vector<krsystem::InterfaceFields> interfaces;
  if (KrResult listed = aTransport.ListInterfaces(interfaces); !listed.IsOK())
    return listed;
  return aTransport.Discover(interfaces, {}, [&aCameras](std::size_t, const AnyDeviceFields& aDevice) {
    if (IsReachableCamera(aDevice))
      aCameras.push_back(aDevice);
  });
}

} // namespace

KrResult FindSimulatedCamera(KrString& aUniqueID) {
  const auto transports = krsystem::GetTransports();
  const auto lab = std::ranges::find_if(
      transports, [](const std::shared_ptr<ITransport>& aTransport) { return aTransport->GetName() == kSimulation; });
  if (lab == transports.end())
    return {KrResult::Code::NotFound, "No simulated cameras are installed."};
  std::vector<AnyDeviceFields> cameras;
  if (KrResult listed = ListCameras(**lab, cameras); !listed.IsOK())
    return listed;
  if (cameras.empty())
    return {KrResult::Code::NotFound, "The simulated lab has no camera that can be reached."};
  const auto isFree = [&](const AnyDeviceFields& aDevice) { return IsFree(**lab, aDevice); };
  const auto free = std::ranges::find_if(cameras, isFree);
  aUniqueID = GetCommon(free != cameras.end() ? *free : cameras.front()).uniqueID;
  return {};
}

} // namespace krapps

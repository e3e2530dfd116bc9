// Any text may be given to the reader of lab files; what it takes for a lab keeps to the limits and can be simulated.

#include "require.h"
#include "simulation/labfile/labdevicereader.h"
#include "simulation/labfile/labreader.h"
#include "simulation/simulationtransport.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string_view>

namespace {

using namespace krtransport;

constexpr std::size_t kMostInterfaces = 256;
constexpr std::size_t kMostAddresses = 64;
constexpr std::size_t kMostAsked = 16; // More devices show nothing new.

void CheckCamera(const LabCamera& aCamera) {
  Require(aCamera.sensorWidth >= 64 && aCamera.sensorWidth % 4 == 0);
  Require(aCamera.sensorHeight >= 16 && aCamera.sensorHeight % 2 == 0);
  Require(aCamera.framesPerSecond >= 1 && aCamera.framesPerSecond <= 1000);
  Require(!aCamera.pixelFormats.empty());
  // Each port once.
  Require(std::ranges::adjacent_find(aCamera.serialPorts, std::ranges::greater_equal(), &LabSerialPort::number) ==
          aCamera.serialPorts.end());
  for (const LabSerialPort& port : aCamera.serialPorts) {
    Require(port.number < kSerialPortNames.size());
    Require(std::ranges::find(port.rates, port.rate) != port.rates.end());
    Require(std::ranges::find(port.rates, 0u) == port.rates.end());
    Require(port.behind != LabLineEnd::Tty || port.path.ToUtf8().starts_with('/'));
  }
}

template <typename Devices>
std::size_t CheckDevices(const Devices& aDevices) {
  for (const auto& device : aDevices)
    std::visit(
        [](const auto& aKind) {
          if constexpr (std::is_base_of_v<LabCamera, std::decay_t<decltype(aKind)>>)
            CheckCamera(aKind);
        },
        device);
  return aDevices.size();
}

void Check(const Lab& aLab) {
  Require(aLab.adapters.size() <= kMostInterfaces && aLab.controllers.size() <= kMostInterfaces);
  std::size_t devices = 0;
  for (const LabAdapter& adapter : aLab.adapters) {
    Require(!adapter.name.IsEmpty() && adapter.addresses.size() <= kMostAddresses);
    devices += CheckDevices(adapter.devices);
  }
  for (const LabController& controller : aLab.controllers) {
    Require(!controller.name.IsEmpty());
    devices += CheckDevices(controller.devices);
  }
  Require(devices <= kMostLabDevices);
}

// The lab with its first devices alone.
Lab Shorten(Lab aLab) {
  std::size_t left = kMostAsked;
  const auto shorten = [&left](auto& aInterfaces) {
    for (auto& interface : aInterfaces) {
      const std::size_t kept = std::min(left, interface.devices.size());
      interface.devices.erase(interface.devices.begin() + static_cast<std::ptrdiff_t>(kept), interface.devices.end());
      left -= kept;
    }
  };
  shorten(aLab.adapters);
  shorten(aLab.controllers);
  return aLab;
}

// A lab that was taken lists its interfaces, and its devices answer.
void Ask(const Lab& aLab) {
  SimulationTransport transport(aLab);
  std::vector<krsystem::InterfaceFields> interfaces;
  Require(transport.ListInterfaces(interfaces).IsOK());
  Require(interfaces.size() <= aLab.adapters.size() + aLab.controllers.size());
  const KrResult discovered = transport.Discover(
      interfaces, {}, [&](std::size_t aInterface, const auto&) { Require(aInterface < interfaces.size()); });
  Require(discovered.IsOK());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  Lab lab;
  const KrResult result = ParseLab(std::string_view(reinterpret_cast<const char*>(aData), aSize), "lab.yaml", lab);
  if (!result.IsOK()) {
    Require(result == KrResult::Code::BadData && result.GetDescription().ToUtf8().starts_with("lab.yaml:"));
    Require(lab.adapters.empty() && lab.controllers.empty());
    return 0;
  }
  Check(lab);
  Ask(Shorten(std::move(lab)));
  return 0;
}

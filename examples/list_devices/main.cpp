// Lists every camera that answers, by interface. With --simulate the built-in simulated lab is listed as well.

#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <iostream>
#include <set>
#include <string_view>

int main(int argc, char** argv) {
  const std::set<std::string_view> options(argv + 1, argv + argc);
  if (options.contains("--help") || options.contains("-h")) {
    std::cout << "usage: list_devices [--simulate]\n";
    return 0;
  }
  KrResult result = KrInstallTransports({.gigEVision = true, .simulation = options.contains("--simulate")});
  if (!result.IsOK()) {
    std::cerr << result.GetDescription().CStr() << '\n';
    return 1;
  }

  // The system owns all that it finds: interfaces and devices are valid as long as it lives.
  KrSystem system;
  system.SetDetectionTimeout(500);
  // Devices with an address of a foreign subnet are to answer too.
  system.SetSubnetBroadcastEnabled(false);
  result = system.Find();
  if (!result.IsOK()) {
    std::cerr << result.GetDescription().CStr() << '\n';
    return 1;
  }

  for (std::size_t i = 0; i < system.GetInterfaceCount(); ++i) {
    const KrInterface* interface = system.GetInterface(i);
    std::cout << interface->GetDisplayID().CStr() << '\n';
    for (std::size_t j = 0; j < interface->GetDeviceCount(); ++j) {
      const KrDeviceInfo* device = interface->GetDeviceInfo(j);
      std::cout << "  " << device->GetDisplayID().CStr() << (device->IsConfigurationValid() ? "" : "  (unreachable)")
                << '\n';
    }
  }
  const std::size_t count = system.GetDeviceCount();
  std::cout << count << (count == 1 ? " device\n" : " devices\n");
  return 0;
}

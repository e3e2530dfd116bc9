// Shows the serial terminal on the first camera that has a serial port, at the port that is named ("Serial1", "Bulk0"),
// or its first one. With --simulate the cameras of the built-in simulated lab count as well: the first of them has an
// instrument behind Serial0, which answers to HELP.

#include "krdevice/krdevice.h"
#include "krdevice/krdeviceadapter.h"
#include "krgui/krserialterminalwnd.h"
#include "krserial/krdeviceserialport.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <QApplication>

#include <algorithm>
#include <iostream>
#include <set>
#include <string_view>

namespace {

bool HasPort(KrDevice& aDevice) {
  KrDeviceAdapter adapter(aDevice);
  return std::any_of(kDeviceSerialPorts.begin(), kDeviceSerialPorts.end(), [&](KrDeviceSerial aPort) {
    return KrDeviceSerialPort::IsSupported(&adapter, aPort);
  });
}

// Cameras that cannot be opened, and those without a port, are passed.
std::unique_ptr<KrDevice> OpenDevice(const KrSystem& aSystem) {
  for (std::size_t index = 0; index < aSystem.GetDeviceCount(); ++index) {
    std::unique_ptr<KrDevice> device;
    if (KrDevice::Open(*aSystem.GetDeviceInfo(index), KrDeviceAccess::Control, device).IsOK() && HasPort(*device))
      return device;
  }
  return nullptr;
}

} // namespace

int main(int argc, char** argv) {
  const std::set<std::string_view> options(argv + 1, argv + argc);
  if (options.contains("--help") || options.contains("-h")) {
    std::cout << "usage: serial_terminal [--simulate] [PORT]\n";
    return 0;
  }
  KrString portName;
  for (int i = 1; i < argc; ++i)
    if (std::string_view(argv[i]) != "--simulate")
      portName = argv[i];
  if (!portName.IsEmpty() && FindPort(portName) == KrDeviceSerial::Invalid) {
    std::cerr << "There is no port " << portName.CStr() << "; ports are Serial0, Serial1 and Bulk0 to Bulk7.\n";
    return 2;
  }
  QApplication application(argc, argv);
  KrSystem system;
  KrResult result = KrInstallTransports({.simulation = options.contains("--simulate")});
  if (result.IsOK())
    result = system.Find();
  const std::unique_ptr<KrDevice> device = OpenDevice(system); // Ends after the adapter, and that after the window.
  if (!device) {
    std::cerr << "No camera with a serial port can be opened. Try --simulate. " << result.GetDescription().CStr()
              << '\n';
    return 1;
  }

  KrDeviceAdapter adapter(*device);
  KrSerialTerminalWnd terminal;
  result = terminal.SetDevice(&adapter);
  if (result.IsOK() && !portName.IsEmpty())
    result = terminal.SetSerialPort(FindPort(portName)); // NotSupported where the device has no such port.
  if (result.IsOK())
    result = terminal.ShowModal(0);
  if (!result.IsOK() && result != KrResult::Code::Cancelled) {
    std::cerr << result.GetCodeString().CStr() << ": " << result.GetDescription().CStr() << '\n';
    return 1;
  }
  std::cout << device->GetDisplayID().CStr() << ": " << GetPortName(terminal.GetSerialPort()).CStr() << '\n';
  return 0;
}

// Links a serial port of a camera to a serial port of this computer, so that any program with a serial port can talk to
// what is connected to the camera. Its usage text says how.

#include "krdevice/krdevice.h"
#include "krdevice/krdeviceadapter.h"
#include "krserial/krdeviceserialport.h"
#include "krserial/krhostserialports.h"
#include "krserial/krserialbridge.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <charconv>
#include <csignal>
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace {

constexpr const char* kUsage = R"(usage: serial_bridge [--simulate] [--create] CAMERA PORT COMPORT [BAUD]
  --simulate  simulated cameras can be used as well
  --create    makes COMPORT, for programs of this computer, as long as this program runs
  CAMERA      the camera's MAC address, or the name that it was given
  PORT        the camera's serial port: Serial0, Serial1, Bulk0 to Bulk7, in just these letters
  COMPORT     the serial port of this computer, COM1 and up: what the link com1 and so on leads to in
              ~/.config/krgui/com-ports, or else one of the serial ports that the computer has
  BAUD        the speed of COMPORT, 115200 without it

To try it without a camera and without a cable:
  serial_bridge --simulate --create sim-mono Serial0 COM9
and in another terminal, to talk to the instrument that is simulated there (try HELP):
  socat - ~/.config/krgui/com-ports/com9,rawer
Ctrl-C ends the bridge.
)";

int Fail(const KrResult& aResult) {
  std::cerr << aResult.GetCodeString().CStr() << ": " << aResult.GetDescription().CStr() << '\n';
  return 1;
}

int FailUsage(const std::string& aWhat) {
  std::cerr << aWhat << "\n\n" << kUsage;
  return 64;
}

std::string ListPorts(IKrDeviceAdapter& aAdapter) {
  std::string names;
  for (const KrDeviceSerial port : kDeviceSerialPorts)
    if (KrDeviceSerialPort::IsSupported(&aAdapter, port))
      names += (names.empty() ? "" : ", ") + GetPortName(port).ToUtf8();
  return names.empty() ? "none" : names;
}

// Whether it is a number and nothing else.
bool ParseSpeed(const std::string& aText, std::uint32_t& aSpeed) {
  const char* const end = aText.data() + aText.size();
  const auto [rest, error] = std::from_chars(aText.data(), end, aSpeed);
  return error == std::errc() && rest == end;
}

KrResult OpenCamera(const KrSystem& aSystem, const KrString& aName, std::unique_ptr<KrDevice>& aDevice) {
  for (std::size_t index = 0; index < aSystem.GetDeviceCount(); ++index) {
    const KrDeviceInfo* const info = aSystem.GetDeviceInfo(index);
    if (info->GetUniqueID() == aName || info->GetUserDefinedName() == aName)
      return KrDevice::Open(*info, KrDeviceAccess::Control, aDevice);
  }
  return KrResult(KrResult::Code::NotFound, "There is no camera " + aName + ".");
}

// Until Ctrl-C, which is blocked and waited for here.
void PrintCounters(const KrSerialBridge& aBridge, const sigset_t& aSignals) {
  const timespec second = {.tv_sec = 1, .tv_nsec = 0};
  while (sigtimedwait(&aSignals, nullptr, &second) < 0)
    std::cout << "to the camera " << aBridge.GetBytesSentToDevice() << " bytes, from it "
              << aBridge.GetBytesReceivedFromDevice() << " bytes   " << aBridge.GetStateText().CStr() << std::endl;
}

} // namespace

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  const bool isSimulating = std::erase(arguments, "--simulate") > 0;
  const bool isCreating = std::erase(arguments, "--create") > 0;
  if (std::erase(arguments, "--help") + std::erase(arguments, "-h") > 0) {
    std::cout << kUsage;
    return 0;
  }
  for (const std::string& argument : arguments)
    if (argument.starts_with('-'))
      return FailUsage("There is no option " + argument + ".");
  if (arguments.size() < 3 || arguments.size() > 4)
    return FailUsage("It takes CAMERA, PORT, COMPORT and perhaps BAUD.");
  KrSerialPortConfiguration configuration;
  configuration.baudRate = 115200;
  if (arguments.size() == 4 && !ParseSpeed(arguments[3], configuration.baudRate))
    return FailUsage("The speed " + arguments[3] + " is no number.");
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr); // Before there are threads, which inherit it.

  KrSystem system;
  std::unique_ptr<KrDevice> device; // Ends after the adapter, and that after the bridge.
  KrResult result = KrInstallTransports({.simulation = isSimulating});
  if (result.IsOK())
    result = system.Find();
  if (result.IsOK())
    result = OpenCamera(system, arguments[0], device);
  if (!result.IsOK())
    return Fail(result);
  KrDeviceAdapter adapter(*device);
  const KrDeviceSerial devicePort = FindPort(arguments[1]);
  if (devicePort == KrDeviceSerial::Invalid || !KrDeviceSerialPort::IsSupported(&adapter, devicePort))
    return Fail({KrResult::Code::NotFound,
                 "The camera has no serial port " + arguments[1] + ". It has: " + ListPorts(adapter) + "."});

  KrSerialBridge bridge;
  bridge.SetCreatingPort(isCreating);
  result = bridge.Start(arguments[2], configuration, &adapter, devicePort);
  KrHostSerialPort port;
  if (result.IsOK())
    result = KrHostSerialPorts::Find(bridge.GetSerialPort(), port);
  if (!result.IsOK())
    return Fail(result);
  std::cout << "path=" << port.path.CStr() << std::endl;
  PrintCounters(bridge, signals);
  return 0;
}

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
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr const char* kUsage = R"(usage: serial_bridge [--simulate] [--create] CAMERA PORT COMPORT [BAUD=115200]
  --simulate  simulated cameras can be used as well
  --create    makes COMPORT, for programs of this computer, as long as this program runs
  CAMERA      the camera's MAC address, or the name that it was given
  PORT        the camera's serial port: Serial0, Serial1, Bulk0 to Bulk7, in just these letters
  COMPORT     the serial port of this computer, COM1 and up: where ~/.config/krgui/com-ports/com1 leads, or else its own

To try it without a camera and without a cable, and in another terminal to talk to the simulated instrument (try HELP):
  serial_bridge --simulate --create sim-mono Serial0 COM9
  socat - ~/.config/krgui/com-ports/com9,rawer
)";

int FailUsage(const std::string& aWhat) {
  std::cerr << aWhat << "\n\n" << kUsage;
  return 64;
}

int Fail(const KrResult& aResult) {
  std::cerr << aResult.GetCodeString().CStr() << ": " << aResult.GetDescription().CStr() << '\n';
  return 1;
}

std::string ListPorts(IKrDeviceAdapter& aAdapter) {
  std::string names;
  for (const KrDeviceSerial port : kDeviceSerialPorts)
    if (KrDeviceSerialPort::IsSupported(&aAdapter, port))
      names += (names.empty() ? "" : ", ") + GetPortName(port).ToUtf8();
  return names.empty() ? "none" : names;
}

KrResult OpenCamera(KrSystem& aSystem, const KrString& aName, std::unique_ptr<KrDevice>& aDevice) {
  if (KrResult found = aSystem.Find(); !found.IsOK())
    return found;
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

// Bridges until the user has enough of it; gives the program's exit code.
int Bridge(const KrString& aCamera, const KrString& aPort, const KrString& aComPort, bool aIsCreating,
           const KrSerialPortConfiguration& aConfiguration, const sigset_t& aSignals) {
  KrSystem system;
  std::unique_ptr<KrDevice> device; // Ends after the adapter, and that after the bridge.
  if (KrResult opened = OpenCamera(system, aCamera, device); !opened.IsOK())
    return Fail(opened);
  KrDeviceAdapter adapter(*device);
  const KrDeviceSerial devicePort = FindPort(aPort);
  if (devicePort == KrDeviceSerial::Invalid || !KrDeviceSerialPort::IsSupported(&adapter, devicePort))
    return Fail({KrResult::Code::NotFound,
                 "The camera has no serial port " + aPort + ". It has: " + ListPorts(adapter) + "."});

  KrSerialBridge bridge;
  bridge.SetCreatingPort(aIsCreating);
  KrResult result = bridge.Start(aComPort, aConfiguration, &adapter, devicePort);
  KrHostSerialPort port;
  if (result.IsOK())
    result = KrHostSerialPorts::Find(bridge.GetSerialPort(), port);
  if (!result.IsOK())
    return Fail(result);
  std::cout << "path=" << port.path.CStr() << std::endl;
  PrintCounters(bridge, aSignals);
  return 0;
}

} // namespace

int main(int argc, char** argv) {
  std::vector<std::string> words(argv + 1, argv + argc);
  const bool isSimulating = std::erase(words, "--simulate") > 0;
  const bool isCreating = std::erase(words, "--create") > 0;
  if (std::erase(words, "--help") + std::erase(words, "-h") > 0) {
    std::cout << kUsage;
    return 0;
  }
  for (const std::string& word : words)
    if (word.starts_with('-'))
      return FailUsage("There is no option " + word + ".");
  if (words.size() < 3 || words.size() > 4)
    return FailUsage("It takes CAMERA, PORT, COMPORT and perhaps BAUD.");
  KrSerialPortConfiguration configuration;
  const std::string speed = words.size() == 4 ? words[3] : "115200";
  const char* const end = speed.data() + speed.size();
  if (std::from_chars(speed.data(), end, configuration.baudRate) != std::from_chars_result{end, {}})
    return FailUsage("The speed " + speed + " is no number.");

  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr); // Before there are threads, which inherit it.
  if (KrResult installed = KrInstallTransports({.simulation = isSimulating}); !installed.IsOK())
    return Fail(installed);
  return Bridge(words[0], words[1], words[2], isCreating, configuration, signals);
}

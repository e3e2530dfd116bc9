// Links a serial port of a camera to a serial port of this computer, so that any program with a serial port can talk to
// what is connected to the camera. Its usage text (bridgearguments.cpp) says how.

#include "bridgearguments.h"
#include "krdevice/krdevice.h"
#include "krdevice/krdeviceadapter.h"
#include "krserial/krdeviceserialport.h"
#include "krserial/krhostserialports.h"
#include "krserial/krserialbridge.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <csignal>
#include <iostream>
#include <memory>

namespace {

int Fail(const KrResult& aResult) {
  std::cerr << aResult.GetCodeString().CStr() << ": " << aResult.GetDescription().CStr() << '\n';
  return 1;
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

} // namespace

int main(int argc, char** argv) {
  BridgeArguments arguments;
  if (const std::optional<int> exitCode = ParseArguments(argc, argv, arguments))
    return *exitCode;
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr); // Before there are threads, which inherit it.

  KrSystem system;
  std::unique_ptr<KrDevice> device; // Ends after the adapter, and that after the bridge.
  KrResult result = KrInstallTransports({.simulation = arguments.isSimulating});
  if (result.IsOK())
    result = OpenCamera(system, arguments.camera, device);
  if (!result.IsOK())
    return Fail(result);
  KrDeviceAdapter adapter(*device);
  const KrDeviceSerial devicePort = FindPort(arguments.port);
  if (devicePort == KrDeviceSerial::Invalid || !KrDeviceSerialPort::IsSupported(&adapter, devicePort))
    return Fail({KrResult::Code::NotFound, "The camera has no serial port " + arguments.port + "."});

  KrSerialBridge bridge;
  bridge.SetCreatingPort(arguments.isCreating);
  result = bridge.Start(arguments.comPort, arguments.configuration, &adapter, devicePort);
  KrHostSerialPort port;
  if (result.IsOK())
    result = KrHostSerialPorts::Find(bridge.GetSerialPort(), port);
  if (!result.IsOK())
    return Fail(result);
  std::cout << "path=" << port.path.CStr() << std::endl;
  PrintCounters(bridge, signals);
}

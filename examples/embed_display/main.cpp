// A display in a Qt layout of the application's own, with the application's buttons beside it (camerapanel.cpp). The
// first camera is taken; with --simulate those of the built-in simulated lab count as well.

#include "camerapanel.h"
#include "krdevice/krdevice.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <QApplication>

#include <cstring>
#include <iostream>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const bool simulate = argc > 1 && std::strcmp(argv[1], "--simulate") == 0;
  KrSystem system;
  KrResult result = KrInstallTransports({.simulation = simulate});
  if (result.IsOK())
    result = system.Find();
  const KrDeviceInfo* const info = result.IsOK() ? system.GetDeviceInfo(0) : nullptr;
  std::unique_ptr<KrDevice> device; // Ends after the panel.
  if (info)
    result = KrDevice::Open(*info, KrDeviceAccess::Control, device);
  if (!device) {
    std::cerr << "No camera can be opened. Try --simulate. " << result.GetDescription().CStr() << '\n';
    return 1;
  }

  CameraPanel panel(*device);
  panel.setWindowTitle(QString::fromUtf8(device->GetDisplayID().CStr()));
  panel.resize(800, 500);
  panel.show();
  const int exitCode = QApplication::exec();
  std::cout << panel.GetShownCount() << " frames were shown.\n";
  return exitCode;
}

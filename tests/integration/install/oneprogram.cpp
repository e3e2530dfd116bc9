// A program of one file that is built against the installed libraries: it shows one image, and looks for devices where
// no transport is registered.

#include "krdevice/krdevicegev.h"
#include "krgui/krdisplaywnd.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <QApplication>

#include <iostream>

int main(int aCount, char** aArguments) {
  QApplication application(aCount, aArguments);
  KrSystem system;
  if (!system.Find().IsOK() || system.GetDeviceCount() != 0)
    return 1;
  if (!KrInstallTransports({.gigEVision = false, .simulation = true}).IsOK() || !system.Find().IsOK())
    return 2;
  KrBuffer buffer;
  if (!buffer.GetImage()->Alloc(64, 48, KrPixel::Mono8).IsOK())
    return 3;
  KrDisplayWnd window;
  if (!window.ShowModeless(0).IsOK() || !window.Display(buffer, false).IsOK() || !window.Close().IsOK())
    return 4;
  std::cout << system.GetDeviceCount() << " devices\n";
  return system.GetDeviceCount() > 0 ? 0 : 5;
}

// A display inside a window of another toolkit, in a program that runs no Qt loop: its own loop looks after its window
// (hostwindow.cpp), takes frames, and lets the display handle what came for it. The first camera is taken; with
// --simulate those of the built-in simulated lab count as well.

#include "hostwindow.h"
#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "krgui/krdisplaywnd.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <iostream>
#include <set>
#include <string_view>

namespace {

bool Check(const KrResult& aResult) {
  if (!aResult.IsOK())
    std::cerr << aResult.GetDescription().CStr() << '\n';
  return aResult.IsOK();
}

// Shows the next frame, if one comes soon: the loop has its window to look after. False once the camera is lost.
bool ShowFrame(KrStream& aStream, KrDisplayWnd& aDisplay) {
  KrBuffer* buffer = nullptr;
  const KrResult retrieved = aStream.Retrieve(buffer, 20);
  if (!buffer)
    return retrieved == KrResult::Code::TimeLimitExceeded || Check(retrieved);
  const bool isShown = Check(aDisplay.Display(*buffer, false));
  return Check(aStream.Release(buffer)) && isShown;
}

// Until the user closes the window, with which the display ends. The display, which fills it, follows its size.
bool Run(HostWindow& aHost, KrStream& aStream, KrDisplayWnd& aDisplay) {
  while (aHost.HandleEvents() && aDisplay.DoEvents() != KrResult::Code::WrongState) {
    aDisplay.SetPosition(0, 0, aHost.GetWidth(), aHost.GetHeight());
    if (!ShowFrame(aStream, aDisplay))
      return false;
  }
  return true;
}

} // namespace

int main(int argc, char** argv) {
  const std::set<std::string_view> options(argv + 1, argv + argc);
  if (options.contains("--help") || options.contains("-h")) {
    std::cout << "usage: embed_x11 [--simulate]\n";
    return 0;
  }
  KrSystem system;
  if (!Check(KrInstallTransports({.simulation = options.contains("--simulate")})) || !Check(system.Find()))
    return 1;
  const KrDeviceInfo* const info = system.GetDeviceInfo(0);
  const KrResult none(KrResult::Code::NotFound, "There is no camera. Try --simulate.");
  std::unique_ptr<KrDevice> device;
  if (!Check(info ? KrDevice::Open(*info, KrDeviceAccess::Control, device) : none))
    return 1;

  HostWindow host(640, 480, "A window of another toolkit");
  KrDisplayWnd display;
  KrStream stream(*device);
  if (!Check(display.Create(host.GetID(), 0)) || !Check(stream.Start()))
    return 1;
  const bool isDone = Run(host, stream, display);
  std::cout << display.GetStatistics().shown << " frames were shown.\n";
  return isDone ? 0 : 1;
}

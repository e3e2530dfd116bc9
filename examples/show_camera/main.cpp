// Opens the first camera and shows it live. With --simulate the cameras of the built-in simulated lab count as well.

#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "krgui/krdisplaywnd.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <QApplication>

#include <iostream>
#include <set>
#include <string_view>
#include <thread>

namespace {

// Opens the first device that this host can reach; the rest are tried when one cannot be opened.
std::unique_ptr<KrDevice> OpenFirstCamera(const KrSystem& aSystem) {
  std::unique_ptr<KrDevice> device;
  for (std::size_t i = 0; i < aSystem.GetDeviceCount() && !device; ++i) {
    const KrDeviceInfo* info = aSystem.GetDeviceInfo(i);
    if (!info->IsConfigurationValid())
      continue;
    KrResult opened = KrDevice::Open(*info, KrDeviceAccess::Control, device);
    if (!opened.IsOK())
      std::cerr << info->GetDisplayID().CStr() << ": " << opened.GetDescription().CStr() << '\n';
  }
  return device;
}

// Shows frames until the stream is stopped or the camera is lost; runs on a thread of its own.
void ShowFrames(KrStream& aStream, KrDisplayWnd& aWindow) {
  while (aStream.IsRunning()) {
    KrBuffer* buffer = nullptr;
    KrResult result = aStream.Retrieve(buffer, 1000);
    if (result == KrResult::Code::TimeLimitExceeded)
      continue; // A camera that waits for its trigger sends nothing for a while.
    if (!result.IsOK()) {
      if (result != KrResult::Code::Aborted) // The stream was stopped on purpose.
        std::cerr << "The stream ended: " << result.GetDescription().CStr() << '\n';
      return;
    }
    result = aWindow.Display(*buffer, false);
    if (!result.IsOK())
      std::cerr << "A frame cannot be shown: " << result.GetDescription().CStr() << '\n';
    result = aStream.Release(buffer);
  }
}

} // namespace

int main(int argc, char** argv) {
  const std::set<std::string_view> options(argv + 1, argv + argc);
  if (options.contains("--help") || options.contains("-h")) {
    std::cout << "usage: show_camera [--simulate]\n";
    return 0;
  }
  QApplication application(argc, argv);
  KrResult result = KrInstallTransports({.gigEVision = true, .simulation = options.contains("--simulate")});

  KrSystem system;
  if (result.IsOK())
    result = system.Find();
  std::unique_ptr<KrDevice> device = OpenFirstCamera(system);
  if (!device) {
    std::cerr << "No camera can be opened. Try --simulate. " << result.GetDescription().CStr() << '\n';
    return 1;
  }

  KrDisplayWnd window;
  window.SetTitle(device->GetDisplayID());
  window.SetPosition(100, 100, 800, 600);
  KrStream stream(*device);
  result = window.ShowModeless(0);
  if (result.IsOK())
    result = stream.Start();
  if (!result.IsOK()) {
    std::cerr << result.GetDescription().CStr() << '\n';
    return 1;
  }

  // The application ends with its last window; then the stream is stopped, which ends the thread.
  std::jthread acquisition([&] { ShowFrames(stream, window); });
  const int exitCode = QApplication::exec();
  stream.Stop();
  return exitCode;
}

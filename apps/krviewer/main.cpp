#include "commandline.h"
#include "deviceselection.h"
#include "krdevice/krdeviceend.h"
#include "krgui/krapplication.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"
#include "viewer.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::uint64_t kHeadlessFrames = 100;
const QString kFirstSimulatedCamera = QStringLiteral("sim-mono");

// Without a display there is nobody to close a window: the run is given an end and leaves pictures behind.
void PrepareHeadless(krviewer::CommandLine& aCommandLine) {
  if (aCommandLine.frames == 0)
    aCommandLine.frames = kHeadlessFrames;
  if (aCommandLine.simulate && aCommandLine.device.isEmpty())
    aCommandLine.device = kFirstSimulatedCamera;
  if (aCommandLine.screenshotFolder.isEmpty())
    aCommandLine.screenshotFolder = QStringLiteral("pictures");
}

// Windows on a display where there is one, else without.
bool PrepareWindows(krviewer::CommandLine& aCommandLine) {
  KrResult result = aCommandLine.headless ? KrResult(KrResult::Code::Cancelled) : KrEnsureApplication();
  if (!result.IsOK()) {
    std::printf("No display is used: running headless.\n");
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    result = KrEnsureApplication();
  }
  if (!result.IsOK())
    std::fprintf(stderr, "%s\n", result.GetDescription().CStr());
  else if (QGuiApplication::platformName() == QStringLiteral("offscreen"))
    PrepareHeadless(aCommandLine);
  return result.IsOK();
}

int RunViewer(const krviewer::CommandLine& aCommandLine) {
  if (KrResult installed = KrInstallTransports({.gigEVision = true, .simulation = aCommandLine.simulate});
      !installed.IsOK()) {
    std::fprintf(stderr, "%s\n", installed.GetDescription().CStr());
    return 1;
  }
  KrSystem system;
  // So that cameras of a foreign subnet answer too, and a user is told why one cannot be opened.
  system.SetSubnetBroadcastEnabled(false);
  const KrDeviceInfo* device = nullptr;
  if (KrResult selected = krapps::SelectDevice(system, aCommandLine.device.toStdString(), device); !selected.IsOK()) {
    std::fprintf(stderr, "%s\n", selected.GetDescription().CStr());
    if (!aCommandLine.simulate)
      std::fprintf(stderr, "With --simulate there are simulated cameras to try.\n");
    return 1;
  }
  return krviewer::Viewer(*device, aCommandLine).Run();
}

} // namespace

int main(int aArgumentCount, char** aArguments) {
  // Lines reach a pipe when they are written, not at the end.
  setvbuf(stdout, nullptr, _IOLBF, 0);
  krviewer::CommandLine commandLine;
  QString text;
  QStringList arguments;
  for (int i = 1; i < aArgumentCount; ++i)
    arguments += QString::fromLocal8Bit(aArguments[i]);
  switch (krviewer::ParseCommandLine(arguments, commandLine, text)) {
  case krviewer::CommandLineStatus::Help:
    std::printf("%s", text.toLocal8Bit().constData());
    return 0;
  case krviewer::CommandLineStatus::Version:
    std::printf("krviewer %s\n", KRGUI_VERSION);
    return 0;
  case krviewer::CommandLineStatus::Error:
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    return 2;
  case krviewer::CommandLineStatus::Run:
    break;
  }
  // Before there are windows, whose toolkit may start threads.
  if (KrResult prepared = KrGiveBackDevicesAtEnd(); !prepared.IsOK())
    std::fprintf(stderr, "%s\n", prepared.GetDescription().CStr());
  return PrepareWindows(commandLine) ? RunViewer(commandLine) : 1;
}

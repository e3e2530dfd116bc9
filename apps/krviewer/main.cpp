#include "commandline.h"
#include "deviceselection.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"
#include "viewer.h"

#include <QApplication>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::uint64_t kHeadlessFrames = 100;
const QString kFirstSimulatedCamera = QStringLiteral("sim-mono");

bool HasDisplay() {
  return std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY") || std::getenv("QT_QPA_PLATFORM");
}

// Without a display there is nobody to close a window: the run is given an end and leaves pictures behind.
void PrepareHeadless(krviewer::CommandLine& aCommandLine) {
  std::printf("No display is used: running without one.\n");
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  if (aCommandLine.frames == 0)
    aCommandLine.frames = kHeadlessFrames;
  if (aCommandLine.simulate && aCommandLine.device.isEmpty())
    aCommandLine.device = kFirstSimulatedCamera;
  if (aCommandLine.screenshotFolder.isEmpty())
    aCommandLine.screenshotFolder = QStringLiteral("pictures");
}

void EndOnSignals() {
  std::signal(SIGINT, [](int) { krviewer::Viewer::Interrupt(); });
  std::signal(SIGTERM, [](int) { krviewer::Viewer::Interrupt(); });
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
  if (commandLine.headless || !HasDisplay())
    PrepareHeadless(commandLine);
  QApplication application(aArgumentCount, aArguments);
  QApplication::setQuitOnLastWindowClosed(false);
  EndOnSignals();
  return RunViewer(commandLine);
}

#include "commandline.h"
#include "descriptionviewer.h"
#include "devicepick.h"
#include "deviceselection.h"
#include "krdevice/krdeviceend.h"
#include "krgui/krapplication.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"
#include "pictures.h"
#include "viewer.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::uint64_t kHeadlessFrames = 100;
const QString kFirstSimulatedCamera = QStringLiteral("sim-mono");

// Without a display there is nobody to close a window: the run is given an end and leaves pictures behind.
void PrepareHeadless(krviewer::CommandLine& aCommandLine) {
  if (aCommandLine.frames == 0 && aCommandLine.descriptionFile.isEmpty())
    aCommandLine.frames = kHeadlessFrames;
  if (aCommandLine.simulate && aCommandLine.labFile.isEmpty() && aCommandLine.device.isEmpty())
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
  else if (krviewer::IsWithoutDisplay())
    PrepareHeadless(aCommandLine);
  return result.IsOK();
}

// The device that the command line names, or that is chosen without a user.
KrResult SelectDevice(KrSystem& aSystem, const krviewer::CommandLine& aCommandLine, const KrDeviceInfo*& aDevice) {
  // So that cameras of a foreign subnet answer too, and a user is told why one cannot be opened.
  aSystem.SetSubnetBroadcastEnabled(false);
  const KrResult selected = krapps::SelectDevice(aSystem, aCommandLine.device.toStdString(), aDevice);
  if (!selected.IsOK()) {
    std::fprintf(stderr, "%s\n", selected.GetDescription().CStr());
    if (!aCommandLine.simulate)
      std::fprintf(stderr, "With --simulate there are simulated cameras to try.\n");
  }
  return selected;
}

KrResult PickDevice(KrDeviceFinderWnd& aFinder, const KrDeviceInfo*& aDevice) {
  const KrResult picked = krviewer::PickDevice(aFinder, aDevice);
  if (!picked.IsOK() && picked != KrResult::Code::Cancelled)
    std::fprintf(stderr, "%s\n", picked.GetDescription().CStr());
  return picked;
}

// Lets the user pick until there is a camera that can be shown, or he has had enough.
int RunPickedDevice(const krviewer::CommandLine& aCommandLine) {
  KrDeviceFinderWnd finder;
  for (;;) {
    const KrDeviceInfo* device = nullptr;
    if (const KrResult picked = PickDevice(finder, device); !picked.IsOK())
      return picked == KrResult::Code::Cancelled ? 0 : 1;
    KrResult failure;
    {
      krviewer::Viewer viewer(*device, aCommandLine);
      const int exitCode = viewer.Run();
      failure = viewer.GetFailure();
      if (failure.IsOK())
        return exitCode;
    }
    if (!krviewer::TellFailure(*device, failure).IsOK())
      return 1;
  }
}

int RunViewer(const krviewer::CommandLine& aCommandLine) {
  if (KrResult installed = KrInstallTransports(
          {.gigEVision = true, .simulation = aCommandLine.simulate, .labFile = aCommandLine.labFile.toStdString()});
      !installed.IsOK()) {
    std::fprintf(stderr, "%s\n", installed.GetDescription().CStr());
    return 1;
  }
  if (aCommandLine.device.isEmpty() && !krviewer::IsWithoutDisplay())
    return RunPickedDevice(aCommandLine);
  KrSystem system;
  const KrDeviceInfo* device = nullptr;
  const KrResult found = SelectDevice(system, aCommandLine, device);
  if (found == KrResult::Code::Cancelled)
    return 0;
  return found.IsOK() ? krviewer::Viewer(*device, aCommandLine).Run() : 1;
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
  if (!commandLine.descriptionFile.isEmpty())
    return PrepareWindows(commandLine) ? krviewer::DescriptionViewer(commandLine).Run() : 1;
  // Before there are windows, whose toolkit may start threads.
  if (KrResult prepared = KrGiveBackDevicesAtEnd(); !prepared.IsOK())
    std::fprintf(stderr, "%s\n", prepared.GetDescription().CStr());
  return PrepareWindows(commandLine) ? RunViewer(commandLine) : 1;
}

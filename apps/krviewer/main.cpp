#include "commandline.h"
#include "descriptionviewer.h"
#include "deviceselection.h"
#include "krdevice/krdeviceend.h"
#include "krgui/krapplication.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"
#include "pictures.h"
#include "plaintext.h"
#include "window/viewer.h"
#include "window/viewericon.h"

#include <QApplication>
#include <QDir>
#include <QStyleFactory>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

constexpr int kNotUnderstood = 2; // The exit code where the command line is wrong.
constexpr std::uint64_t kHeadlessFrames = 100;
const QString kFirstSimulatedCamera = QStringLiteral("sim-mono");

// Without a display there is nobody to close a window: the run is given an end and leaves pictures behind.
void PrepareHeadless(krviewer::CommandLine& aCommandLine) {
  if (aCommandLine.frames == 0 && aCommandLine.seconds == 0 && aCommandLine.descriptionFile.isEmpty())
    aCommandLine.frames = kHeadlessFrames;
  if (aCommandLine.simulate && aCommandLine.labFile.isEmpty() && aCommandLine.devices.isEmpty())
    aCommandLine.devices += kFirstSimulatedCamera;
  if (aCommandLine.screenshotFolder.isEmpty())
    aCommandLine.screenshotFolder = QStringLiteral("pictures");
}

QtMessageHandler sNextHandler = nullptr;

// Without a display the toolkit notes at each window what it cannot do to it, which nobody has asked for.
void DropPlatformNotes(QtMsgType aType, const QMessageLogContext& aContext, const QString& aText) {
  if (!aText.startsWith(QStringLiteral("This plugin does not support ")) && sNextHandler)
    sNextHandler(aType, aContext, aText);
}

// Windows on a display where there is one, else without.
bool PrepareWindows(krviewer::CommandLine& aCommandLine) {
  KrResult result = aCommandLine.headless ? KrResult(KrResult::Code::Cancelled) : KrEnsureApplication();
  if (!result.IsOK()) {
    if (!aCommandLine.headless)
      std::printf("There is no display: running headless.\n");
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    sNextHandler = qInstallMessageHandler(DropPlatformNotes);
    result = KrEnsureApplication();
  }
  if (!result.IsOK())
    std::fprintf(stderr, "%s\n", result.GetDescription().CStr());
  else if (krviewer::IsWithoutDisplay())
    PrepareHeadless(aCommandLine);
  if (result.IsOK())
    krviewer::InstallViewerIcon();
  return result.IsOK();
}

// Which styles there are only the application object knows.
bool SetStyle(const QString& aStyle) {
  if (aStyle.isEmpty() || QApplication::setStyle(aStyle))
    return true;
  std::fprintf(stderr, "There is no style \"%s\". There are: %s.\nTry: krviewer --help\n",
               krapps::MakeField(aStyle.toStdString()).c_str(),
               QStyleFactory::keys().join(QStringLiteral(", ")).toUtf8().constData());
  return false;
}

KrResult InstallTransports(const krviewer::CommandLine& aCommandLine, bool aWantsSimulation) {
  return KrInstallTransports(
      {.gigEVision = true, .simulation = aWantsSimulation, .labFile = aCommandLine.labFile.toStdString()});
}

// A text of several lines, in which the devices' own texts have none.
void PrintLines(const KrString& aText) {
  for (const QString& line : QString::fromUtf8(aText.CStr()).split(QLatin1Char('\n')))
    std::fprintf(stderr, "%s\n", krapps::MakeField(line.toStdString()).c_str());
}

// The device that the command line names, or, for an empty name, the first one.
KrResult SelectDevice(const krviewer::CommandLine& aCommandLine, const QString& aName, krviewer::CameraInfo& aCamera) {
  const auto system = std::make_shared<KrSystem>();
  // So that cameras of a foreign subnet answer too, and a user is told why one cannot be opened.
  system->SetSubnetBroadcastEnabled(false);
  const KrDeviceInfo* device = nullptr;
  const KrResult selected = krapps::SelectDevice(*system, aName.toStdString(), device);
  if (!selected.IsOK() && selected != KrResult::Code::Cancelled) {
    PrintLines(selected.GetDescription());
    if (!aCommandLine.simulate)
      std::fprintf(stderr, "With --simulate there are simulated cameras to try.\n");
  }
  aCamera = krviewer::CameraInfo(system, device);
  return selected;
}

int RunViewer(const krviewer::CommandLine& aCommandLine) {
  if (const KrResult installed = InstallTransports(aCommandLine, aCommandLine.simulate); !installed.IsOK()) {
    std::fprintf(stderr, "%s\n", krapps::MakeField(installed.GetDescription()).c_str());
    return 1;
  }
  // Where somebody looks, cameras are looked for beside the window, which says of each that is missing.
  const bool isWatched = !krviewer::IsWithoutDisplay() && !aCommandLine.IsBatch();
  QStringList names = isWatched ? QStringList() : aCommandLine.devices;
  if (names.isEmpty() && krviewer::IsWithoutDisplay())
    names += QString();
  std::vector<krviewer::CameraInfo> cameras(static_cast<std::size_t>(names.size()));
  for (qsizetype index = 0; index < names.size(); ++index) {
    const KrResult found = SelectDevice(aCommandLine, names[index], cameras[static_cast<std::size_t>(index)]);
    if (!found.IsOK())
      return found == KrResult::Code::Cancelled ? 0 : 1;
  }
  QStringList libraries;
  for (const KrString& library : KrGetTransportLibraries())
    libraries += QString::fromUtf8(library.CStr());
  krviewer::Viewer viewer(aCommandLine, {.settingsFile = krviewer::ViewerSettings::GetUserFile(),
                                         .guideFile = QDir::cleanPath(QApplication::applicationDirPath() +
                                                                      QStringLiteral("/" KRVIEWER_GUIDE)),
                                         .libraries = libraries,
                                         .installSimulation = [&] { return InstallTransports(aCommandLine, true); }});
  viewer.Begin();
  for (const krviewer::CameraInfo& camera : cameras)
    viewer.Open(camera);
  for (const QString& name : isWatched ? aCommandLine.devices : QStringList())
    viewer.Search(name);
  return viewer.Run();
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
    return kNotUnderstood;
  case krviewer::CommandLineStatus::Run:
    break;
  }
  const bool hasCameras = commandLine.descriptionFile.isEmpty();
  // Before there are windows, whose toolkit may start threads.
  if (KrResult prepared = hasCameras ? KrGiveBackDevicesAtEnd() : KrResult(); !prepared.IsOK())
    std::fprintf(stderr, "%s\n", prepared.GetDescription().CStr());
  if (!PrepareWindows(commandLine))
    return 1;
  if (!SetStyle(commandLine.style))
    return kNotUnderstood;
  return hasCameras ? RunViewer(commandLine) : krviewer::DescriptionViewer(commandLine).Run();
}

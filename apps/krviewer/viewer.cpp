#include "viewer.h"

#include "pictures.h"

#include <QApplication>
#include <QScreen>

#include <cinttypes>
#include <cstdio>

namespace krviewer {

namespace {

constexpr QSize kPreferredSize(1000, 700);
constexpr int kLookIntervalMs = 50;

QString ToText(const KrString& aText) {
  return QString::fromUtf8(aText.CStr());
}

QString GetStateText(const AcquisitionProgress& aProgress) {
  switch (aProgress.state) {
  case AcquisitionState::Connecting:
    return QStringLiteral("connecting");
  case AcquisitionState::Lost:
    return QStringLiteral("camera lost, waiting for it to come back");
  default:
    return {};
  }
}

} // namespace

Viewer::Viewer(const KrDeviceInfo& aDevice, const CommandLine& aCommandLine)
    : mDeviceInfo(aDevice), mCommandLine(aCommandLine) {
  connect(&mTimer, &QTimer::timeout, this, &Viewer::LookAgain);
}

Viewer::~Viewer() = default;

void Viewer::PlaceWindow() {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  const QSize size = kPreferredSize.boundedTo(screen.size() * 9 / 10);
  mWindow.SetPosition(screen.x() + (screen.width() - size.width()) / 2,
                      screen.y() + (screen.height() - size.height()) / 2, size.width(), size.height());
}

int Viewer::Run() {
  PlaceWindow();
  UpdateTitle({});
  if (KrResult shown = mWindow.ShowModeless(0); !shown.IsOK()) {
    std::fprintf(stderr, "The window cannot be opened: %s\n", shown.GetDescription().CStr());
    return 1;
  }
  std::printf("camera=%s\n", mDeviceInfo.GetDisplayID().CStr());
  mAcquisition = std::make_unique<Acquisition>(mWindow, mDeviceInfo, mCommandLine.frames);
  mTimer.start(kLookIntervalMs);
  QApplication::exec();
  mAcquisition.reset();
  return mExitCode;
}

void Viewer::UpdateTitle(const AcquisitionProgress& aProgress) {
  const QString state = GetStateText(aProgress);
  const QString title = ToText(mDeviceInfo.GetDisplayID()) + (state.isEmpty() ? state : QStringLiteral(" - ") + state);
  if (title != mTitle) {
    mTitle = title;
    mWindow.SetTitle(title.toStdString());
  }
}

void Viewer::LookAgain() {
  const AcquisitionProgress progress = mAcquisition->GetProgress();
  const bool isClosed = mWindow.GetHandle() == 0;
  const bool isOver = progress.state == AcquisitionState::Finished || progress.state == AcquisitionState::Failed;
  if (isClosed || isOver || mStopSignal.IsRaised())
    return Finish();
  UpdateTitle(progress);
}

void Viewer::Finish() {
  mTimer.stop();
  mAcquisition->Stop();
  const AcquisitionProgress progress = mAcquisition->GetProgress();
  if (progress.state == AcquisitionState::Failed) {
    std::fprintf(stderr, "%s: %s\n", progress.result.GetCodeString().CStr(), progress.result.GetDescription().CStr());
    mExitCode = 1;
    if (progress.figures.GetFrames() == 0)
      mFailure = progress.result;
  }
  if (!mCommandLine.screenshotFolder.isEmpty() && progress.figures.GetFrames() > 0 && !SavePictures())
    mExitCode = 1;
  std::printf("%s\n", krapps::FormatClosingLine(progress.figures, progress.statistics).c_str());
  QApplication::quit();
}

bool Viewer::SavePictures() {
  // What still waits for this window, its last painting among it, is done first.
  KrResult result = mWindow.DoEvents();
  if (result.IsOK())
    result = WritePictures(mWindow, mCommandLine.screenshotFolder);
  if (!result.IsOK()) {
    std::fprintf(stderr, "No pictures were written: %s\n", result.GetDescription().CStr());
    return false;
  }
  std::printf("pictures=%s frame_id=%" PRIu64 "\n", mCommandLine.screenshotFolder.toUtf8().constData(),
              mAcquisition->GetProgress().lastFrameID);
  return true;
}

} // namespace krviewer

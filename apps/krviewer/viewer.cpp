#include "viewer.h"

#include "pictures.h"

#include <QAction>
#include <QApplication>

#include <cinttypes>
#include <cstdio>

namespace krviewer {

namespace {

constexpr QSize kPreferredSize(1200, 750);
constexpr int kDisplayShare = 6; // The browser's is the rest of ten.
constexpr int kBrowserShare = 4;
constexpr int kLookIntervalMs = 50;

QString ToText(const KrString& aText) {
  return QString::fromUtf8(aText.CStr());
}

QString GetStateText(const AcquisitionProgress& aProgress, bool aAreCamerasAsked) {
  switch (aProgress.state) {
  case AcquisitionState::Connecting:
    return QStringLiteral("connecting");
  case AcquisitionState::Lost:
    return QStringLiteral("camera lost, waiting for it to come back");
  default:
    return aAreCamerasAsked ? QStringLiteral("asking the cameras behind its ports") : QString();
  }
}

} // namespace

Viewer::Viewer(const KrDeviceInfo& aDevice, const CommandLine& aCommandLine)
    : mDeviceInfo(aDevice), mCommandLine(aCommandLine),
      mTerminalAction(mMainWindow.AddTool(QStringLiteral("&Serial Terminal"), Qt::CTRL | Qt::Key_T)),
      mBridgeMenu(mMainWindow, mBridges, GetSerialBridgeWords()),
      mPortCreation(mMainWindow.AddTool(QStringLiteral("&Create COM Ports"), {})),
      mCameraBridgeMenu(mMainWindow, mCameraBridges, GetCameraBridgeWords()) {
  mTerminalAction->setEnabled(false); // Until there is a device.
  connect(mTerminalAction, &QAction::triggered, this, &Viewer::ShowTerminal);
  mPortCreation->setCheckable(true);
  connect(mPortCreation, &QAction::toggled, this, [this](bool aIsOn) { mBridges.GetWindow().SetCreatingPorts(aIsOn); });
  connect(&mTimer, &QTimer::timeout, this, &Viewer::LookAgain);
  connect(&mMainWindow, &MainWindow::EndWanted, this, &Viewer::Finish);
}

Viewer::~Viewer() = default;

KrResult Viewer::OpenWindow() {
  UpdateTitle({});
  KrResult result = mMainWindow.Embed(mWindow, kDisplayShare);
  if (result.IsOK())
    result = mMainWindow.Embed(mBrowser.GetWindow(), kBrowserShare);
  if (!result.IsOK())
    return result;
  mMainWindow.SetEndingWindow(mWindow);
  mMainWindow.ShowOnScreen(kPreferredSize);
  mWindow.GetWidget()->setFocus();
  return {};
}

int Viewer::Run() {
  if (KrResult opened = OpenWindow(); !opened.IsOK()) {
    std::fprintf(stderr, "The window cannot be opened: %s\n", opened.GetDescription().CStr());
    return 1;
  }
  std::printf("camera=%s\n", mDeviceInfo.GetDisplayID().CStr());
  mAcquisition =
      std::make_unique<Acquisition>(mWindow, mDeviceInfo, AcquisitionOptions{.frameLimit = mCommandLine.frames});
  mTimer.start(kLookIntervalMs);
  QApplication::exec();
  mAcquisition.reset();
  return mExitCode;
}

void Viewer::UpdateTitle(const AcquisitionProgress& aProgress) {
  const QString state = GetStateText(aProgress, mCameraBridges.IsWorking());
  const QString title = ToText(mDeviceInfo.GetDisplayID()) + (state.isEmpty() ? state : QStringLiteral(" - ") + state);
  if (title != mTitle) {
    mTitle = title;
    mMainWindow.setWindowTitle(title);
  }
}

void Viewer::LookAgain() {
  const AcquisitionProgress progress = mAcquisition->GetProgress();
  const bool isOver = progress.state == AcquisitionState::Finished || progress.state == AcquisitionState::Failed;
  if (isOver || mStopSignal.IsRaised())
    return Finish();
  mAcquisition->LookAgain();
  UpdateTitle(progress);
  TellMissingFeatures(progress);
  mBrowser.Follow(mAcquisition->GetParameters(ParameterBorrower::Browser));
  mTerminalAction->setEnabled(mTerminal.HasDevice());
  mBridges.Follow(mAcquisition->GetDevice(DeviceBorrower::Bridges));
  mBridgeMenu.LookAgain();
  mCameraBridges.Follow(mAcquisition->GetDevice(DeviceBorrower::CameraBridges));
  mCameraBridgeMenu.LookAgain();
  // Last: the terminal may show a message box here, and looks go on while it is open, as they do in the loops of the
  // camera bridges before it.
  mTerminal.Follow(mAcquisition->GetDevice(DeviceBorrower::Terminal));
}

void Viewer::ShowTerminal() {
  const KrResult shown = mTerminal.Show(mMainWindow.winId());
  if (!shown.IsOK())
    std::fprintf(stderr, "The serial terminal cannot be opened: %s\n", shown.GetDescription().CStr());
}

void Viewer::TellMissingFeatures(const AcquisitionProgress& aProgress) {
  if (aProgress.parameters.IsOK() || mHasToldMissing)
    return;
  mHasToldMissing = true;
  std::fprintf(stderr, "The camera's features cannot be shown: %s\n", aProgress.parameters.GetDescription().CStr());
}

void Viewer::Finish() {
  if (mIsOver || !mAcquisition)
    return;
  mIsOver = true;
  mTimer.stop();
  const bool hasFrames = mAcquisition->GetProgress().figures.GetFrames() > 0;
  const bool wantsPictures = !mCommandLine.screenshotFolder.isEmpty() && hasFrames;
  // Before the camera is given back, as the browser is empty then.
  if (wantsPictures && !SaveBrowserPicture())
    mExitCode = 1;
  mBrowser.GiveBack(mAcquisition->GetParameters(ParameterBorrower::Browser));
  mTerminal.GiveBack(mAcquisition->GetDevice(DeviceBorrower::Terminal));
  mTerminal.Close();
  mBridges.GiveBack(mAcquisition->GetDevice(DeviceBorrower::Bridges));
  mBridges.Close();
  mCameraBridges.GiveBack(mAcquisition->GetDevice(DeviceBorrower::CameraBridges));
  mCameraBridges.Close();
  mAcquisition->Stop();
  const AcquisitionProgress progress = mAcquisition->GetProgress();
  if (progress.state == AcquisitionState::Failed) {
    std::fprintf(stderr, "%s: %s\n", progress.result.GetCodeString().CStr(), progress.result.GetDescription().CStr());
    mExitCode = 1;
    if (progress.figures.GetFrames() == 0)
      mFailure = progress.result;
  }
  if (wantsPictures && !SavePictures())
    mExitCode = 1;
  std::printf("%s\n", krapps::FormatClosingLine(progress.figures, progress.statistics).c_str());
  QCoreApplication::exit();
}

bool Viewer::SaveBrowserPicture() {
  const KrResult result = WriteBrowserPicture(mBrowser.GetWindow(), mCommandLine.screenshotFolder);
  if (!result.IsOK())
    std::fprintf(stderr, "No picture of the features was written: %s\n", result.GetDescription().CStr());
  return result.IsOK();
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

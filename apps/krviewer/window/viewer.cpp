#include "window/viewer.h"

#include "acquisition/cameraidentity.h"
#include "help/guidewindow.h"
#include "page/pageending.h"
#include "plaintext.h"
#include "simulationchoice.h"
#include "window/aboutbox.h"
#include "window/showntext.h"

#include <QApplication>
#include <QDir>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

namespace krviewer {

namespace {

constexpr int kLookIntervalMs = 50;

} // namespace

Viewer::Viewer(const CommandLine& aCommandLine, const ViewerHost& aHost)
    : mCommandLine(aCommandLine), mHost(aHost), mSettings(aCommandLine.IsBatch() ? QString() : aHost.settingsFile),
      mRecentCameras(mSettings.GetRecentCameras()), mFinder([this](const CameraInfo& aCamera) { Open(aCamera); }),
      mWanted({.open = [this](const CameraInfo& aCamera) { Open(aCamera); },
               .getBar = [this]() -> MessageBar& { return GetActiveWindow().GetBar(); },
               .clearBars = [this] { ClearBars(); },
               .find = [this] { ShowFinder(); }},
              mRecentCameras) {
  connect(&mTimer, &QTimer::timeout, this, &Viewer::LookAgain);
  connect(&mEndKeys, &EndKeys::QuitWanted, this, &Viewer::Finish);
  mEndTimer.setSingleShot(true);
  connect(&mEndTimer, &QTimer::timeout, this, &Viewer::Finish);
}

Viewer::~Viewer() {
  mWanted.End();
}

QList<MainWindow*> Viewer::GetWindows() const {
  QList<MainWindow*> windows;
  for (const std::unique_ptr<MainWindow>& window : mWindows)
    windows += window.get();
  return windows;
}

void Viewer::Begin() {
  mLoopLevel = thread()->loopLevel();
  MainWindow& window = AddWindow(false);
  window.ShowOnScreen(mSettings.GetWindowLayout());
  if (const QString trouble = mSettings.TakeTrouble(); !trouble.isEmpty()) {
    std::fprintf(stderr, "%s\n", trouble.toUtf8().constData());
    window.GetBar().Say({MessageKind::Warning, trouble});
  }
  mTimer.start(kLookIntervalMs);
}

int Viewer::Run() {
  mLoopLevel = thread()->loopLevel() + 1;
  mIsRunning = true;
  QApplication::exec();
  mIsRunning = false;
  // Whoever ends the loop otherwise ends the viewer, too.
  Finish();
  return mIsCutShort ? mStopSignal.GetExitCode() : mExitCode;
}

MainWindow& Viewer::AddWindow(bool aIsOwn) {
  mWindows.push_back(std::make_unique<MainWindow>(aIsOwn));
  MainWindow& window = *mWindows.back();
  window.SetRecentCameras(mRecentCameras);
  ConnectWindow(window);
  return window;
}

void Viewer::ConnectWindow(MainWindow& aWindow) {
  MainMenus& menus = aWindow.GetMenus();
  FirstPage& first = aWindow.GetFirstPage();
  connect(&menus, &MainMenus::FindWanted, this, [this] { ShowFinder(); });
  connect(&menus, &MainMenus::AddressesWanted, this, [this] { ShowFinder(FinderPurpose::Addresses); });
  connect(&first, &FirstPage::FindWanted, this, [this] { ShowFinder(); });
  connect(&menus, &MainMenus::SimulationWanted, this, &Viewer::OpenSimulated);
  connect(&first, &FirstPage::SimulationWanted, this, &Viewer::OpenSimulated);
  connect(&menus, &MainMenus::CameraWanted, this, &Viewer::Search);
  connect(&first, &FirstPage::CameraWanted, this, &Viewer::Search);
  connect(&menus, &MainMenus::ForgetWanted, this, [this] { SetRecentCameras({}); });
  connect(&menus, &MainMenus::QuitWanted, this, &Viewer::Finish);
  connect(&menus, &MainMenus::GuideWanted, this, [this, &aWindow] { OpenGuide(aWindow); });
  connect(&menus, &MainMenus::AboutWanted, this, [this, &aWindow] { ShowAboutBox(aWindow, mHost.libraries); });
  connect(&aWindow, &MainWindow::PageEndWanted, this, [this](CameraPage* aPage) { EndPage(*aPage); });
  connect(&aWindow, &MainWindow::MoveWanted, this, [this](CameraPage* aPage) { MovePage(*aPage); });
  connect(&aWindow, &MainWindow::EndWanted, this, [this, &aWindow] { CloseWindow(aWindow); });
}

// The window that is looked at, or the first one.
MainWindow& Viewer::GetActiveWindow() const {
  for (const std::unique_ptr<MainWindow>& window : mWindows)
    if (window->isActiveWindow())
      return *window;
  return *mWindows.front();
}

MainWindow* Viewer::FindWindowOf(const CameraPage& aPage) const {
  for (const std::unique_ptr<MainWindow>& window : mWindows)
    if (window->GetPages().contains(&aPage))
      return window.get();
  return nullptr;
}

void Viewer::ShowFinder(FinderPurpose aPurpose) {
  if (mIsOver)
    return;
  MainWindow& window = GetActiveWindow();
  if (const KrResult shown = mFinder.Show(window.winId(), aPurpose); !shown.IsOK())
    window.GetBar().Say({MessageKind::Error, ToText(shown.GetDescription())});
}

void Viewer::OpenSimulated() {
  KrResult found = mHost.installSimulation ? mHost.installSimulation() : KrResult();
  // Shown once, it is not free any more, but still the one that is wanted.
  if (found.IsOK() && mSimulatedCamera.IsEmpty())
    found = krapps::FindSimulatedCamera(mSimulatedCamera);
  if (found.IsOK())
    Search(ToText(mSimulatedCamera));
  else
    GetActiveWindow().GetBar().Say({MessageKind::Error, ToText(found.GetDescription())});
}

void Viewer::OpenGuide(MainWindow& aWindow) {
  if (!ShowGuide(aWindow, mHost.guideFile))
    aWindow.GetBar().Say({MessageKind::Warning, QStringLiteral("The guide cannot be read: there is no %1. Install "
                                                               "krgui again.")
                                                    .arg(QDir::toNativeSeparators(mHost.guideFile))});
}

void Viewer::ClearBars() {
  for (MainWindow* const window : GetWindows())
    window->GetBar().Clear();
}

void Viewer::Open(const CameraInfo& aCamera) {
  if (mIsOver)
    return;
  for (const std::unique_ptr<CameraPage>& page : mPages)
    if (IsSameCamera(page->GetCamera(), *aCamera))
      return ShowAgain(*page, aCamera);
  if (mEndedPages.IsBeingGivenBack(*aCamera)) {
    if (std::ranges::none_of(mReturning, [&](const CameraInfo& aOther) { return IsSameCamera(*aOther, *aCamera); }))
      mReturning.push_back(aCamera);
    return GetActiveWindow().GetBar().Say(
        {MessageKind::Information, QStringLiteral("%1 was closed a moment ago and is being given back. It is shown "
                                                  "as soon as that is done.")
                                       .arg(ToText(aCamera->GetDisplayID()))});
  }
  // Pictures say how fast the frames were; on the screen the status bar does.
  const bool hasText = mCommandLine.IsBatch();
  const PageOptions options{.acquisition = {.frameLimit = mCommandLine.frames,
                                            .hasTextOverlay = hasText,
                                            .hostSettings = mSettings.GetHostSettings(ToText(aCamera->GetUniqueID()))},
                            .isPictureKept = !mCommandLine.screenshotFolder.isEmpty(),
                            .number = ++mOpened};
  mPages.push_back(std::make_unique<CameraPage>(aCamera, options));
  CameraPage& page = *mPages.back();
  ConnectPage(page);
  MainWindow& window = GetActiveWindow();
  window.GetBar().Clear();
  if (const KrResult opened = page.Open(); !opened.IsOK())
    window.GetBar().Say({MessageKind::Error, ToText(opened.GetDescription())});
  page.RestoreState(mSettings.GetPageState(ToText(aCamera->GetUniqueID())));
  window.AddPage(page);
  RecentCameras recent = mRecentCameras;
  recent.Add({ToText(aCamera->GetUniqueID()), ToText(aCamera->GetDisplayID())});
  SetRecentCameras(recent);
}

void Viewer::ConnectPage(CameraPage& aPage) {
  connect(&aPage, &CameraPage::Opened, this,
          [&aPage] { std::printf("camera=%s\n", krapps::MakeField(aPage.GetCamera().GetDisplayID()).c_str()); });
  connect(&aPage, &CameraPage::FindWanted, this, [this] { ShowFinder(); });
  connect(&aPage, &CameraPage::AddressWanted, this, [this] { ShowFinder(FinderPurpose::Addresses); });
  connect(&aPage, &CameraPage::Noticed, this, [this, &aPage](const QString& aText) {
    if (MainWindow* const shown = FindWindowOf(aPage))
      shown->Notice(aText);
  });
  connect(&aPage, &CameraPage::CameraChanged, this,
          [this, &aPage](const QString& aFormerID) { NoteChange(aPage, aFormerID); });
  connect(&aPage, &CameraPage::RecordingFailed, this, [this, &aPage](const RecordingProgress& aRecording) {
    TellFailedRecording(aPage, aRecording);
    mExitCode = 1;
  });
  connect(&aPage, &CameraPage::AcquisitionEnded, this, [this, &aPage] { NoteEnd(aPage); });
}

// Who asks for a camera that is not connected wants to see it, not only its tab.
void Viewer::ShowAgain(CameraPage& aPage, const CameraInfo& aCamera) {
  FindWindowOf(aPage)->BringForward(aPage);
  if (!aPage.CanConnect())
    return;
  aPage.SetCamera(aCamera);
  aPage.Reconnect();
}

void Viewer::OpenReturned() {
  for (const CameraInfo& camera : std::exchange(mReturning, {}))
    if (mEndedPages.IsBeingGivenBack(*camera))
      mReturning.push_back(camera);
    else
      Open(camera);
}

void Viewer::SetRecentCameras(const RecentCameras& aCameras) {
  mRecentCameras = aCameras;
  mSettings.SetRecentCameras(aCameras);
  for (MainWindow* const window : GetWindows())
    window->SetRecentCameras(aCameras);
}

void Viewer::NoteChange(const CameraPage& aPage, const QString& aFormerID) {
  RecentCameras recent = mRecentCameras;
  recent.Replace(aFormerID, {ToText(aPage.GetCamera().GetUniqueID()), ToText(aPage.GetCamera().GetDisplayID())});
  SetRecentCameras(recent);
}

void Viewer::MovePage(CameraPage& aPage) {
  MainWindow* const from = FindWindowOf(aPage);
  if (!from || mIsOver)
    return;
  const bool isBack = from->IsOwn();
  const QList<MainWindow*> windows = GetWindows();
  const auto target = std::ranges::find_if(windows, [](const MainWindow* aWindow) { return !aWindow->IsOwn(); });
  MainWindow& to = isBack && target != windows.end() ? **target : AddWindow(!isBack);
  from->RemovePage(aPage);
  if (!to.isVisible())
    to.ShowOnScreen({});
  to.AddPage(aPage);
  aPage.show();
  to.activateWindow();
  if (isBack && from->GetPages().isEmpty())
    from->close();
}

void Viewer::EndPage(CameraPage& aPage) {
  MainWindow* const window = FindWindowOf(aPage);
  if (!window)
    return;
  KeepState(aPage);
  Discard(aPage);
  if (window->IsOwn() && window->GetPages().isEmpty())
    window->close();
}

void Viewer::CloseWindow(MainWindow& aWindow) {
  const auto found = std::ranges::find(mWindows, &aWindow, &std::unique_ptr<MainWindow>::get);
  if (found == mWindows.end())
    return;
  if (mWindows.size() == 1)
    return Finish();
  KeepLayouts();
  for (CameraPage* const page : aWindow.GetPages())
    Discard(*page);
  const auto still = std::ranges::find(mWindows, &aWindow, &std::unique_ptr<MainWindow>::get);
  if (still == mWindows.end())
    return;
  mEndedWindows.push_back(std::move(*still));
  mWindows.erase(still);
}

void Viewer::NoteEnd(CameraPage& aPage) {
  const AcquisitionProgress& progress = aPage.GetProgress();
  if (progress.state == AcquisitionState::Failed) {
    std::fprintf(stderr, "%s: %s\n", progress.result.GetCodeString().CStr(),
                 krapps::MakeField(progress.result.GetDescription()).c_str());
    if (mCommandLine.IsBatch())
      mExitCode = 1;
  }
  const bool haveAllEnded =
      std::ranges::all_of(mPages, [](const auto& aOther) { return aOther->HasAcquisitionEnded(); });
  if (mCommandLine.IsBatch() && haveAllEnded)
    Finish();
}

// A user sees that a camera is awaited; whoever started a run that ends by itself is told that its last part is
// missing.
void Viewer::NoteLost() {
  for (const std::unique_ptr<CameraPage>& page : mPages) {
    const AcquisitionProgress& progress = page->GetProgress();
    if (!mCommandLine.IsBatch() || progress.state != AcquisitionState::Lost)
      continue;
    std::fprintf(stderr, "%s: The camera was lost and is not streamed at the end: %s\n",
                 progress.result.GetCodeString().CStr(), krapps::MakeField(progress.result.GetDescription()).c_str());
    mExitCode = 1;
  }
}

// What the user wants to see begins when the cameras are there, however long that takes.
void Viewer::CountSeconds() {
  const auto isConnecting = [](const std::unique_ptr<CameraPage>& aPage) {
    return aPage->GetProgress().state == AcquisitionState::Connecting;
  };
  if (mCommandLine.seconds != 0 && !mEndTimer.isActive() && std::ranges::none_of(mPages, isConnecting))
    mEndTimer.start(std::chrono::seconds(mCommandLine.seconds));
}

void Viewer::LookAgain() {
  if (mStopSignal.IsRaised()) {
    mIsCutShort = mCommandLine.HasEnd();
    return Finish();
  }
  CountSeconds();
  mFinder.Follow();
  mWanted.Follow();
  for (MainWindow* const window : GetWindows())
    window->LookAgain();
  NoteEndedPages();
  if (const QString trouble = TakeWriteTrouble(); !trouble.isEmpty())
    GetActiveWindow().GetBar().Say({MessageKind::Warning, trouble});
  if (const QString trouble = mEndedPages.TellWritten(); !trouble.isEmpty()) {
    GetActiveWindow().GetBar().Say({MessageKind::Error, trouble});
    mExitCode = 1;
  }
  OpenReturned();
  DeleteEnded();
}

void Viewer::KeepState(CameraPage& aPage) {
  mSettings.SetPageState(aPage.SaveState(), ToText(aPage.GetCamera().GetUniqueID()));
}

void Viewer::KeepLayouts() {
  // Windows of their own lie beside the one that the next run begins with.
  const auto first =
      std::ranges::find_if(mWindows, [](const std::unique_ptr<MainWindow>& aWindow) { return !aWindow->IsOwn(); });
  if (first != mWindows.end())
    mSettings.SetWindowLayout((*first)->SaveLayout());
  CameraPage* const current = GetActiveWindow().GetCurrentPage();
  for (const std::unique_ptr<CameraPage>& page : mPages)
    if (page.get() != current)
      KeepState(*page);
  // Last, as new ones begin as this one is.
  if (current)
    KeepState(*current);
}

} // namespace krviewer

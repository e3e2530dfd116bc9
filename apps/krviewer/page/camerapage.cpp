#include "page/camerapage.h"

#include "krbase/krsteadytime.h"
#include "page/keptpage.h"
#include "panels/histogrampanel.h"
#include "panels/lineprofilepanel.h"
#include "plaintext.h"
#include "recording/recordingtexts.h"
#include "window/failurebox.h"
#include "window/showntext.h"

#include <QMainWindow>
#include <QResizeEvent>
#include <QVBoxLayout>

#include <chrono>
#include <cstdio>
#include <optional>
#include <thread>
#include <utility>

namespace krviewer {

namespace {

constexpr int kLookIntervalMs = 50;
constexpr std::chrono::milliseconds kRecordingLook{10};
/// The part of the page that the camera's features take at first.
constexpr double kFeaturesShare = 0.4;

bool IsOver(AcquisitionState aState) {
  return aState == AcquisitionState::Finished || aState == AcquisitionState::Failed;
}

CameraLink GetLink(const KrDeviceInfo& aCamera) {
  switch (aCamera.GetType()) {
  case KrDeviceInfoType::GEV:
    return CameraLink::GigEVision;
  case KrDeviceInfoType::U3V:
    return CameraLink::USB3Vision;
  default:
    return CameraLink::Other;
  }
}

AcquisitionOptions KeepNewest(AcquisitionOptions aOptions, NewestFrame& aNewest) {
  aOptions.newestFrame = &aNewest;
  return aOptions;
}

} // namespace

CameraPage::CameraPage(CameraInfo aCamera, const PageOptions& aOptions)
    : mCamera(std::move(aCamera)), mOptions(aOptions),
      mSaver(mNewestFrame, ToText(mCamera->GetDisplayID()), mCamera->GetUniqueID()), mBar(new MessageBar(this)),
      mArea(new QMainWindow(this)), mPanels(*mArea), mFeatures(new ParameterPanel), mStreamFeatures(new ParameterPanel),
      mTransportFeatures(new ParameterPanel), mIntervals(new IntervalPanel(mFrames.GetSinks())),
      mRecordPanel(new RecordPanel(mRecorder, ToText(mCamera->GetDisplayID()), mCamera->GetUniqueID())), mTools(*this),
      mSettings(
          *this, [this](DeviceWork aWork) { Do(std::move(aWork)); },
          [this](const QString& aWhat) { AnnounceSettings(aWhat); },
          [this](const QString& aWhat, const KrStringList& aProblems) { TellSettings(aWhat, aProblems); }),
      mRegion(mDisplay, [this](DeviceWork aWork) { Do(std::move(aWork)); }),
      mConnection(mDisplay, mCamera, KeepNewest(aOptions.acquisition, mNewestFrame), mFrames,
                  [this](Acquisition& aAcquisition) { GiveBack(aAcquisition); }) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(mBar);
  layout->addWidget(&mRegion.GetBar());
  layout->addWidget(mArea, 1);
  mArea->setWindowFlags(Qt::Widget);
  AddPanels();
  connect(&mRegion, &RegionEditor::Applied, this, &CameraPage::Noticed);
  connect(&mSaver, &FrameSaver::Saved, this, &CameraPage::Noticed);
  [[maybe_unused]] const KrResult heard = mFrames.GetSinks().Register(&mRecorder); // Once.
  connect(&mTimer, &QTimer::timeout, this, [this] { Call([](CameraPage& aPage) { aPage.LookAgain(); }); });
}

CameraPage::~CameraPage() {
  End();
  mIsCameraLeft = false; // What it still uses ends here.
  AwaitEnd();
  // The panels end before what they watch, as that is no child of theirs.
  delete mArea;
}

void CameraPage::AddPanels() {
  mPanels.Add(Panel::Features, QStringLiteral("features"), QStringLiteral("Camera Features"), mFeatures,
              Qt::RightDockWidgetArea);
  mPanels.Add(Panel::StreamFeatures, QStringLiteral("streamParameters"), QStringLiteral("Stream Parameters"),
              mStreamFeatures, Qt::RightDockWidgetArea);
  mPanels.Add(Panel::TransportFeatures, QStringLiteral("connectionParameters"), QStringLiteral("Connection Parameters"),
              mTransportFeatures, Qt::RightDockWidgetArea);
  mPanels.Add(Panel::Histogram, QStringLiteral("histogram"), QStringLiteral("Histogram"),
              new HistogramPanel(mFrames.GetSinks()), Qt::BottomDockWidgetArea);
  mPanels.Add(Panel::LineProfile, QStringLiteral("lineProfile"), QStringLiteral("Line Profile"),
              new LineProfilePanel(mFrames.GetSinks(), mDisplay), Qt::BottomDockWidgetArea);
  mPanels.Add(Panel::Intervals, QStringLiteral("intervals"), QStringLiteral("Frame Intervals"), mIntervals,
              Qt::BottomDockWidgetArea);
  mPanels.Add(Panel::Recording, QStringLiteral("recording"), QStringLiteral("Recording"), mRecordPanel,
              Qt::RightDockWidgetArea);
  mPanels.Show(Panel::Features, true);
}

KrResult CameraPage::Open() {
  auto* const place = new QWidget;
  auto* const layout = new QVBoxLayout(place);
  layout->setContentsMargins(0, 0, 0, 0);
  mArea->setCentralWidget(place);
  if (KrResult created = mDisplay.CreateIn(place); !created.IsOK())
    return created;
  layout->addWidget(mDisplay.GetWidget());
  setFocusProxy(mDisplay.GetWidget());
  Connect();
  mTimer.start(kLookIntervalMs);
  return {};
}

QByteArray CameraPage::SaveState() {
  const KeptPage page = {
      .layout = mPanels.SaveLayout(),
      .recording = mRecordPanel->SaveState(),
      .saving = mSaver.SaveState(),
      .options = {{mFeatures->SaveOptions(), mStreamFeatures->SaveOptions(), mTransportFeatures->SaveOptions()}},
      .isCreatingPorts = mTools.IsCreatingPorts()};
  return page.Save();
}

void CameraPage::RestoreState(const QByteArray& aState) {
  const std::optional<KeptPage> page = KeptPage::Read(aState);
  if (!page)
    return;
  mTools.SetCreatingPorts(page->isCreatingPorts);
  mIsRestored = mPanels.RestoreLayout(page->layout);
  mRecordPanel->RestoreState(page->recording);
  mSaver.RestoreState(page->saving);
  mFeatures->RestoreOptions(page->options[0]);
  mStreamFeatures->RestoreOptions(page->options[1]);
  mTransportFeatures->RestoreOptions(page->options[2]);
}

void CameraPage::SetCamera(const CameraInfo& aCamera) {
  const CameraInfo former = std::exchange(mCamera, aCamera);
  mConnection.SetCamera(mCamera);
  const QString name = ToText(mCamera->GetDisplayID());
  if (former->GetUniqueID() == mCamera->GetUniqueID() && name == ToText(former->GetDisplayID()))
    return;
  mSaver.SetCamera(name, mCamera->GetUniqueID());
  mRecordPanel->SetCamera(name, mCamera->GetUniqueID());
  emit CameraChanged(ToText(former->GetUniqueID()));
}

void CameraPage::Connect() {
  mHasToldEnd = false;
  mHasFollowed = false;
  mIsConnectWanted = false;
  mConnection.Connect();
  WantPicture();
  TellState();
}

// Nobody looks at the picture of a page behind others.
void CameraPage::WantPicture() {
  if (Acquisition* const acquisition = mConnection.GetActive())
    acquisition->SetPictureWanted(mOptions.isPictureKept || isVisible());
}

void CameraPage::GiveBack(Acquisition& aAcquisition) {
  mRegion.Cancel();
  // What was said of its work is over with it.
  if (mSettings.IsWorking()) {
    mBar->Clear();
    mTold.clear();
  }
  mSettings.End();
  mFeatures->GiveBack(aAcquisition.GetParameters(ParameterBorrower::Browser));
  mStreamFeatures->GiveBack(aAcquisition.GetParameters(HostSide::Stream));
  mTransportFeatures->GiveBack(aAcquisition.GetParameters(HostSide::Connection));
  mTools.GiveBack(aAcquisition);
}

void CameraPage::End() {
  TellRecordings();
  if (!std::exchange(mIsEnded, true))
    mHasEndedRecording = mRecorder.HasUntaken();
  mIsConnectWanted = false;
  mRecorder.Stop();
  mSaver.End();
  mTools.End();
  Call([](CameraPage& aPage) { aPage.mConnection.Leave(); });
}

bool CameraPage::FollowEnd() {
  mConnection.CompleteLeave();
  mConnection.LookAgain();
  mSaver.Follow();
  mTools.FollowFiles();
  return HasEnded() && !IsWriting();
}

void CameraPage::AwaitEnd() {
  if (!mIsCameraLeft)
    mConnection.AwaitAway();
  mSaver.AwaitWritten();
  mTools.AwaitWritten();
  // What was recorded is worth the time that the disk needs for it.
  while (mRecorder.IsBusy())
    std::this_thread::sleep_for(kRecordingLook);
}

std::optional<std::uint64_t> CameraPage::GetWritten() const {
  if (!IsWriting())
    return std::nullopt;
  const RecordingCounts counts = mRecorder.GetProgress().counts;
  return counts.written + counts.failed + counts.abandoned + mRecorder.GetBytesDone() + mSaver.GetDone();
}

void CameraPage::LeaveFiles() {
  mRecorder.Leave();
  mSaver.Leave();
  mTools.LeaveFiles();
}

void CameraPage::StartOrStopRecording() {
  if (!IsConnected() && !IsRecording())
    return TellNothingToRecord();
  mPanels.Show(Panel::Recording, true);
  mRecordPanel->StartOrStop();
}

void CameraPage::TellNothingToRecord() {
  const bool isLost = GetProgress().state == AcquisitionState::Lost;
  const KrString why = isLost ? "the camera is lost. " : "the camera is not connected. ";
  ShowFailure(
      this, tr("Record"),
      {KrResult::Code::ConnectionLost, "Nothing can be recorded, as " + why + GetProgress().result.GetDescription()});
}

// What comes of the one that the page's end stops is told when all is written.
void CameraPage::TellRecordings() {
  if (mIsEnded)
    return;
  for (const RecordingProgress& recording : mRecorder.TakeEnded())
    if (HasFailed(recording))
      emit RecordingFailed(recording);
}

void CameraPage::Disconnect() {
  Call([](CameraPage& aPage) { aPage.mConnection.Leave(); });
  TellState();
}

void CameraPage::Reconnect() {
  mIsConnectWanted = !mIsEnded;
  Disconnect();
}

void CameraPage::Call(const std::function<void(CameraPage&)>& aCall) {
  ++mCalls;
  aCall(*this);
  --mCalls;
}

bool CameraPage::IsConnected() const {
  const AcquisitionState state = GetProgress().state;
  return mConnection.GetActive() && (state == AcquisitionState::Connected || state == AcquisitionState::Streaming);
}

bool CameraPage::IsInTrouble() const {
  const AcquisitionState state = GetProgress().state;
  return mConnection.GetActive() && (state == AcquisitionState::Lost || state == AcquisitionState::Failed);
}

bool CameraPage::CanConnect() const {
  return mConnection.IsAway() || (mConnection.GetActive() && GetProgress().state == AcquisitionState::Failed);
}

void CameraPage::Start() {
  if (Acquisition* const acquisition = mConnection.GetActive())
    acquisition->Start([this](const KrResult& aResult) { TellRefusal(QStringLiteral("start"), aResult); });
}

void CameraPage::StartSingle() {
  if (Acquisition* const acquisition = mConnection.GetActive())
    acquisition->StartSingle([this](const KrResult& aResult) { TellRefusal(QStringLiteral("start"), aResult); });
}

void CameraPage::StopStreaming() {
  if (Acquisition* const acquisition = mConnection.GetActive())
    acquisition->StopStreaming();
}

void CameraPage::Restart() {
  StopStreaming();
  Start();
}

void CameraPage::Trigger() {
  if (Acquisition* const acquisition = mConnection.GetActive())
    acquisition->Trigger([this](const KrResult& aResult) { TellRefusal(QStringLiteral("trigger"), aResult); });
}

void CameraPage::Do(DeviceWork aWork) {
  if (Acquisition* const acquisition = mConnection.GetActive())
    acquisition->Do(std::move(aWork));
  else if (aWork.then)
    aWork.then({KrResult::Code::ConnectionLost,
                "Asking " + mCamera->GetDisplayID() + ": it is not connected; connect it first."});
}

void CameraPage::TellRefusal(const QString& aWhat, const KrResult& aResult) {
  if (!aResult.IsOK())
    mBar->Say({MessageKind::Warning,
               QStringLiteral("The camera did not %1: %2").arg(aWhat, ToMessage(ToText(aResult.GetDescription())))});
}

void CameraPage::AnnounceSettings(const QString& aWhat) {
  mBar->Say({.text = aWhat,
             .buttons = {{QStringLiteral("Canc&el"), [this] { mSettings.Cancel(); }}},
             .canBeDismissed = false});
}

void CameraPage::TellSettings(const QString& aWhat, const KrStringList& aProblems) {
  for (const KrString& problem : aProblems)
    std::fprintf(stderr, "%s\n", ToLine(ToText(problem), 1000).toUtf8().constData());
  const QString lines = aProblems.IsEmpty() ? QString() : QLatin1Char('\n') + JoinLines(aProblems);
  mBar->Say({aProblems.IsEmpty() ? MessageKind::Information : MessageKind::Warning, aWhat + lines});
}

void CameraPage::LookAgain() {
  mConnection.LookAgain();
  if (mConnection.IsAway() && mIsConnectWanted)
    Connect();
  if (const CameraInfo connected = GetProgress().camera; connected && connected != mConnected) {
    mConnected = connected;
    SetCamera(connected);
  }
  LookForTrouble();
  TellState();
  TellRecordings();
  mRecordPanel->SetCameraThere(IsConnected());
  if (GetProgress().wasOpened && !std::exchange(mHasToldOpened, true))
    emit Opened();
  // Not before the look after the one that has the features shown: frames that all come at once leave them no other.
  if (mConnection.GetActive() && mHasFollowed && IsOver(GetProgress().state) && !std::exchange(mHasToldEnd, true))
    emit AcquisitionEnded();
  if (Acquisition* const acquisition = mConnection.GetActive())
    Follow(*acquisition);
  else
    mTools.LookAgain();
}

void CameraPage::Follow(Acquisition& aAcquisition) {
  mHasFollowed = true;
  mFeatures->Follow(aAcquisition.GetParameters(ParameterBorrower::Browser), mPanels.IsShown(Panel::Features));
  mStreamFeatures->Follow(aAcquisition.GetParameters(HostSide::Stream), mPanels.IsShown(Panel::StreamFeatures));
  mTransportFeatures->Follow(aAcquisition.GetParameters(HostSide::Connection),
                             mPanels.IsShown(Panel::TransportFeatures));
  const KrResult& parameters = GetProgress().parameters;
  if (!parameters.IsOK() && !std::exchange(mHasToldMissing, true))
    std::fprintf(stderr, "The camera's features cannot be shown: %s\n",
                 krapps::MakeField(parameters.GetDescription()).c_str());
  mIntervals->TakeIn(GetProgress().statistics);
  mIntervals->SetLost(GetProgress().state == AcquisitionState::Lost);
  // Last, as it may run loops.
  mTools.Follow(aAcquisition);
}

ShownFigures CameraPage::GetFigures() const {
  const AcquisitionProgress& progress = GetProgress();
  return {.framesPerSecond = progress.framesPerSecond,
          .megabytesPerSecond = progress.megabytesPerSecond,
          .frames = progress.figures.GetFrames(),
          .statistics = progress.statistics,
          .temperatureC = progress.temperatureC,
          .pixel = mDisplay.GetCursorPixel()};
}

PageState CameraPage::GetState() const {
  return {.name = ToText(mCamera->GetDisplayID()),
          .progress = GetProgress(),
          .advice = mAdvice,
          .isLeaving = mConnection.IsLeaving(),
          .isAway = mConnection.IsAway(),
          .isWorking = mTools.IsWorking()};
}

void CameraPage::LookForTrouble() {
  const CameraLink link = GetLink(*mCamera);
  mAdvice = mAdviser.Look({.progress = GetProgress(),
                           .nowMs = KrGetSteadyMs(),
                           .link = link,
                           .isForeignSubnet = link == CameraLink::GigEVision && !mCamera->IsConfigurationValid(),
                           .droppedByDisplay = mDisplay.GetStatistics().dropped,
                           .getExpected = [this] {
                             const Acquisition* const acquisition = mConnection.GetActive();
                             return acquisition ? ExpectFrames(acquisition->GetSettings()) : ExpectedFrames();
                           }});
}

// Of each state once: what the user has dismissed stays away, and what else was said stays as long as the state does.
void CameraPage::TellState() {
  if (mSettings.IsWorking())
    return mBar->Reword(mSettings.GetProgressText());
  const BarMessage message = MakePageMessage(GetState(), {.connect = [this] { Reconnect(); },
                                                          .disconnect = [this] { Disconnect(); },
                                                          .start = [this] { Start(); },
                                                          .find = [this] { emit FindWanted(); },
                                                          .restart = [this] { Restart(); },
                                                          .trigger = [this] { Trigger(); },
                                                          .setAddress = [this] { emit AddressWanted(); }});
  if (mTold == message.text)
    return;
  mTold = message.text;
  mBar->Say(message);
}

void CameraPage::showEvent(QShowEvent* aEvent) {
  QWidget::showEvent(aEvent);
  mPanels.SetPageShown(true);
  QMetaObject::invokeMethod(this, &CameraPage::ShareOut, Qt::QueuedConnection);
  WantPicture();
}

void CameraPage::hideEvent(QHideEvent* aEvent) {
  QWidget::hideEvent(aEvent);
  mPanels.SetPageShown(false);
  WantPicture();
}

void CameraPage::resizeEvent(QResizeEvent* aEvent) {
  QWidget::resizeEvent(aEvent);
  ShareOut();
}

// Only a page that has its size can share it out.
void CameraPage::ShareOut() {
  if (!isVisible())
    return;
  if (std::exchange(mIsSharedOut, true))
    mPanels.FitAgain();
  else if (mIsRestored)
    mPanels.FitRestored();
  else
    mPanels.SetWidth(Panel::Features, static_cast<int>(width() * kFeaturesShare));
}

} // namespace krviewer

#include "camerapage.h"

#include "showntext.h"

#include <QMainWindow>
#include <QVBoxLayout>

#include <cstdio>
#include <utility>

namespace krviewer {

namespace {

constexpr int kLookIntervalMs = 50;
/// The part of the page that the camera's features take at first.
constexpr double kFeaturesShare = 0.4;

QString GetStateText(const AcquisitionProgress& aProgress) {
  switch (aProgress.state) {
  case AcquisitionState::Connecting:
    return QStringLiteral("connecting");
  case AcquisitionState::Connected:
    return QStringLiteral("stopped");
  case AcquisitionState::Lost:
    return QStringLiteral("camera lost, waiting for it to come back");
  case AcquisitionState::Failed:
    return QStringLiteral("not connected");
  default:
    return {};
  }
}

} // namespace

CameraPage::CameraPage(CameraInfo aCamera, const PageOptions& aOptions)
    : mCamera(std::move(aCamera)), mOptions(aOptions), mBar(new MessageBar(this)), mArea(new QMainWindow(this)),
      mPanels(*mArea), mFeatures(new ParameterPanel), mTools(*this) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(mBar);
  layout->addWidget(mArea, 1);
  mArea->setWindowFlags(Qt::Widget);
  mPanels.Add(Panel::Features, QStringLiteral("features"), QStringLiteral("Camera Features"), mFeatures,
              Qt::RightDockWidgetArea);
  mPanels.Show(Panel::Features, true);
  connect(&mTimer, &QTimer::timeout, this, [this] { Call([](CameraPage& aPage) { aPage.LookAgain(); }); });
}

CameraPage::~CameraPage() {
  End();
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
  return {};
}

void CameraPage::RestoreLayout(const QByteArray& aLayout) {
  mHasWidths = mPanels.RestoreLayout(aLayout);
}

void CameraPage::Connect() {
  mProgress = {};
  mHasToldEnd = false;
  mIsDisconnected = false;
  mAcquisition = std::make_unique<Acquisition>(mDisplay, *mCamera, mOptions.acquisition);
  WantPicture();
  [[maybe_unused]] const KrResult heard = mAcquisition->GetFrames().Register(&mFrames); // A new one of none.
  mTimer.start(kLookIntervalMs);
  TellState();
}

// Nobody looks at the picture of a page behind others.
void CameraPage::WantPicture() {
  if (mAcquisition)
    mAcquisition->SetPictureWanted(mOptions.isPictureKept || isVisible());
}

// Looks go on in loops that run here; the page is not connected any more for them.
void CameraPage::GiveBack() {
  mTimer.stop();
  mFeatures->GiveBack(mAcquisition->GetParameters(ParameterBorrower::Browser));
  mTools.GiveBack(*mAcquisition);
  mAcquisition->Stop();
  mProgress = mAcquisition->GetProgress();
}

void CameraPage::End() {
  if (!mAcquisition || std::exchange(mIsEnded, true))
    return;
  if (!mIsDisconnected)
    Call([](CameraPage& aPage) { aPage.GiveBack(); });
}

void CameraPage::Disconnect() {
  if (!IsAlive())
    return;
  mIsDisconnected = true;
  Call([](CameraPage& aPage) { aPage.GiveBack(); });
  TellState();
}

void CameraPage::Reconnect() {
  if (!mAcquisition || mIsEnded)
    return;
  if (!mIsDisconnected)
    Call([](CameraPage& aPage) { aPage.GiveBack(); });
  if (!mIsEnded)
    Connect();
}

void CameraPage::Call(const std::function<void(CameraPage&)>& aCall) {
  ++mCalls;
  aCall(*this);
  --mCalls;
}

QString CameraPage::GetTitle() const {
  QString state = GetStateText(mProgress);
  if (mIsDisconnected)
    state = QStringLiteral("disconnected");
  else if (state.isEmpty() && mTools.IsWorking())
    state = QStringLiteral("asking the cameras behind its ports");
  return ToText(mCamera->GetDisplayID()) + (state.isEmpty() ? state : QStringLiteral(" - ") + state);
}

bool CameraPage::IsConnected() const {
  return IsAlive() && (mProgress.state == AcquisitionState::Connected || IsStreaming());
}

void CameraPage::Start() {
  if (IsAlive())
    mAcquisition->Start([this](const KrResult& aResult) { TellRefusal(QStringLiteral("start"), aResult); });
}

void CameraPage::StartSingle() {
  if (IsAlive())
    mAcquisition->StartSingle([this](const KrResult& aResult) { TellRefusal(QStringLiteral("start"), aResult); });
}

void CameraPage::StopStreaming() {
  if (IsAlive())
    mAcquisition->StopStreaming();
}

void CameraPage::Trigger() {
  if (IsAlive())
    mAcquisition->Trigger([this](const KrResult& aResult) { TellRefusal(QStringLiteral("trigger"), aResult); });
}

void CameraPage::TellRefusal(const QString& aWhat, const KrResult& aResult) {
  if (!aResult.IsOK() && IsAlive())
    mBar->Say({.kind = MessageKind::Warning,
               .text = QStringLiteral("The camera did not %1: %2").arg(aWhat, ToText(aResult.GetDescription()))});
}

void CameraPage::LookAgain() {
  if (!IsAlive())
    return;
  mAcquisition->LookAgain();
  mProgress = mAcquisition->GetProgress();
  TellState();
  const bool isOver = mProgress.state == AcquisitionState::Finished || mProgress.state == AcquisitionState::Failed;
  if (isOver && !std::exchange(mHasToldEnd, true))
    emit AcquisitionEnded();
  if (IsAlive())
    FollowLoans();
}

void CameraPage::FollowLoans() {
  mFeatures->Follow(mAcquisition->GetParameters(ParameterBorrower::Browser), mPanels.IsShown(Panel::Features));
  if (!mProgress.parameters.IsOK() && !std::exchange(mHasToldMissing, true)) {
    const KrString why = mProgress.parameters.GetDescription();
    std::fprintf(stderr, "The camera's features cannot be shown: %s\n", why.CStr());
    mBar->Say({.kind = MessageKind::Warning,
               .text = QStringLiteral("The camera's features cannot be shown: %1").arg(ToText(why))});
  }
  // Last, as it may run loops.
  mTools.Follow(*mAcquisition);
}

// Of each state once: what the user has dismissed stays away, and what else was said stays as long as the state does.
void CameraPage::TellState() {
  const QString name = ToText(mCamera->GetDisplayID());
  const QString reason = ToText(mProgress.result.GetDescription());
  const BarMessage::Button find{QStringLiteral("&Find a Camera…"), [this] { emit FindWanted(); }};
  const auto connectAgain = [this] { Reconnect(); };
  BarMessage message;
  if (mIsDisconnected)
    message = {MessageKind::Information,
               QStringLiteral("%1 is disconnected: others may use it now.").arg(name),
               {{QStringLiteral("&Connect"), connectAgain}}};
  else if (mProgress.state == AcquisitionState::Lost)
    message = {MessageKind::Warning,
               QStringLiteral("The camera is lost; it is shown again as soon as it is back.\n%1").arg(reason),
               {{QStringLiteral("&Disconnect"), [this] { Disconnect(); }}}};
  else if (mProgress.state == AcquisitionState::Failed)
    message = {MessageKind::Error,
               QStringLiteral("%1 cannot be shown.\n%2").arg(name, reason),
               {{QStringLiteral("&Try Again"), connectAgain}, find}};
  else if (mProgress.state == AcquisitionState::Connected && !mProgress.result.IsOK())
    message = {MessageKind::Warning,
               QStringLiteral("The camera sends no frames: %1").arg(reason),
               {{QStringLiteral("&Start"), [this] { Start(); }}}};
  else if (mProgress.state == AcquisitionState::Connecting)
    message = {.text = QStringLiteral("Connecting to %1…").arg(name), .canBeDismissed = false};
  if (mTold != message.text) {
    mTold = message.text;
    mBar->Say(message);
  }
}

void CameraPage::showEvent(QShowEvent* aEvent) {
  QWidget::showEvent(aEvent);
  mPanels.SetPageShown(true);
  WantPicture();
}

void CameraPage::hideEvent(QHideEvent* aEvent) {
  QWidget::hideEvent(aEvent);
  mPanels.SetPageShown(false);
  WantPicture();
}

void CameraPage::resizeEvent(QResizeEvent* aEvent) {
  QWidget::resizeEvent(aEvent);
  // Only a page that has its size can share it out.
  if (isVisible() && !std::exchange(mHasWidths, true))
    mPanels.SetWidth(Panel::Features, static_cast<int>(width() * kFeaturesShare));
}

} // namespace krviewer

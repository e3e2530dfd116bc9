#include "window/endingwindow.h"

#include "krbase/krsteadytime.h"

#include <QEventLoop>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStringList>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <utility>

namespace krviewer {

namespace {

constexpr std::chrono::milliseconds kLookInterval{50};
constexpr int kLettersPerLine = 60;
constexpr std::uint64_t kMsPerSecond = 1000;

QPushButton* MakeButton(const char* aName, const char* aText, const char* aToolTip) {
  auto* const button = new QPushButton(QString::fromUtf8(aText));
  button->setObjectName(QString::fromLatin1(aName));
  button->setToolTip(QLatin1String(aToolTip));
  // What gives data up is not done by a Return that was meant for the window before.
  button->setAutoDefault(false);
  button->hide();
  return button;
}

} // namespace

EndingWindow::EndingWindow(std::vector<EndingWork> aWorks, Clock aClock)
    : mClock(aClock ? std::move(aClock) : Clock(&KrGetSteadyMs)), mSign(new QLabel), mText(new QLabel),
      mBar(new QProgressBar),
      mLeave(MakeButton("leave", "&Do Not Wait", "Ends without the files whose disk does not answer")),
      mLeaveCamera(MakeButton("leaveCamera", "&Leave the Camera", "Ends without an answer of the camera")),
      mAbandon(MakeButton("abandon", "&Abandon the Recording", "Gives up the frames that are not written yet")),
      mClose(MakeButton("close", "&Close", "")) {
  mClose->setAutoDefault(true);
  for (EndingWork& work : aWorks)
    mWorks.push_back({std::move(work)});
  setObjectName(QStringLiteral("endingWindow"));
  setWindowTitle(QStringLiteral("krviewer Ends"));
  mText->setObjectName(QStringLiteral("text"));
  mText->setTextFormat(Qt::PlainText);
  mText->setWordWrap(true);
  mText->setMinimumWidth(fontMetrics().averageCharWidth() * kLettersPerLine);
  mText->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  mSign->setTextFormat(Qt::PlainText);
  mBar->setRange(0, 0);
  mBar->setTextVisible(false);
  mBar->setAccessibleName(QStringLiteral("Under way"));
  mSign->hide();
  connect(mLeave, &QPushButton::clicked, this, &EndingWindow::LeaveStalled);
  connect(mLeaveCamera, &QPushButton::clicked, this, &EndingWindow::LeaveCameras);
  connect(mAbandon, &QPushButton::clicked, this, &EndingWindow::Abandon);
  connect(mClose, &QPushButton::clicked, this, &EndingWindow::reject);
  auto* const said = new QHBoxLayout;
  said->addWidget(mSign, 0, Qt::AlignTop);
  said->addWidget(mText, 1);
  auto* const buttons = new QHBoxLayout;
  buttons->addStretch();
  for (QPushButton* const button : {mLeave, mLeaveCamera, mAbandon, mClose})
    buttons->addWidget(button);
  auto* const layout = new QVBoxLayout(this);
  layout->setSpacing(fontMetrics().height());
  layout->addLayout(said, 1);
  layout->addWidget(mBar);
  layout->addLayout(buttons);
  connect(&mTimer, &QTimer::timeout, this, &EndingWindow::LookAgain);
  mPatience.setSingleShot(true);
  connect(&mPatience, &QTimer::timeout, this, &QWidget::show);
}

EndingResult EndingWindow::Await(std::chrono::milliseconds aLimit) {
  LookAgain();
  if (mWorks.empty())
    return EndingResult::Over;
  bool isTooLate = false;
  QTimer limit;
  connect(&limit, &QTimer::timeout, this, [&] {
    isTooLate = true;
    emit Over();
  });
  if (aLimit != kNoLimit)
    limit.start(aLimit);
  mTimer.start(kLookInterval);
  mPatience.start(kPatience);
  RunUntilOver();
  mPatience.stop();
  mTimer.stop();
  if (mWorks.empty())
    return EndingResult::Over;
  return isTooLate ? EndingResult::TooLate : EndingResult::Interrupted;
}

void EndingWindow::Tell(const QString& aTrouble) {
  mIsTold = true;
  mBar->hide();
  const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
  mSign->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(QSize(size, size), devicePixelRatioF()));
  mSign->show();
  for (QPushButton* const button : {mLeave, mLeaveCamera, mAbandon})
    button->hide();
  mClose->show();
  mClose->setDefault(true);
  SetText(aTrouble);
  show();
  RunUntilOver();
}

void EndingWindow::RunUntilOver() {
  QEventLoop loop;
  connect(this, &EndingWindow::Over, &loop, &QEventLoop::quit);
  loop.exec();
}

QString EndingWindow::GetText() const {
  return mText->text();
}

void EndingWindow::LookAgain() {
  const std::uint64_t now = mClock();
  for (Watched& watched : mWorks)
    LookAtCamera(watched, now);
  std::erase_if(mWorks, [](const Watched& aWatched) { return aWatched.work.isOver(); });
  if (mWorks.empty()) {
    emit Over();
    return;
  }
  for (Watched& watched : mWorks)
    watched.watch.Look(watched.work.getWritten(), now);
  Describe(now);
}

void EndingWindow::LookAtCamera(Watched& aWatched, std::uint64_t aNowMs) {
  if (aWatched.work.cameraLimit == kNoLimit || !aWatched.work.awaitsCamera()) {
    aWatched.cameraSinceMs.reset();
    return;
  }
  if (!aWatched.cameraSinceMs)
    aWatched.cameraSinceMs = aNowMs;
  if (std::chrono::milliseconds(aNowMs - *aWatched.cameraSinceMs) >= aWatched.work.cameraLimit)
    aWatched.work.leaveCamera();
}

QString EndingWindow::DescribeOne(const Watched& aWatched, std::uint64_t aNowMs) const {
  QString text = aWatched.work.describe();
  if (aWatched.isAbandoned && aWatched.work.isRecording())
    text += QStringLiteral("\nIt is being given up; only the frame that is being written is still awaited.");
  if (const std::uint64_t stalledMs = aWatched.watch.GetStalledMs())
    text += QStringLiteral("\nIts disk has taken nothing for %1 s and may not answer any more. You need not wait for "
                           "it: what is not written yet is lost then.")
                .arg(stalledMs / kMsPerSecond);
  if (aWatched.cameraSinceMs) {
    const auto left = aWatched.work.cameraLimit - std::chrono::milliseconds(aNowMs - *aWatched.cameraSinceMs);
    text += QStringLiteral("\nIt is waited for %1 s more at most. You need not wait for it: others may find it taken "
                           "for some seconds then, and what was changed of its stream and connection parameters may "
                           "not be kept.")
                .arg(std::chrono::ceil<std::chrono::seconds>(left).count());
  }
  return text;
}

void EndingWindow::Describe(std::uint64_t aNowMs) {
  QStringList texts;
  for (const Watched& watched : mWorks)
    texts += DescribeOne(watched, aNowMs);
  const auto isAny = [this](const auto& aCondition) { return std::ranges::any_of(mWorks, aCondition); };
  mAbandon->setVisible(
      isAny([](const Watched& aWatched) { return aWatched.work.isRecording() && !aWatched.isAbandoned; }));
  mLeave->setVisible(isAny([](const Watched& aWatched) { return aWatched.watch.GetStalledMs() > 0; }));
  mLeaveCamera->setVisible(isAny([](const Watched& aWatched) { return aWatched.cameraSinceMs.has_value(); }));
  SetText(texts.join(QStringLiteral("\n\n"))); // Each may take several lines.
}

// A layout does not make a window taller for a text that grows, nor a first showing taller than two thirds of a screen.
void EndingWindow::SetText(const QString& aText) {
  mText->setText(aText);
  ensurePolished();
  const QSize least = isVisible() ? size() : QSize(layout()->totalSizeHint().width(), 0);
  resize(least.width(), std::max(least.height(), layout()->totalHeightForWidth(least.width())));
}

void EndingWindow::Abandon() {
  for (Watched& watched : mWorks)
    if (watched.work.isRecording() && !std::exchange(watched.isAbandoned, true))
      watched.work.abandon();
  LookAgain();
}

void EndingWindow::LeaveStalled() {
  for (const Watched& watched : mWorks)
    if (watched.watch.GetStalledMs() > 0)
      watched.work.leave();
  LookAgain();
}

void EndingWindow::LeaveCameras() {
  for (const Watched& watched : mWorks)
    if (watched.cameraSinceMs)
      watched.work.leaveCamera();
  LookAgain();
}

void EndingWindow::reject() {
  if (!mIsTold)
    return;
  hide();
  emit Over();
}

} // namespace krviewer

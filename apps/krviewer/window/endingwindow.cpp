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
  connect(mAbandon, &QPushButton::clicked, this, &EndingWindow::Abandon);
  connect(mClose, &QPushButton::clicked, this, &EndingWindow::reject);
  auto* const said = new QHBoxLayout;
  said->addWidget(mSign, 0, Qt::AlignTop);
  said->addWidget(mText, 1);
  auto* const buttons = new QHBoxLayout;
  buttons->addStretch();
  for (QPushButton* const button : {mLeave, mAbandon, mClose})
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
  mLeave->hide();
  mAbandon->hide();
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
  std::erase_if(mWorks, [](const Watched& aWatched) { return aWatched.work.isOver(); });
  if (mWorks.empty()) {
    emit Over();
    return;
  }
  const std::uint64_t now = mClock();
  for (Watched& watched : mWorks)
    watched.watch.Look(watched.work.getWritten(), now);
  Describe();
}

void EndingWindow::Describe() {
  QStringList lines;
  bool isAnyRecording = false;
  bool isAnyStalled = false;
  for (const Watched& watched : mWorks) {
    lines += watched.work.describe();
    const bool isRecording = watched.work.isRecording();
    isAnyRecording = isAnyRecording || (isRecording && !watched.isAbandoned);
    if (isRecording && watched.isAbandoned)
      lines.back() += QStringLiteral("\nIt is being given up; only the frame that is being written is still awaited.");
    if (const std::uint64_t stalledMs = watched.watch.GetStalledMs()) {
      isAnyStalled = true;
      lines.back() +=
          QStringLiteral("\nIts disk has taken nothing for %1 s and may not answer any more. You need not wait for "
                         "it: what is not written yet is lost then.")
              .arg(stalledMs / kMsPerSecond);
    }
  }
  mAbandon->setVisible(isAnyRecording);
  mLeave->setVisible(isAnyStalled);
  SetText(lines.join(QStringLiteral("\n\n"))); // Each may take several lines.
}

// A layout does not make a window taller for a text that grows.
void EndingWindow::SetText(const QString& aText) {
  mText->setText(aText);
  if (isVisible())
    resize(width(), std::max(height(), layout()->totalHeightForWidth(width())));
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

void EndingWindow::reject() {
  if (!mIsTold)
    return;
  hide();
  emit Over();
}

} // namespace krviewer

#include "window/endingwindow.h"

#include <QEventLoop>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStringList>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <utility>

namespace krviewer {

namespace {

constexpr std::chrono::milliseconds kLookInterval{50};
/// What is over before is no reason for a window.
constexpr std::chrono::milliseconds kPatience{500};
constexpr int kLettersPerLine = 60;
constexpr std::uint64_t kMsPerSecond = 1000;

std::uint64_t GetSteadyMs() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

QPushButton* MakeButton(const char* aName, const char* aText, const char* aToolTip) {
  auto* const button = new QPushButton(QString::fromUtf8(aText));
  button->setObjectName(QString::fromLatin1(aName));
  button->setToolTip(QString::fromUtf8(aToolTip));
  button->setAutoDefault(true);
  button->hide();
  return button;
}

} // namespace

EndingWindow::EndingWindow(std::vector<EndingWork> aWorks, Clock aClock)
    : mClock(aClock ? std::move(aClock) : Clock(&GetSteadyMs)), mText(new QLabel),
      mLeave(MakeButton("leave", "&Do Not Wait", "Ends without the files whose disk does not answer")),
      mAbandon(MakeButton("abandon", "&Abandon the Recording", "Gives up the frames that are not written yet")),
      mClose(MakeButton("close", "&Close", "")) {
  for (EndingWork& work : aWorks)
    mWorks.push_back({std::move(work)});
  setObjectName(QStringLiteral("endingWindow"));
  setWindowTitle(QStringLiteral("krviewer Ends"));
  mText->setTextFormat(Qt::PlainText);
  mText->setWordWrap(true);
  mText->setMinimumWidth(fontMetrics().averageCharWidth() * kLettersPerLine);
  mText->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  connect(mLeave, &QPushButton::clicked, this, &EndingWindow::LeaveStalled);
  connect(mAbandon, &QPushButton::clicked, this, &EndingWindow::Abandon);
  connect(mClose, &QPushButton::clicked, this, &EndingWindow::reject);
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(mText, 1);
  auto* const buttons = new QHBoxLayout;
  buttons->addStretch();
  for (QPushButton* const button : {mLeave, mAbandon, mClose})
    buttons->addWidget(button);
  layout->addLayout(buttons);
  connect(&mTimer, &QTimer::timeout, this, &EndingWindow::LookAgain);
}

void EndingWindow::Await() {
  LookAgain();
  if (mWorks.empty())
    return;
  mTimer.start(kLookInterval);
  QTimer::singleShot(kPatience, this, [this] { setVisible(!mWorks.empty()); });
  RunUntilOver();
  mTimer.stop();
}

void EndingWindow::Tell(const QString& aTrouble) {
  mIsTold = true;
  mText->setText(aTrouble);
  mLeave->hide();
  mAbandon->hide();
  mClose->show();
  show();
  RunUntilOver();
}

void EndingWindow::RunUntilOver() {
  QEventLoop loop;
  connect(this, &EndingWindow::Over, &loop, &QEventLoop::quit);
  loop.exec();
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
    isAnyRecording = isAnyRecording || watched.work.isRecording();
    if (const std::uint64_t stalledMs = watched.watch.GetStalledMs()) {
      isAnyStalled = true;
      lines += QStringLiteral("Its disk has taken nothing for %1 s and may not answer any more. You need not wait for "
                              "it: what is not written yet is lost then.")
                   .arg(stalledMs / kMsPerSecond);
    }
  }
  mText->setText(lines.join(QLatin1Char('\n')));
  mAbandon->setVisible(isAnyRecording);
  mLeave->setVisible(isAnyStalled);
}

void EndingWindow::Abandon() {
  for (const Watched& watched : mWorks)
    if (watched.work.isRecording())
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

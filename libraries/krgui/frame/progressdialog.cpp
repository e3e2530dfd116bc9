#include "frame/progressdialog.h"

#include <QApplication>
#include <QFontMetrics>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <chrono>
#include <stop_token>
#include <utility>

namespace krgui {

namespace {

constexpr int kPreferredLetters = 56;
constexpr int kPeriodMs = 50;
/// What takes less is not worth a dialog.
constexpr int kPatienceMs = 300;
/// A dialog that was shown stays until it has had the keyboard for so many periods: one that goes while the window
/// manager brings it the keyboard leaves that nowhere. Where that does not come, it stays for so many in all: for long
/// where this application has had it, as then the window manager is late, and for a moment where others have it.
constexpr int kArrivedTicks = 3;
constexpr int kMostTicksInFront = 200;
constexpr int kMostTicksBehind = 40;
/// A bar counts in 32 bits, what is done need not.
constexpr int kSteps = 1000;
/// A hurry that comes just before the work waits ends nothing.
constexpr std::chrono::milliseconds kHurryPeriod{10};

} // namespace

ProgressDialog::ProgressDialog(QWidget* aOwner, const QString& aCaption, const QString& aText)
    : ProgressDialog(aOwner, aCaption, aText, Ending{}) {}

ProgressDialog::ProgressDialog(QWidget* aOwner, const QString& aCaption, const QString& aText, Ending aEnding)
    : ModalLoop(aOwner), mEnding(std::move(aEnding)), mTask(mEnding.whenCancelled) {
  DialogWindow& dialog = *GetDialog();
  dialog.setObjectName(QStringLiteral("progress"));
  dialog.SetCaption(aCaption);
  auto* text = new QLabel(&dialog);
  text->setTextFormat(Qt::PlainText);
  text->setText(aText);
  mBar = new QProgressBar(&dialog);
  mBar->setAccessibleName(aText);
  // Busy until it is known how much there is to do.
  mBar->setRange(0, 0);
  mCancel = new QPushButton(QStringLiteral("Cancel"), &dialog);
  auto* content = new QVBoxLayout(&dialog);
  content->addWidget(text);
  content->addWidget(mBar);
  content->addSpacing(content->spacing());
  content->addWidget(mCancel, 0, Qt::AlignRight);
  QObject::connect(mCancel, &QPushButton::clicked, &dialog, &DialogWindow::reject);
  QObject::connect(&mTimer, &QTimer::timeout, &dialog, [this] { Tick(); });
  dialog.KeepDefaultButton();
  dialog.resize(text->fontMetrics().averageCharWidth() * kPreferredLetters, dialog.sizeHint().height());
  dialog.SetPreferredSize(dialog.size());
  mCancel->setFocus();
}

ModalResult ProgressDialog::Run(const Work& aWork) {
  const auto work = [aWork, progress = mProgress](const std::stop_token& aStop) {
    try {
      aWork([&](std::size_t aDone, std::size_t aTotal) {
        progress->done = aDone;
        progress->total = aTotal;
        return !aStop.stop_requested() && !progress->isCancelled;
      });
    } catch (...) {
      progress->end.set_value();
      throw; // To be logged.
    }
    progress->end.set_value();
  };
  mMostTicks = QApplication::activeWindow() ? kMostTicksInFront : kMostTicksBehind;
  mTimer.start(kPeriodMs);
  mTask.Start(work, [this] {
    mOutcome = mProgress->isCancelled ? ModalResult::Cancel : ModalResult::OK;
    EndWhenArrived();
  });
  return RunLoopWhenSlow(kPatienceMs);
}

KrResult ProgressDialog::MakeUnfinished() {
  return {KrResult::Code::SystemError, "This could not be brought to its end, perhaps for want of memory. The log says "
                                       "more; what was done by then stays."};
}

void ProgressDialog::Tick() {
  CountTick();
  if (mOutcome)
    return EndWhenArrived();
  ShowProgress();
  if (mProgress->isCancelled)
    Hurry();
}

void ProgressDialog::CountTick() {
  mShownTicks += GetDialog()->isVisible() ? 1 : 0;
  mActiveTicks += GetDialog()->isActiveWindow() ? 1 : 0;
}

void ProgressDialog::EndWhenArrived() {
  const bool hasArrived = mActiveTicks >= kArrivedTicks || mShownTicks >= mMostTicks;
  // Who cancels has the keyboard there.
  if (hasArrived || *mOutcome == ModalResult::Cancel || !GetDialog()->isVisible())
    EndLoop(*mOutcome);
}

void ProgressDialog::ShowProgress() {
  const std::size_t total = mProgress->total;
  if (total == 0)
    return;
  mBar->setRange(0, kSteps);
  mBar->setValue(static_cast<int>(mProgress->done * kSteps / total));
}

void ProgressDialog::Hurry() const {
  if (mEnding.hurry)
    mEnding.hurry();
}

void ProgressDialog::OnAccept() {}

// What is under way comes to its end first: selectors are put back where they were.
void ProgressDialog::OnCancel() {
  if (mOutcome)
    return EndLoop(*mOutcome);
  mProgress->isCancelled = true;
  if (mEnding.whenCancelled == BackgroundTask::WhenCancelled::Abandon)
    return EndLoop(ModalResult::Cancel);
  mCancel->setText(QStringLiteral("Cancelling..."));
  mCancel->setEnabled(false);
  Hurry();
}

void ProgressDialog::OnEnd() {
  mTimer.stop();
  mProgress->isCancelled = true;
  if (mTask.IsRunning() && mEnding.hurry) {
    const std::future<void> end = mProgress->end.get_future();
    do
      Hurry();
    while (end.wait_for(kHurryPeriod) != std::future_status::ready);
  }
  mTask.Cancel();
}

} // namespace krgui

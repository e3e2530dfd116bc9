#include "browser/settingsprogressdialog.h"

#include <QFontMetrics>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <stop_token>

namespace krgui {

namespace {

constexpr int kPreferredLetters = 56;
constexpr int kPeriodMs = 50;
/// What takes less is not worth a dialog.
constexpr int kPatienceMs = 300;
/// A bar counts in 32 bits, what is done need not.
constexpr int kSteps = 1000;

} // namespace

SettingsProgressDialog::SettingsProgressDialog(QWidget* aOwner, const QString& aCaption, const QString& aText)
    : ModalLoop(aOwner) {
  DialogWindow& dialog = *GetDialog();
  dialog.setObjectName(QStringLiteral("settingsprogress"));
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
  QObject::connect(&mTimer, &QTimer::timeout, &dialog, [this] { ShowProgress(); });
  dialog.KeepDefaultButton();
  dialog.resize(text->fontMetrics().averageCharWidth() * kPreferredLetters, dialog.sizeHint().height());
  dialog.SetPreferredSize(dialog.size());
  mCancel->setFocus();
}

ModalResult SettingsProgressDialog::Run(const Work& aWork) {
  const auto work = [aWork, progress = mProgress](const std::stop_token& aStop) {
    aWork([&](std::size_t aDone, std::size_t aTotal) {
      progress->done = aDone;
      progress->total = aTotal;
      return !aStop.stop_requested() && !progress->isCancelled;
    });
  };
  mTimer.start(kPeriodMs);
  mTask.Start(work, [this] { EndLoop(mProgress->isCancelled ? ModalResult::Cancel : ModalResult::OK); });
  return RunLoopWhenSlow(kPatienceMs);
}

void SettingsProgressDialog::ShowProgress() {
  const std::size_t total = mProgress->total;
  if (total == 0)
    return;
  mBar->setRange(0, kSteps);
  mBar->setValue(static_cast<int>(mProgress->done * kSteps / total));
}

void SettingsProgressDialog::OnAccept() {}

// What is under way comes to its end first: selectors are put back where they were.
void SettingsProgressDialog::OnCancel() {
  mProgress->isCancelled = true;
  mCancel->setText(QStringLiteral("Cancelling..."));
  mCancel->setEnabled(false);
}

void SettingsProgressDialog::OnEnd() {
  mTimer.stop();
  mTask.Cancel();
}

} // namespace krgui

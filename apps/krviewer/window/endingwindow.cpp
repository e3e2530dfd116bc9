#include "window/endingwindow.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QFontMetrics>
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

} // namespace

EndingWindow::EndingWindow(std::vector<EndingWork> aWorks)
    : mWorks(std::move(aWorks)), mText(new QLabel), mButton(new QPushButton) {
  setObjectName(QStringLiteral("endingWindow"));
  setWindowTitle(QStringLiteral("krviewer Ends"));
  mText->setTextFormat(Qt::PlainText);
  mText->setWordWrap(true);
  mText->setMinimumWidth(fontMetrics().averageCharWidth() * kLettersPerLine);
  mText->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  mButton->setAutoDefault(true);
  connect(mButton, &QPushButton::clicked, this, &EndingWindow::OnButton);
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(mText, 1);
  layout->addWidget(mButton, 0, Qt::AlignRight);
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
  mButton->setText(QStringLiteral("&Close"));
  mButton->show();
  show();
  RunUntilOver();
}

void EndingWindow::RunUntilOver() {
  QEventLoop loop;
  connect(this, &EndingWindow::Over, &loop, &QEventLoop::quit);
  loop.exec();
}

bool EndingWindow::IsAnyRecording() const {
  return std::ranges::any_of(mWorks, [](const EndingWork& aWork) { return aWork.isRecording(); });
}

void EndingWindow::LookAgain() {
  std::erase_if(mWorks, [](const EndingWork& aWork) { return aWork.isOver(); });
  if (mWorks.empty()) {
    emit Over();
    return;
  }
  QStringList lines;
  for (const EndingWork& work : mWorks)
    lines += work.describe();
  mText->setText(lines.join(QLatin1Char('\n')));
  mButton->setText(QStringLiteral("&Abandon the Recording"));
  mButton->setToolTip(QStringLiteral("Gives up the frames that are not written yet"));
  mButton->setVisible(IsAnyRecording());
}

void EndingWindow::OnButton() {
  if (mIsTold) {
    hide();
    emit Over();
    return;
  }
  for (const EndingWork& work : mWorks)
    if (work.isRecording())
      work.abandon();
  LookAgain();
}

void EndingWindow::closeEvent(QCloseEvent* aEvent) {
  if (!mIsTold)
    return aEvent->ignore();
  QWidget::closeEvent(aEvent);
  emit Over();
}

} // namespace krviewer

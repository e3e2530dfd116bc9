#include "descriptionviewer.h"

#include "pictures.h"
#include "plaintext.h"
#include "window/showntext.h"

#include <QApplication>
#include <QFileInfo>
#include <QScreen>
#include <QVBoxLayout>

#include <cstdio>

namespace krviewer {

namespace {

constexpr QSize kPreferredSize(600, 800);
constexpr int kLookIntervalMs = 50;
// The part of the screen that the window never exceeds at first, where there is a screen.
constexpr double kLargestShareOfScreen = 0.9;

} // namespace

DescriptionViewer::DescriptionViewer(const CommandLine& aCommandLine) : mCommandLine(aCommandLine) {
  connect(&mTimer, &QTimer::timeout, this, &DescriptionViewer::LookAgain);
  connect(&mEndKeys, &EndKeys::QuitWanted, this, &DescriptionViewer::Finish);
  mWindow.installEventFilter(this);
}

KrResult DescriptionViewer::OpenArray() {
  KrGenDescription description;
  KrResult result = KrGenDescription::ReadFromFile(mCommandLine.descriptionFile.toStdString(), description);
  if (result.IsOK())
    result = KrGenParameterArray::Open(description, mMemory, {}, mArray);
  return result;
}

KrResult DescriptionViewer::OpenWindow() {
  const QString name = QFileInfo(mCommandLine.descriptionFile).fileName();
  mWindow.setWindowTitle(ToTitle(name) + QStringLiteral(" - description without a camera"));
  if (KrResult created = mBrowser.CreateIn(&mWindow); !created.IsOK())
    return created;
  auto* const layout = new QVBoxLayout(&mWindow);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(mBrowser.GetWidget());
  mBrowser.SetGenParameterArray(mArray.get());
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  mWindow.resize(IsWithoutDisplay() ? kPreferredSize : kPreferredSize.boundedTo(screen.size() * kLargestShareOfScreen));
  mWindow.show();
  mBrowser.GetWidget()->setFocus();
  return {};
}

int DescriptionViewer::Run() {
  KrResult result = OpenArray();
  if (result.IsOK())
    result = OpenWindow();
  if (!result.IsOK()) {
    std::fprintf(stderr, "%s cannot be shown: %s\n", mCommandLine.descriptionFile.toLocal8Bit().constData(),
                 krapps::MakeField(result.GetDescription()).c_str());
    return 1;
  }
  std::printf("description=%s features=%zu\n", mCommandLine.descriptionFile.toLocal8Bit().constData(),
              mArray->GetCount());
  if (mArray->GetCount() == 0)
    std::fprintf(stderr, "%s has no features to show: none stands in a category that its \"Root\" leads to.\n",
                 mCommandLine.descriptionFile.toLocal8Bit().constData());
  mTimer.start(kLookIntervalMs);
  QApplication::exec();
  mBrowser.SetGenParameterArray(nullptr);
  return mExitCode;
}

// The pictures are of a window that is on the screen.
bool DescriptionViewer::eventFilter(QObject* aObject, QEvent* aEvent) {
  if (aObject == &mWindow && aEvent->type() == QEvent::Close)
    Finish();
  return QObject::eventFilter(aObject, aEvent);
}

void DescriptionViewer::LookAgain() {
  // Headless nobody else would end it.
  if (mStopSignal.IsRaised() || IsWithoutDisplay())
    Finish();
}

void DescriptionViewer::Finish() {
  if (mIsOver)
    return;
  mIsOver = true;
  mTimer.stop();
  if (!mCommandLine.screenshotFolder.isEmpty() && !SavePicture())
    mExitCode = 1;
  QCoreApplication::exit();
}

bool DescriptionViewer::SavePicture() {
  mBrowser.Refresh();
  const KrResult result = WriteBrowserPicture(mBrowser, mCommandLine.screenshotFolder);
  if (result.IsOK())
    std::printf("pictures=%s\n", mCommandLine.screenshotFolder.toLocal8Bit().constData());
  else
    std::fprintf(stderr, "No picture was written: %s\n", krapps::MakeField(result.GetDescription()).c_str());
  return result.IsOK();
}

} // namespace krviewer

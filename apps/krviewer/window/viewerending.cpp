// How the viewer and its pages end: what is awaited, what is left behind, and what is said of it.

#include "window/viewer.h"

#include "page/pageending.h"
#include "pictures.h"
#include "plaintext.h"
#include "window/endingwindow.h"
#include "window/showntext.h"

#include <QApplication>
#include <QDir>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

namespace krviewer {

namespace {

constexpr int kLongestLine = 1000;

} // namespace

// Loops may run here, in which the same page, or the viewer, ends once more.
void Viewer::Discard(CameraPage& aPage) {
  const auto found = std::ranges::find(mPages, &aPage, &std::unique_ptr<CameraPage>::get);
  if (found == mPages.end())
    return;
  mEndedPages.Add(std::move(*found));
  mPages.erase(found);
  QString folder = mCommandLine.screenshotFolder;
  if (!folder.isEmpty() && aPage.GetNumber() > 1)
    folder = QDir(folder).filePath(QStringLiteral("camera-%1").arg(aPage.GetNumber()));
  if (folder.isEmpty())
    aPage.End();
  else if (!EndWithPictures(aPage, folder, mHost.endLimits.pictures))
    mExitCode = 1;
  if (MainWindow* const window = FindWindowOf(aPage))
    window->RemovePage(aPage);
}

void Viewer::NoteEndedPages() {
  for (const CameraPage* const page : mEndedPages.TakeEnded()) {
    mSettings.SetHostSettings(page->GetHostSettings(), ToText(page->GetCamera().GetUniqueID()));
    PrintFigures(*page, mOpened > 1
                            ? QStringLiteral("camera=%1 ")
                                  .arg(QString::fromStdString(krapps::MakeField(page->GetCamera().GetDisplayID())))
                            : QString());
  }
}

// What has ended may be at work still further up on the stack, in a loop of its windows: only where there is no such
// loop it can go, and then as late as the toolkit does that.
void Viewer::DeleteEnded() {
  if (thread()->loopLevel() > mLoopLevel)
    return;
  mEndedPages.DeleteIdle();
  for (std::unique_ptr<MainWindow>& window : mEndedWindows)
    window.release()->deleteLater();
  mEndedWindows.clear();
}

void Viewer::SaveWindowPicture() {
  if (mCommandLine.screenshotFolder.isEmpty())
    return;
  const KrResult written = WriteWindowPicture(GetActiveWindow(), mCommandLine.screenshotFolder);
  if (written.IsOK())
    return;
  std::fprintf(stderr, "No picture of the window was written: %s\n",
               krapps::MakeField(written.GetDescription()).c_str());
  mExitCode = 1;
}

QString Viewer::TakeWriteTrouble() {
  const QString trouble = mSettings.TakeWriteTrouble();
  if (!trouble.isEmpty())
    std::fprintf(stderr, "%s\n", ToLine(trouble, kLongestLine).toUtf8().constData());
  return trouble;
}

// While there is still a window that can say what did not come about.
QString Viewer::KeepSettings() {
  mSettings.Write();
  return TakeWriteTrouble();
}

void Viewer::HideWindows() {
  for (MainWindow* const window : GetWindows())
    window->hide();
}

// Nobody looks at a run that ends by itself, so that nobody else would give up what does not end.
void Viewer::GiveUp(const QString& aUnderWay) {
  std::fprintf(stderr, "The run has not come to its end %lld s after it was over. %s\n",
               static_cast<long long>(std::chrono::duration_cast<std::chrono::seconds>(mHost.endLimits.batch).count()),
               ToLine(aUnderWay, kLongestLine).toUtf8().constData());
  mExitCode = 1;
  mHost.giveUp();
}

void Viewer::AwaitEndedPages() {
  const bool isBatch = mCommandLine.IsBatch();
  const EndOfPages end{.isTold = !isBatch && !mStopSignal.IsRaised(),
                       .limit = isBatch ? mHost.endLimits.batch : kNoLimit,
                       .cameraLimit = isBatch ? kNoLimit : mHost.endLimits.camera,
                       .giveUp = [this](const QString& aUnderWay) { GiveUp(aUnderWay); },
                       .complete =
                           [this] {
                             NoteEndedPages();
                             return KeepSettings();
                           }};
  if (!mEndedPages.Await(end).isEmpty())
    mExitCode = 1;
}

// What is at work for a camera that was left uses its page, which can end neither before it nor with it: the program
// ends instead.
void Viewer::LeaveCameras() {
  mExitCode = 1;
  mHost.giveUp();
}

// A menu of the toolkit's file dialog lives on the stack of its own loop, which has to end before the dialog does.
bool Viewer::LeaveMenu() {
  QWidget* const menu = mIsRunning ? QApplication::activePopupWidget() : nullptr;
  if (menu == nullptr || !menu->close())
    return false;
  QTimer::singleShot(0, this, &Viewer::Finish);
  return true;
}

void Viewer::Finish() {
  if (mIsOver || LeaveMenu())
    return;
  mIsOver = true;
  mTimer.stop();
  mEndTimer.stop();
  mWanted.End();
  mFinder.Close();
  NoteLost();
  KeepLayouts();
  SaveWindowPicture();
  // A camera that does not answer needs its time; who has closed the window does not want to look at it meanwhile.
  const bool wantsPictures = !mCommandLine.screenshotFolder.isEmpty();
  if (!wantsPictures)
    HideWindows();
  while (!mPages.empty()) {
    CameraPage& page = *mPages.front();
    if (wantsPictures)
      FindWindowOf(page)->BringForward(page);
    Discard(page);
  }
  HideWindows();
  AwaitEndedPages();
  if (mEndedPages.HasLeftCamera())
    LeaveCameras();
  // Where the application's loop does not run, this would end whatever loop comes next, before it begins.
  if (mIsRunning)
    QCoreApplication::exit();
}

} // namespace krviewer

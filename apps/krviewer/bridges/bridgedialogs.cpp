#include "bridges/bridgedialogs.h"

#include "bridges/bridgewindow.h"
#include "filedialogs.h"
#include "window/showntext.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QWidget>

#include <algorithm>
#include <cstdio>

namespace krviewer {

namespace {

/// A file may hold anything: neither is a message to grow beyond the screen, nor its lines to be taken for the
/// program's.
constexpr int kMostLetters = 300;
constexpr int kMostLines = 5;

FileQuestion MakeQuestion(const QString& aTitle) {
  return {.title = aTitle, .filter = QStringLiteral("Bridge setups (*.xml)"), .suffix = QStringLiteral("xml")};
}

} // namespace

BridgeWords GetSerialBridgeWords() {
  return {.load = QStringLiteral("Load Bridge Setup"),
          .save = QStringLiteral("Save Bridge Setup"),
          .name = QStringLiteral("Serial Bridges"),
          .notTakenUp = QStringLiteral("These serial bridges did not start. What can start is tried again the next "
                                       "time that the camera is back:")};
}

BridgeWords GetCameraBridgeWords() {
  return {.load = QStringLiteral("Load Camera Bridge Setup"),
          .save = QStringLiteral("Save Camera Bridge Setup"),
          .name = QStringLiteral("Camera Bridges"),
          .notTakenUp =
              QStringLiteral("These camera bridges are not as they were. What is not connected is tried again "
                             "the next time that the device is back:")};
}

BridgeDialogs::BridgeDialogs(QWidget& aPage, BridgeWindow& aBridges, const BridgeWords& aWords)
    : mPage(aPage), mBridges(aBridges), mWords(aWords) {
  mBridges.SetTell([this](BridgeNews aNews, const KrStringList& aLines) { TellNews(aNews, aLines); });
}

BridgeDialogs::~BridgeDialogs() {
  mBridges.SetTell(nullptr);
}

void BridgeDialogs::LookAgain() {
  mBridges.LookAgain();
}

bool BridgeDialogs::CanShow() const {
  return mBridges.IsOffered();
}

QString BridgeDialogs::GetHindrance() const {
  const SetupFile& file = mBridges.GetFile();
  if (file.IsInUse())
    return (file.IsWriting() ? QStringLiteral("%1 is being written; its disk takes its time.")
                             : QStringLiteral("%1 is being read; its disk takes its time."))
        .arg(ToLine(QFileInfo(ToText(file.GetName())).fileName(), kMostLetters));
  return mBridges.IsWorking() ? QStringLiteral("The cameras behind the ports are being asked.") : QString();
}

bool BridgeDialogs::IsWriting() const {
  return mBridges.GetFile().IsWriting();
}

void BridgeDialogs::FollowFile() {
  mBridges.FollowFile();
}

void BridgeDialogs::AwaitWritten() {
  mBridges.AwaitWritten();
}

void BridgeDialogs::LeaveFile() {
  mBridges.LeaveFile();
}

void BridgeDialogs::Show() {
  if (const KrResult checked = mBridges.CheckShowing(); !checked.IsOK())
    return Tell(ToText(checked.GetDescription()), {});
  if (const KrResult shown = mBridges.Show(mPage.window()->winId()); !shown.IsOK()) {
    KrStringList lines;
    lines.Add(shown.GetCodeString() + ": " + shown.GetDescription());
    Tell(QStringLiteral("The window of the bridges cannot be opened:"), lines);
  }
}

void BridgeDialogs::AskForLoading() {
  connect(&OpenLoadDialog(mPage, MakeQuestion(mWords.load)), &QFileDialog::fileSelected, this, &BridgeDialogs::Load);
}

void BridgeDialogs::AskForSaving() {
  connect(&OpenSaveDialog(mPage, MakeQuestion(mWords.save)), &QFileDialog::fileSelected, this, &BridgeDialogs::Save);
}

void BridgeDialogs::Load(const QString& aFileName) {
  // Another one may have begun while the dialog was open.
  if (CanUseFiles())
    mBridges.LoadSetup(aFileName.toUtf8().constData());
}

void BridgeDialogs::Save(const QString& aFileName) {
  if (CanUseFiles())
    mBridges.SaveSetup(aFileName.toUtf8().constData());
}

void BridgeDialogs::TellNews(BridgeNews aNews, const KrStringList& aLines) {
  switch (aNews) {
  case BridgeNews::NotTakenUp:
    return Tell(mWords.notTakenUp, aLines);
  case BridgeNews::NotLoaded:
    return Tell(QStringLiteral("No bridges were loaded:"), aLines);
  case BridgeNews::NotAllLoaded:
    return Tell(QStringLiteral("Not all bridges were started:"), aLines);
  case BridgeNews::NotSaved:
    return Tell(QStringLiteral("The bridges were not saved:"), aLines);
  case BridgeNews::NotAllSaved:
    return Tell(QStringLiteral("Not all was saved that belongs to the bridges:"), aLines);
  }
}

// One box at a time, which waits for nobody: the camera may come and go while it is open.
void BridgeDialogs::Tell(const QString& aWhat, const KrStringList& aLines) {
  QStringList lines;
  for (const KrString& line : aLines)
    lines += ToLine(ToText(line), kMostLetters);
  std::fprintf(stderr, "%s\n", (QStringList(aWhat) + lines).join('\n').toUtf8().constData());
  if (mHasEnded)
    return mFailures.append(aWhat + QLatin1Char(' ') + lines.join(QLatin1Char(' ')));
  QStringList shown = QStringList(aWhat) + lines.first(std::min<qsizetype>(lines.size(), kMostLines));
  if (lines.size() > kMostLines)
    shown += QStringLiteral("And %1 more: see the details.").arg(lines.size() - kMostLines);
  delete mMessage;
  mMessage =
      new QMessageBox(QMessageBox::Warning, mWords.name, shown.join(QStringLiteral("\n\n")), QMessageBox::Ok, &mPage);
  if (lines.size() > kMostLines)
    mMessage->setDetailedText(lines.join('\n'));
  mMessage->setAttribute(Qt::WA_DeleteOnClose);
  mMessage->setTextFormat(Qt::PlainText);
  mMessage->setModal(false);
  mMessage->show();
}

} // namespace krviewer

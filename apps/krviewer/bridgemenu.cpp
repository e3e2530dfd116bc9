#include "bridgemenu.h"

#include "bridgewindow.h"

#include <QAction>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMessageBox>

#include <algorithm>
#include <cstdio>

namespace krviewer {

namespace {

/// A file may hold anything: neither is a message to grow beyond the screen, nor its lines to be taken for the
/// program's.
constexpr int kMostLetters = 300;
constexpr int kMostLines = 5;

/// One line that can be read, cut where it is too long.
QString ToText(const KrString& aText) {
  QString text = QString::fromUtf8(aText.CStr()).simplified();
  for (QChar& letter : text)
    if (!letter.isPrint())
      letter = QChar::ReplacementCharacter;
  if (text.size() > kMostLetters)
    text = text.first(kMostLetters) + QStringLiteral("…");
  return text;
}

} // namespace

BridgeWords GetSerialBridgeWords() {
  return {.show = QStringLiteral("Serial &Bridges…"),
          .showKey = Qt::CTRL | Qt::Key_B,
          .load = QStringLiteral("&Load Bridge Setup…"),
          .save = QStringLiteral("Sa&ve Bridge Setup…"),
          .name = QStringLiteral("Serial Bridges"),
          .notTakenUp = QStringLiteral("These serial bridges did not start. What can start is tried again the next "
                                       "time that the camera is back:")};
}

BridgeWords GetCameraBridgeWords() {
  return {.show = QStringLiteral("Camera B&ridges…"),
          .showKey = Qt::CTRL | Qt::Key_K,
          .load = QStringLiteral("L&oad Camera Bridge Setup…"),
          .save = QStringLiteral("Save Ca&mera Bridge Setup…"),
          .name = QStringLiteral("Camera Bridges"),
          .notTakenUp =
              QStringLiteral("These camera bridges are not as they were. What is not connected is tried again "
                             "the next time that the device is back:")};
}

BridgeMenu::BridgeMenu(MainWindow& aWindow, BridgeWindow& aBridges, const BridgeWords& aWords)
    : mWindow(aWindow), mBridges(aBridges), mWords(aWords), mShow(aWindow.AddTool(aWords.show, aWords.showKey)),
      mLoad(aWindow.AddTool(aWords.load, {})), mSave(aWindow.AddTool(aWords.save, {})) {
  mShow->setEnabled(false); // Until there is a device.
  connect(mShow, &QAction::triggered, this, &BridgeMenu::ShowManager);
  connect(mLoad, &QAction::triggered, this, [this] { AskForFile(false); });
  connect(mSave, &QAction::triggered, this, [this] { AskForFile(true); });
  mBridges.SetTell([this](BridgeNews aNews, const KrStringList& aLines) { TellNews(aNews, aLines); });
}

BridgeMenu::~BridgeMenu() {
  mBridges.SetTell(nullptr);
}

void BridgeMenu::LookAgain() {
  mBridges.LookAgain();
  mShow->setEnabled(mBridges.IsOffered());
  mLoad->setEnabled(!mBridges.IsWorking());
  mSave->setEnabled(!mBridges.IsWorking());
}

void BridgeMenu::ShowManager() {
  if (const KrResult shown = mBridges.Show(mWindow.winId()); !shown.IsOK()) {
    KrStringList lines;
    lines.Add(shown.GetCodeString() + ": " + shown.GetDescription());
    Tell(QStringLiteral("The window of the bridges cannot be opened:"), lines);
  }
}

void BridgeMenu::AskForFile(bool aIsToSave) {
  auto* const dialog = new QFileDialog(&mWindow);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  // The entry's words without its letter and dots.
  QString title = aIsToSave ? mWords.save : mWords.load;
  dialog->setWindowTitle(title.remove(QLatin1Char('&')).remove(QStringLiteral("…")));
  dialog->setAcceptMode(aIsToSave ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog->setFileMode(aIsToSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog->setNameFilters({QStringLiteral("Bridge setups (*.xml)"), QStringLiteral("All files (*)")});
  if (aIsToSave)
    dialog->setDefaultSuffix(QStringLiteral("xml"));
  connect(dialog, &QFileDialog::fileSelected, this, aIsToSave ? &BridgeMenu::Save : &BridgeMenu::Load);
  dialog->open();
}

void BridgeMenu::Load(const QString& aFileName) {
  // Another one has begun while the dialog was open.
  if (mBridges.IsWorking())
    return;
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  mBridges.LoadSetup(aFileName.toUtf8().constData());
  QGuiApplication::restoreOverrideCursor();
}

void BridgeMenu::Save(const QString& aFileName) {
  if (!mBridges.IsWorking())
    mBridges.SaveSetup(aFileName.toUtf8().constData());
}

void BridgeMenu::TellNews(BridgeNews aNews, const KrStringList& aLines) {
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
void BridgeMenu::Tell(const QString& aWhat, const KrStringList& aLines) {
  QStringList lines;
  for (const KrString& line : aLines)
    lines += ToText(line);
  std::fprintf(stderr, "%s\n%s\n", aWhat.toUtf8().constData(), lines.join('\n').toUtf8().constData());
  QStringList shown = QStringList(aWhat) + lines.first(std::min<qsizetype>(lines.size(), kMostLines));
  if (lines.size() > kMostLines)
    shown += QStringLiteral("And %1 more: see the details.").arg(lines.size() - kMostLines);
  delete mMessage;
  mMessage =
      new QMessageBox(QMessageBox::Warning, mWords.name, shown.join(QStringLiteral("\n\n")), QMessageBox::Ok, &mWindow);
  if (lines.size() > kMostLines)
    mMessage->setDetailedText(lines.join('\n'));
  mMessage->setAttribute(Qt::WA_DeleteOnClose);
  mMessage->setTextFormat(Qt::PlainText);
  mMessage->setModal(false);
  mMessage->show();
}

} // namespace krviewer

#include "bridgemenu.h"

#include <QAction>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMessageBox>

#include <algorithm>
#include <cstdio>

namespace krviewer {

namespace {

const QString kTitle = QStringLiteral("Serial Bridges");

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

KrStringList MakeLines(const KrResult& aResult) {
  KrStringList lines;
  lines.Add(aResult.GetCodeString() + ": " + aResult.GetDescription());
  return lines;
}

} // namespace

BridgeMenu::BridgeMenu(MainWindow& aWindow, SerialBridges& aBridges)
    : mWindow(aWindow), mBridges(aBridges),
      mShow(aWindow.AddTool(QStringLiteral("Serial &Bridges…"), Qt::CTRL | Qt::Key_B)) {
  mShow->setEnabled(false); // Until there is a device.
  connect(mShow, &QAction::triggered, this, &BridgeMenu::ShowManager);
  connect(aWindow.AddTool(QStringLiteral("&Load Bridge Setup…"), {}), &QAction::triggered, this,
          [this] { AskForFile(false); });
  connect(aWindow.AddTool(QStringLiteral("Sa&ve Bridge Setup…"), {}), &QAction::triggered, this,
          [this] { AskForFile(true); });
  QAction* const creating = aWindow.AddTool(QStringLiteral("&Create COM Ports"), {});
  creating->setCheckable(true);
  connect(creating, &QAction::toggled, this, [this](bool aIsOn) { mBridges.GetWindow().SetCreatingPorts(aIsOn); });
  mBridges.SetTellFailures([this](const KrStringList& aLines) {
    Tell(QStringLiteral("These serial bridges did not start. What can start is tried again the next time that the "
                        "camera is back:"),
         aLines);
  });
}

BridgeMenu::~BridgeMenu() {
  mBridges.SetTellFailures(nullptr);
}

void BridgeMenu::LookAgain() {
  mShow->setEnabled(mBridges.HasDevice());
  mBridges.LookAgain();
}

void BridgeMenu::ShowManager() {
  if (const KrResult shown = mBridges.Show(mWindow.winId()); !shown.IsOK())
    Tell(QStringLiteral("The window of serial bridges cannot be opened:"), MakeLines(shown));
}

void BridgeMenu::AskForFile(bool aIsToSave) {
  auto* const dialog = new QFileDialog(&mWindow);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setWindowTitle(aIsToSave ? QStringLiteral("Save Bridge Setup") : QStringLiteral("Load Bridge Setup"));
  dialog->setAcceptMode(aIsToSave ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog->setFileMode(aIsToSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog->setNameFilters({QStringLiteral("Bridge setups (*.xml)"), QStringLiteral("All files (*)")});
  if (aIsToSave)
    dialog->setDefaultSuffix(QStringLiteral("xml"));
  connect(dialog, &QFileDialog::fileSelected, this, aIsToSave ? &BridgeMenu::Save : &BridgeMenu::Load);
  dialog->open();
}

void BridgeMenu::Load(const QString& aFileName) {
  KrStringList errors;
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  const KrResult loaded = mBridges.LoadSetup(aFileName.toUtf8().constData(), errors);
  QGuiApplication::restoreOverrideCursor();
  if (!loaded.IsOK())
    Tell(QStringLiteral("No bridges were loaded:"), MakeLines(loaded));
  else if (!errors.IsEmpty())
    Tell(QStringLiteral("Not all bridges were started:"), errors);
}

void BridgeMenu::Save(const QString& aFileName) {
  if (const KrResult saved = mBridges.SaveSetup(aFileName.toUtf8().constData()); !saved.IsOK())
    Tell(QStringLiteral("The bridges were not saved:"), MakeLines(saved));
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
      new QMessageBox(QMessageBox::Warning, kTitle, shown.join(QStringLiteral("\n\n")), QMessageBox::Ok, &mWindow);
  if (lines.size() > kMostLines)
    mMessage->setDetailedText(lines.join('\n'));
  mMessage->setAttribute(Qt::WA_DeleteOnClose);
  mMessage->setTextFormat(Qt::PlainText);
  mMessage->setModal(false);
  mMessage->show();
}

} // namespace krviewer

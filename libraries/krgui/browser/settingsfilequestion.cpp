#include "browser/settingsfilequestion.h"

#include "platform/messagebox.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPointer>

namespace krgui {

namespace {

constexpr int kMostLettersOfName = 80;

QString& GetFolder() {
  static QString folder = QDir::homePath();
  return folder;
}

/// A device's name as the name of a file.
QString MakeFileName(const QString& aName) {
  QString name;
  for (const QChar letter : aName.left(kMostLettersOfName))
    name += letter.isLetterOrNumber() || letter == QLatin1Char('-') ? letter : QLatin1Char('_');
  return (name.isEmpty() ? QStringLiteral("settings") : name) + QStringLiteral(".txt");
}

/// The toolkit's own dialog on every desktop, without the questions it asks with texts that may be taken for markup.
QString Ask(QWidget* aOwner, const QString& aCaption, QFileDialog::AcceptMode aMode, const QString& aName) {
  const QPointer<QFileDialog> dialog = new QFileDialog(aOwner, aCaption, GetFolder());
  dialog->setObjectName(QStringLiteral("settingsfile"));
  dialog->setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite);
  dialog->setAcceptMode(aMode);
  dialog->setFileMode(QFileDialog::AnyFile);
  dialog->setNameFilters({QStringLiteral("Settings (*.txt)"), QStringLiteral("All files (*)")});
  if (aMode == QFileDialog::AcceptSave)
    dialog->setDefaultSuffix(QStringLiteral("txt"));
  if (!aName.isEmpty())
    dialog->selectFile(aName);
  const bool isAccepted = dialog->exec() == QDialog::Accepted;
  if (dialog.isNull())
    return {};
  const QStringList files = isAccepted ? dialog->selectedFiles() : QStringList();
  delete dialog.data();
  if (files.isEmpty())
    return {};
  GetFolder() = QFileInfo(files.front()).absolutePath();
  return files.front();
}

} // namespace

QString AskForFileToSave(QWidget* aOwner, const QString& aName) {
  const QPointer<QWidget> owner = aOwner;
  QString name = MakeFileName(aName);
  while (true) {
    const QString file = Ask(owner, QStringLiteral("Save Features"), QFileDialog::AcceptSave, name);
    if (file.isEmpty() || owner.isNull() || !QFileInfo::exists(file))
      return owner.isNull() ? QString() : file;
    name = QFileInfo(file).fileName();
    const ModalResult answer =
        ShowMessage(owner, QStringLiteral("\"%1\" exists already. Replace it?").arg(name),
                    QStringLiteral("Save Features"), MessageIcon::Question, MessageButtons::YesNo);
    if (answer == ModalResult::Gone || owner.isNull())
      return {};
    if (answer == ModalResult::Yes)
      return file;
  }
}

QString AskForFileToRestore(QWidget* aOwner) {
  return Ask(aOwner, QStringLiteral("Restore Features"), QFileDialog::AcceptOpen, {});
}

} // namespace krgui

#include "frame/filequestion.h"

#include "frame/filelistmenu.h"
#include "platform/messagebox.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPointer>

#include <utility>

namespace krgui {

namespace {

/// The toolkit's own dialog on every desktop, without the questions it asks with texts that may be taken for markup.
class FileDialog final : public QFileDialog {
public:
  FileDialog(QWidget* aOwner, const FileQuestion& aQuestion, const QString& aFolder, bool aNeedsFile)
      : QFileDialog(aOwner, aQuestion.caption, aFolder), mNeedsFile(aNeedsFile) {
    setObjectName(aQuestion.objectName);
    setOptions(DontUseNativeDialog | DontConfirmOverwrite);
    setOption(HideNameFilterDetails, aQuestion.hidesPatterns);
    setFileMode(AnyFile);
    setNameFilters(aQuestion.filters.isEmpty() ? QStringList(QStringLiteral("All files (*)")) : aQuestion.filters);
    ReplaceListMenus(*this);
  }

protected:
  void accept() override {
    const QStringList files = selectedFiles();
    if (mNeedsFile && !files.isEmpty() && !QFileInfo::exists(files.front())) {
      // The box may outlive this dialog; nothing is done after it.
      ShowMessage(this, QStringLiteral("There is no file \"%1\".").arg(files.front()), windowTitle(),
                  MessageIcon::Exclamation);
      return;
    }
    QFileDialog::accept();
  }

private:
  const bool mNeedsFile;
};

QString Ask(QWidget* aOwner, const FileQuestion& aQuestion, QFileDialog::AcceptMode aMode, bool aNeedsFile,
            QString& aFolder) {
  if (aFolder.isEmpty())
    aFolder = QDir::homePath();
  const QPointer<QFileDialog> dialog = new FileDialog(aOwner, aQuestion, aFolder, aNeedsFile);
  dialog->setAcceptMode(aMode);
  if (aMode == QFileDialog::AcceptSave)
    dialog->setDefaultSuffix(aQuestion.suffix);
  if (!aQuestion.name.isEmpty())
    dialog->selectFile(aQuestion.name);
  const bool isAccepted = dialog->exec() == QDialog::Accepted;
  if (dialog.isNull())
    return {};
  const QStringList files = isAccepted ? dialog->selectedFiles() : QStringList();
  delete dialog.data();
  if (files.isEmpty())
    return {};
  aFolder = QFileInfo(files.front()).absolutePath();
  return files.front();
}

} // namespace

QString AskForFileToRead(QWidget* aOwner, const FileQuestion& aQuestion, QString& aFolder) {
  return Ask(aOwner, aQuestion, QFileDialog::AcceptOpen, false, aFolder);
}

QString AskForExistingFile(QWidget* aOwner, const FileQuestion& aQuestion, QString& aFolder) {
  return Ask(aOwner, aQuestion, QFileDialog::AcceptOpen, true, aFolder);
}

QString AskForFileToWrite(QWidget* aOwner, const FileQuestion& aQuestion, QString& aFolder) {
  const QPointer<QWidget> owner = aOwner;
  FileQuestion question = aQuestion;
  while (true) {
    const QString file = Ask(owner, question, QFileDialog::AcceptSave, false, aFolder);
    if (file.isEmpty() || owner.isNull() || !QFileInfo::exists(file))
      return owner.isNull() ? QString() : file;
    question.name = QFileInfo(file).fileName();
    const ModalResult answer =
        ShowMessage(owner, QStringLiteral("\"%1\" exists already. Replace it?").arg(question.name), question.caption,
                    MessageIcon::Question, MessageButtons::YesNo);
    if (answer == ModalResult::Gone || owner.isNull())
      return {};
    if (answer == ModalResult::Yes)
      return file;
  }
}

} // namespace krgui

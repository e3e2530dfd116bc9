#include "filedialogs.h"

#include <QFileDialog>

namespace krviewer {

namespace {

QFileDialog& MakeDialog(QWidget& aParent, const FileQuestion& aQuestion) {
  auto* const dialog = new QFileDialog(&aParent, aQuestion.title);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setNameFilters({aQuestion.filter, QStringLiteral("All files (*)")});
  return *dialog;
}

} // namespace

QFileDialog& OpenLoadDialog(QWidget& aParent, const FileQuestion& aQuestion) {
  QFileDialog& dialog = MakeDialog(aParent, aQuestion);
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.open();
  return dialog;
}

QFileDialog& OpenSaveDialog(QWidget& aParent, const FileQuestion& aQuestion) {
  QFileDialog& dialog = MakeDialog(aParent, aQuestion);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(aQuestion.suffix);
  dialog.selectFile(aQuestion.name);
  dialog.open();
  return dialog;
}

} // namespace krviewer

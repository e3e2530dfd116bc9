#include "window/failurebox.h"

#include <QMessageBox>

namespace krviewer {

void ShowFailure(QWidget* aParent, const QString& aTitle, const KrResult& aFailure) {
  auto* const box = new QMessageBox(QMessageBox::Warning, aTitle, {}, QMessageBox::Ok, aParent);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setTextFormat(Qt::PlainText);
  const KrString& reason = aFailure.GetDescription();
  box->setText(QString::fromUtf8(reason.IsEmpty() ? aFailure.GetCodeString().CStr() : reason.CStr()));
  box->open();
}

} // namespace krviewer

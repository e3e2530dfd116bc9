#include "window/failurebox.h"

#include "window/showntext.h"

#include <QMessageBox>

namespace krviewer {

void ShowFailure(QWidget* aParent, const QString& aTitle, const KrResult& aFailure) {
  auto* const box = new QMessageBox(QMessageBox::Warning, aTitle, {}, QMessageBox::Ok, aParent);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setTextFormat(Qt::PlainText);
  const KrString& reason = aFailure.GetDescription();
  box->setText(ToMessage(ToText(reason.IsEmpty() ? aFailure.GetCodeString() : reason)));
  box->open();
}

} // namespace krviewer

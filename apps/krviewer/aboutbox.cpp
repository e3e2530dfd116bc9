#include "aboutbox.h"

#include <QApplication>
#include <QMessageBox>
#include <QStyle>

namespace krviewer {

QString GetAboutText() {
  return QStringLiteral("krviewer %1\n\nShows machine-vision cameras live, with their features.\n\nQt %2")
      .arg(QStringLiteral(KRGUI_VERSION), QString::fromLatin1(qVersion()));
}

void ShowAboutBox(QWidget& aWindow) {
  const QString name = QStringLiteral("aboutBox");
  if (auto* const open = aWindow.findChild<QMessageBox*>(name)) {
    open->raise();
    open->activateWindow();
    return;
  }
  auto* const box =
      new QMessageBox(QMessageBox::NoIcon, QStringLiteral("About krviewer"), GetAboutText(), QMessageBox::Ok, &aWindow);
  box->setObjectName(name);
  box->setTextFormat(Qt::PlainText);
  box->setAttribute(Qt::WA_DeleteOnClose);
  const int size = box->style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, box);
  box->setIconPixmap(QApplication::windowIcon().pixmap(QSize(size, size), box->devicePixelRatioF()));
  box->setModal(false);
  box->show();
}

} // namespace krviewer

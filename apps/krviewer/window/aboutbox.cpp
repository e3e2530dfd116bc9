#include "window/aboutbox.h"

#include "picturelibraries.h"

#include <QApplication>
#include <QMessageBox>
#include <QStyle>

namespace krviewer {

QString MakeAboutText(const QStringList& aLibraries) {
  QStringList libraries = {QStringLiteral("Qt %1").arg(QString::fromLatin1(qVersion()))};
  libraries += aLibraries;
  for (const std::string& library : krapps::GetPictureLibraries())
    libraries += QString::fromStdString(library);
  return QStringLiteral("krviewer %1\n\nShows machine-vision cameras live, with all their features.\n\nWith %2")
      .arg(QStringLiteral(KRGUI_VERSION), libraries.join(QStringLiteral(", ")));
}

void ShowAboutBox(QWidget& aWindow, const QStringList& aLibraries) {
  const QString name = QStringLiteral("aboutBox");
  if (auto* const open = aWindow.findChild<QMessageBox*>(name)) {
    open->raise();
    open->activateWindow();
    return;
  }
  auto* const box = new QMessageBox(QMessageBox::NoIcon, QStringLiteral("About krviewer"), MakeAboutText(aLibraries),
                                    QMessageBox::Ok, &aWindow);
  box->setObjectName(name);
  box->setTextFormat(Qt::PlainText);
  box->setAttribute(Qt::WA_DeleteOnClose);
  const int size = box->style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, box);
  box->setIconPixmap(QApplication::windowIcon().pixmap(QSize(size, size), box->devicePixelRatioF()));
  box->setModal(false);
  box->show();
}

} // namespace krviewer

#include "window/keysbox.h"

#include <QAction>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QRegularExpression>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace krviewer {

namespace {

/// Of the list, in letters and lines.
constexpr int kWidth = 60;
constexpr int kHeight = 34;

// An entry's words without the mark of its letter.
QString GetWords(const QAction& aAction) {
  QString words = aAction.text();
  return words.remove(QRegularExpression(QStringLiteral("&(?!&)"))).remove(QStringLiteral("…"));
}

QTreeWidget* MakeList(const QWidget& aWindow) {
  auto* const list = new QTreeWidget;
  list->setAccessibleName(QStringLiteral("Keys"));
  list->setHeaderLabels({QStringLiteral("Key"), QStringLiteral("What it does")});
  list->setRootIsDecorated(false);
  for (const QAction* const action : aWindow.actions())
    if (!action->shortcut().isEmpty())
      new QTreeWidgetItem(list, {action->shortcut().toString(QKeySequence::NativeText), GetWords(*action)});
  list->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
  list->setCurrentItem(list->topLevelItem(0));
  return list;
}

} // namespace

void ShowKeysBox(QWidget& aWindow) {
  const QString name = QStringLiteral("keysBox");
  if (auto* const open = aWindow.findChild<QDialog*>(name)) {
    open->raise();
    open->activateWindow();
    return;
  }
  auto* const box = new QDialog(&aWindow);
  box->setObjectName(name);
  box->setWindowTitle(QStringLiteral("Keys"));
  box->setAttribute(Qt::WA_DeleteOnClose);
  auto* const layout = new QVBoxLayout(box);
  layout->addWidget(MakeList(aWindow));
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  QObject::connect(buttons, &QDialogButtonBox::rejected, box, &QDialog::reject);
  layout->addWidget(buttons);
  box->resize(box->fontMetrics().averageCharWidth() * kWidth, box->fontMetrics().height() * kHeight);
  box->show();
}

} // namespace krviewer

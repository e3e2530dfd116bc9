#include "frame/filelistmenu.h"

#include <QAbstractItemView>
#include <QAction>
#include <QFile>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QMenu>

namespace krgui {

namespace {

// The toolkit's names.
constexpr const char* kLists[] = {"listView", "treeView"};
constexpr const char* kRename = "qt_rename_action";
constexpr const char* kShowHidden = "qt_show_hidden_action";
constexpr const char* kNewFolder = "qt_new_folder_action";

bool MayBeRenamed(const QModelIndex& aFile) {
  const auto rights = QFile::Permissions(aFile.parent().data(QFileSystemModel::FilePermissions).toInt());
  return rights.testFlag(QFile::WriteUser);
}

void ShowMenu(const QFileDialog& aDialog, QAbstractItemView& aList, const QPoint& aPoint) {
  auto* const menu = new QMenu(&aList);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  const QModelIndex index = aList.indexAt(aPoint);
  if (auto* const rename = aDialog.findChild<QAction*>(kRename); rename != nullptr && index.isValid()) {
    rename->setEnabled(MayBeRenamed(index.siblingAtColumn(0)));
    menu->addAction(rename);
    menu->addSeparator();
  }
  for (const char* const name : {kShowHidden, kNewFolder})
    if (auto* const action = aDialog.findChild<QAction*>(name); action != nullptr && action->isVisible())
      menu->addAction(action);
  menu->popup(aList.viewport()->mapToGlobal(aPoint));
}

} // namespace

void ReplaceListMenus(QFileDialog& aDialog) {
  for (const char* const name : kLists) {
    auto* const list = aDialog.findChild<QAbstractItemView*>(name);
    if (list == nullptr)
      continue;
    QObject::disconnect(list, &QWidget::customContextMenuRequested, &aDialog, nullptr);
    QObject::connect(list, &QWidget::customContextMenuRequested, &aDialog,
                     [&aDialog, list](const QPoint& aPoint) { ShowMenu(aDialog, *list, aPoint); });
  }
}

} // namespace krgui

#include "browser/gridmenu.h"

#include "frame/contextmenu.h"
#include "platform/toqstring.h"
#include "res/menus.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeySequence>
#include <QMenu>

#include <algorithm>
#include <array>
#include <utility>

namespace krgui {

namespace {

struct CopyCommand {
  int id;
  RowPart part;
};

constexpr std::array kCopyCommands = {
    CopyCommand{kCopyRowCommandID, RowPart::Row},     CopyCommand{kCopyNameCommandID, RowPart::Name},
    CopyCommand{kCopyValueCommandID, RowPart::Value}, CopyCommand{kCopyNameAndValueCommandID, RowPart::NameAndValue},
    CopyCommand{kCopyErrorCommandID, RowPart::Error},
};

/// Null for a command that is not the grid's own.
const CopyCommand* FindCopyCommand(int aID) {
  const auto* const found = std::find_if(kCopyCommands.begin(), kCopyCommands.end(),
                                         [aID](const CopyCommand& aCommand) { return aCommand.id == aID; });
  return found == kCopyCommands.end() ? nullptr : found;
}

/// Null for a row that is not there.
const TreeItemData* FindNode(const BrowserTree& aTree, GridItem aItem) {
  const BrowserTree::Item* item = aTree.Find(aItem);
  return item != nullptr ? item->node : nullptr;
}

/// Beside the text, also where the platform's menus show none; what the key does is the grid's.
void ShowKey(QAction& aAction, QKeySequence::StandardKey aKey) {
  aAction.setShortcut(aKey);
  aAction.setShortcutContext(Qt::WidgetShortcut);
  aAction.setShortcutVisibleInContextMenu(true);
}

} // namespace

bool CopyRowPart(const BrowserTree& aTree, GridItem aItem, RowPart aPart) {
  const TreeItemData* const node = FindNode(aTree, aItem);
  const std::optional<KrString> text = node != nullptr ? ReadRowPart(*node, aPart) : std::nullopt;
  if (text)
    QGuiApplication::clipboard()->setText(ToQString(*text));
  return text.has_value();
}

GridMenu::GridMenu(const BrowserTree& aTree) : mTree(aTree), mMenuID(kPropertiesGridMenuID) {}

void GridMenu::SetTable(int aMenuID, std::function<void(int)> aPerform) {
  mMenuID = aMenuID;
  mPerform = std::move(aPerform);
}

void GridMenu::Show(QWidget& aOwner, GridItem aItem, const QPoint& aPoint) {
  const MenuTemplate* table = FindMenu(mMenuID);
  if (table == nullptr || mOpen)
    return;
  QMenu* menu = MakeContextMenu(*table, &aOwner, aOwner, [this, aItem](int aCommand) { Perform(aItem, aCommand); });
  if (!DisableWhatMakesNoSense(*menu, aItem)) {
    menu->deleteLater();
    return;
  }
  mOpen = menu;
  menu->popup(aPoint);
}

/// Whether anything is left that can be chosen. What there is a key for says which.
bool GridMenu::DisableWhatMakesNoSense(const QMenu& aMenu, GridItem aItem) const {
  const TreeItemData* const node = FindNode(mTree, aItem);
  bool isAnyEnabled = false;
  for (QAction* action : aMenu.actions()) {
    if (action->data().toInt() == kCopyRowCommandID)
      ShowKey(*action, QKeySequence::Copy);
    if (const CopyCommand* command = FindCopyCommand(action->data().toInt()))
      action->setEnabled(node != nullptr && GetRowPart(*node, command->part).has_value());
    isAnyEnabled = isAnyEnabled || action->isEnabled();
  }
  return isAnyEnabled;
}

void GridMenu::Perform(GridItem aItem, int aCommand) const {
  if (const CopyCommand* command = FindCopyCommand(aCommand)) {
    CopyRowPart(mTree, aItem, command->part);
    return;
  }
  // It may end the grid and this with it.
  const std::function<void(int)> perform = mPerform;
  if (perform)
    perform(aCommand);
}

} // namespace krgui

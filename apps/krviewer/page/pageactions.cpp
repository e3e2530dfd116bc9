#include "page/pageactions.h"

#include "page/camerapage.h"
#include "page/pagecommands.h"
#include "window/showntext.h"

#include <QAction>
#include <QMenu>
#include <QToolBar>

namespace krviewer {

PageActions::PageActions(QWidget& aWindow, std::function<CameraPage*()> aGetPage) : mGetPage(std::move(aGetPage)) {
  for (const PageCommand& command : GetPageCommands()) {
    auto* const action = new QAction(MakeToolIcon(command.glyph), QString::fromUtf8(command.text), &aWindow);
    action->setObjectName(QString::fromLatin1(command.name));
    if (command.key != 0)
      action->setShortcut(QKeySequence(command.key));
    action->setCheckable(command.isChecked != nullptr);
    action->setEnabled(false);
    connect(action, &QAction::triggered, this, [this, &command] { Run(command); });
    // So that the keys work while the menu is hidden.
    aWindow.addAction(action);
    mActions.emplace_back(&command, action);
  }
}

void PageActions::AddTo(QMenu& aMenu, CommandMenu aKind) const {
  for (const auto& [command, action] : mActions) {
    if (command->menu != aKind)
      continue;
    if (command->beginsGroup)
      aMenu.addSeparator();
    aMenu.addAction(action);
  }
}

void PageActions::AddTo(QToolBar& aBar) const {
  CommandMenu last = CommandMenu::File;
  for (const auto& [command, action] : mActions) {
    if (!command->isInToolBar)
      continue;
    if (command->menu != last)
      aBar.addSeparator();
    last = command->menu;
    aBar.addAction(action);
  }
}

void PageActions::LookAgain() {
  CameraPage* const page = mGetPage();
  for (const auto& [command, action] : mActions) {
    action->setEnabled(page && command->isOffered(*page));
    if (command->isChecked)
      action->setChecked(page && command->isChecked(*page));
    if (!command->getHindrance)
      continue;
    const QString hindrance = page ? command->getHindrance(*page) : QString();
    action->setToolTip(hindrance.isEmpty() ? QString() : ToToolTip(hindrance));
  }
}

// The entry looks as the page is, whatever the click made of it.
void PageActions::Run(const PageCommand& aCommand) {
  CameraPage* const page = mGetPage();
  if (page && aCommand.isOffered(*page))
    page->Call(aCommand.run);
}

} // namespace krviewer

#include "frame/contextmenu.h"

#include "res/menus.h"

#include <QMenu>

#include <utility>

namespace krgui {

namespace {

QString ToText(std::string_view aText) {
  return QString::fromUtf8(aText.data(), static_cast<qsizetype>(aText.size()));
}

} // namespace

QMenu* MakeContextMenu(const MenuTemplate& aTemplate, QWidget* aParent, QObject& aContext,
                       std::function<void(int)> aPerform) {
  const SubmenuTemplate& main = aTemplate.submenus.front();
  auto* menu = new QMenu(ToText(main.text), aParent);
  menu->setObjectName(QStringLiteral("menu%1").arg(aTemplate.id));
  menu->setAttribute(Qt::WA_DeleteOnClose);
  for (const MenuItemTemplate& item : main.items)
    menu->addAction(ToText(item.text))->setData(item.commandID);
  QObject::connect(menu, &QMenu::triggered, &aContext,
                   [perform = std::move(aPerform)](const QAction* aAction) { perform(aAction->data().toInt()); });
  return menu;
}

} // namespace krgui

#pragma once
// A window's context menu from its table. It does not wait for the user: when a command is chosen, the window may show
// something else.

#include <functional>

class QMenu;
class QObject;
class QWidget;

namespace krgui {

struct MenuTemplate;

/// Makes a menu of the table's first submenu. It deletes itself when it closes; the parent owns it until then.
/// aPerform gets the command that is chosen, as long as aContext lives.
QMenu* MakeContextMenu(const MenuTemplate& aTemplate, QWidget* aParent, QObject& aContext,
                       std::function<void(int)> aPerform);

} // namespace krgui

#pragma once
// The entries that do something with the camera of a window's current page, for menus and the tool bar. What they do is
// the page's; which page is current is the window's.

#include <QObject>

#include <functional>
#include <utility>
#include <vector>

class QAction;
class QMenu;
class QToolBar;
class QWidget;

namespace krviewer {

class CameraPage;
struct PageCommand;

enum class CommandMenu { File, Camera, View, MovePanel, Tools };

/// Thread: user interface. Ownership: the window owns the entries.
class PageActions : public QObject {
  Q_OBJECT

public:
  /// aGetPage gives the current page, or null.
  PageActions(QWidget& aWindow, std::function<CameraPage*()> aGetPage);

  /// Adds the entries of a menu at its end, in their order.
  void AddTo(QMenu& aMenu, CommandMenu aKind) const;
  /// Adds those that are used most.
  void AddTo(QToolBar& aBar) const;
  /// Enables what makes sense at the moment; to be called often.
  void LookAgain();

private:
  void Run(const PageCommand& aCommand);

  const std::function<CameraPage*()> mGetPage;
  std::vector<std::pair<const PageCommand*, QAction*>> mActions; ///< In the commands' order.
};

} // namespace krviewer

#pragma once
// Tells that another row was selected, once for each action of user or program, when the action is over: the one who
// hears of it may end the grid.

#include <functional>
#include <memory>

class QObject;

namespace krgui {

/// Thread: user interface. Ownership: shared by the grid and by the actions that are on the stack.
class GridSelection {
public:
  /// While one lives, changes are noted; the end of the outermost one tells of them.
  class Action {
  public:
    explicit Action(std::shared_ptr<GridSelection> aSelection);
    ~Action();
    Action(const Action&) = delete;
    Action& operator=(const Action&) = delete;

  private:
    const std::shared_ptr<GridSelection> mSelection;
  };

  void SetHandler(std::function<void()> aHandler) { mHandler = std::move(aHandler); }
  /// Another row, or none, is selected. Outside of every action the handler is called from the event loop, as long as
  /// aContext lives.
  void NoteChange(QObject& aContext);
  /// The grid has ended: nobody is told anything any more.
  void End() { mHandler = nullptr; }

private:
  void Tell();

  std::function<void()> mHandler;
  int mActions = 0;
  bool mHasChanged = false;
};

} // namespace krgui

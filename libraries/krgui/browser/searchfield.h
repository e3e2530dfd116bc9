#pragma once
// The line that is typed into: which keys move on, which edit, and which are dropped. What is found is left to the
// search bar.

#include <QLineEdit>

#include <functional>

namespace krgui {

/// Thread: user interface. Ownership: a widget, which belongs to its parent.
class SearchField : public QLineEdit {
public:
  /// What Enter does, alone and with Shift. Either may end the field.
  SearchField(std::function<void()> aMoveToNext, std::function<void()> aMoveToPrevious, QWidget* aParent);

protected:
  bool event(QEvent* aEvent) override;
  void keyPressEvent(QKeyEvent* aEvent) override;

private:
  void HandleControlKey(QKeyEvent& aEvent);

  const std::function<void()> mMoveToNext;
  const std::function<void()> mMoveToPrevious;
};

} // namespace krgui

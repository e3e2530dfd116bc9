#pragma once
// The line that is typed into: which keys move on, which edit, and which are dropped. What is found is left to the
// search bar.

#include <QLineEdit>

#include <functional>

namespace krgui {

/// Thread: user interface. Ownership: a widget, which belongs to its parent.
class SearchField : public QLineEdit {
public:
  /// What Enter does, and what is done about another text. Either may end the field.
  SearchField(std::function<void()> aMoveToNext, std::function<void()> aOnEdited, QWidget* aParent);

  /// Tells of another text now, if that was not done yet. Of what the user does it is told when all of that is over, as
  /// the line that edits would not survive its end.
  void TellEdit();

protected:
  bool event(QEvent* aEvent) override;
  void keyPressEvent(QKeyEvent* aEvent) override;

private:
  void HandleControlKey(QKeyEvent& aEvent);

  const std::function<void()> mMoveToNext;
  const std::function<void()> mOnEdited;
  int mEvents = 0; ///< Being handled, one inside the other.
  bool mIsEdited = false;
  bool mIsEditedByEvent = false;
};

} // namespace krgui

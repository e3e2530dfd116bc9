#pragma once
// What a list whose choices have consequences needs: the mouse wheel does not choose, and when it is opened with
// nothing selected, its first entry is marked, from which the arrow keys go on.

#include <QObject>

class QComboBox;

namespace krgui {

/// Thread: user interface. Ownership: the list's.
class ChoiceList : public QObject {
public:
  explicit ChoiceList(QComboBox& aList);

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  QComboBox& mList;
};

} // namespace krgui

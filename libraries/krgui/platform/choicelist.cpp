#include "platform/choicelist.h"

#include <QAbstractItemModel>
#include <QAbstractItemView>
#include <QComboBox>
#include <QEvent>

namespace krgui {

ChoiceList::ChoiceList(QComboBox& aList) : QObject(&aList), mList(aList) {
  mList.installEventFilter(this);
  mList.view()->installEventFilter(this);
}

bool ChoiceList::eventFilter(QObject* aWatched, QEvent* aEvent) {
  // Not that of the list that is open: that is a window of its own.
  if (aWatched == &mList && aEvent->type() == QEvent::Wheel) {
    aEvent->ignore();
    return true;
  }
  if (aWatched != &mList && aEvent->type() == QEvent::Show && mList.currentIndex() < 0)
    mList.view()->setCurrentIndex(mList.model()->index(0, mList.modelColumn()));
  return QObject::eventFilter(aWatched, aEvent);
}

} // namespace krgui

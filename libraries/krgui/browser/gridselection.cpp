#include "browser/gridselection.h"

#include <QMetaObject>
#include <QObject>

#include <utility>

namespace krgui {

GridSelection::Action::Action(std::shared_ptr<GridSelection> aSelection) : mSelection(std::move(aSelection)) {
  ++mSelection->mActions;
}

GridSelection::Action::~Action() {
  if (--mSelection->mActions == 0)
    mSelection->Tell();
}

void GridSelection::NoteChange(QObject& aContext) {
  mHasChanged = true;
  if (mActions == 0)
    QMetaObject::invokeMethod(
        &aContext, [this] { Tell(); }, Qt::QueuedConnection);
}

void GridSelection::Tell() {
  if (!std::exchange(mHasChanged, false))
    return;
  // A copy: the handler may set another one.
  const std::function<void()> handler = mHandler;
  if (handler)
    handler();
}

} // namespace krgui

#include "platform/applicationend.h"

#include <QCoreApplication>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <utility>
#include <vector>

namespace krgui {

namespace {

struct Watchers {
  std::vector<ApplicationEnd*> all;
  bool isRoutineAdded = false; ///< The toolkit forgets its routines with each application object.
};

/// Never deleted: static window objects may end after anything else.
Watchers& GetWatchers() {
  static auto* const watchers = new Watchers;
  return *watchers;
}

std::atomic<bool> isProcessEnding = false;

} // namespace

ApplicationEnd::ApplicationEnd(std::function<void()> aOnEnd) : mOnEnd(std::move(aOnEnd)) {}

ApplicationEnd::~ApplicationEnd() {
  if (mIsWatching) {
    std::erase(GetWatchers().all, this);
  }
}

void ApplicationEnd::Watch() {
  Watchers& watchers = GetWatchers();
  if (!std::exchange(watchers.isRoutineAdded, true)) {
    qAddPostRoutine(&ApplicationEnd::TellAll);
  }
  if (!std::exchange(mIsWatching, true)) {
    watchers.all.push_back(this);
  }
  if (!std::exchange(mIsProcessWatched, true)) {
    // Once for each object: what is registered after an object was made is called before that object ends. Without room
    // for it, only a static window's end with the process is less orderly.
    (void)std::atexit([] { isProcessEnding = true; });
  }
}

bool ApplicationEnd::IsProcessEnding() {
  return isProcessEnding;
}

void ApplicationEnd::TellAll() {
  Watchers& watchers = GetWatchers();
  watchers.isRoutineAdded = false;
  while (!watchers.all.empty()) {
    ApplicationEnd* next = watchers.all.back();
    watchers.all.pop_back();
    next->mIsWatching = false;
    // By copy, as the call may end the object.
    const auto onEnd = next->mOnEnd;
    onEnd();
  }
}

} // namespace krgui

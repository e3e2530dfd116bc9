#pragma once
// The thread on which a link's sink hears of loss and return, so that the sink may call whatever it likes.

#include "krbase/krexport.h"
#include "krsystem/idevicelink.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

namespace krsystem {

/// Tells a link's sink what is reported, in that order; an exception of the sink is logged.
///
/// Thread: any, but for construction and destruction; destruction waits for a call that runs.
/// Ownership: borrows the sink until another is set.
class KR_EXPORT LinkEvents {
public:
  LinkEvents();
  ~LinkEvents();

  /// Returns when no call of another sink is running on another thread.
  void SetSink(IDeviceLinkSink* aSink);
  /// Events wait until there is a sink; of several of one kind in a row the last one alone.
  void ReportLost(const KrResult& aReason);
  /// The device that was lost answers again.
  void ReportBack();
  /// What was reported and not heard yet is heard by nobody.
  void Forget();

private:
  using Event = std::optional<KrResult>; // The reason of a loss; nothing for the return.

  void Report(Event aEvent);
  void Deliver();

  std::mutex mMutex; // Guards the members from here to mThread.
  std::condition_variable mChanged;
  std::deque<Event> mEvents;
  IDeviceLinkSink* mSink = nullptr;
  IDeviceLinkSink* mCalled = nullptr; // Whose call runs.
  bool mEnding = false;
  std::thread mThread;
};

} // namespace krsystem

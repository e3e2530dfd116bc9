#pragma once
// The thread on which a link's sink hears of loss and return, so that the sink may call whatever it likes.

#include "krsystem/idevicelink.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

namespace krtransport {

/// Thread: any, but for construction and destruction; destruction waits for a call that runs.
/// Ownership: borrows the sink until another is set.
class LinkEvents {
public:
  LinkEvents();
  ~LinkEvents();

  /// Returns when no call of the former sink is running on another thread.
  void SetSink(krsystem::IDeviceLinkSink* aSink);
  /// Events wait until there is a sink; of several of one kind in a row the last one alone.
  void ReportLost(const KrResult& aReason);
  void ReportBack();

private:
  using Event = std::optional<KrResult>; // The reason of a loss; nothing for the return.

  void Report(Event aEvent);
  void Deliver();

  std::mutex mMutex; // Guards the members from here to mThread.
  std::condition_variable mChanged;
  std::deque<Event> mEvents;
  krsystem::IDeviceLinkSink* mSink = nullptr;
  krsystem::IDeviceLinkSink* mCalled = nullptr; // Whose call runs.
  bool mEnding = false;
  std::thread mThread;
};

} // namespace krtransport

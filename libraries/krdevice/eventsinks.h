#pragma once
// The sinks of one device and the calls that are under way, so that a sink that was taken out is not called any more.
// What the calls say is left to the device.

#include "krdevice/krdevice.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace krdevice {

/// Thread: any. Ownership: borrows the sinks between Register and Unregister.
class EventSinks {
public:
  /// InvalidInput for null or one that is there.
  KrResult Register(KrDeviceEventSink* aSink);
  /// Returns when no call of the sink is running on another thread; InvalidInput for one that is not there.
  KrResult Unregister(KrDeviceEventSink* aSink);
  /// Calls each sink that is registered when its turn comes, with no lock held.
  void Notify(const std::function<void(KrDeviceEventSink&)>& aCall);

private:
  struct RunningCall {
    KrDeviceEventSink* sink;
    std::thread::id thread;
  };

  bool IsRegistered(const KrDeviceEventSink* aSink) const;
  bool BeginCall(KrDeviceEventSink* aSink);
  void EndCall(KrDeviceEventSink* aSink);

  std::mutex mMutex; // Guards all members.
  std::condition_variable mCallEnded;
  std::vector<KrDeviceEventSink*> mSinks;
  std::vector<RunningCall> mRunning;
};

} // namespace krdevice

#include "eventsinks.h"

#include "krbase/krlogger.h"

#include <algorithm>
#include <exception>
#include <string>

namespace krdevice {

KrResult EventSinks::Register(KrDeviceEventSink* aSink) {
  if (!aSink)
    return {KrResult::Code::InvalidInput, "Registering a device's event sink: there is none (null)."};
  const std::lock_guard lock(mMutex);
  if (IsRegistered(aSink))
    return {KrResult::Code::InvalidInput, "Registering a device's event sink: it is registered already."};
  mSinks.push_back(aSink);
  return {};
}

KrResult EventSinks::Unregister(KrDeviceEventSink* aSink) {
  std::unique_lock lock(mMutex);
  if (std::erase(mSinks, aSink) == 0)
    return {KrResult::Code::InvalidInput, "Unregistering a device's event sink: it is not registered."};
  mCallEnded.wait(lock, [this, aSink] {
    return std::ranges::none_of(mRunning, [aSink](const RunningCall& aCall) {
      return aCall.sink == aSink && aCall.thread != std::this_thread::get_id();
    });
  });
  return {};
}

void EventSinks::Notify(const std::function<void(KrDeviceEventSink&)>& aCall) {
  std::vector<KrDeviceEventSink*> sinks;
  {
    const std::lock_guard lock(mMutex);
    sinks = mSinks;
  }
  for (KrDeviceEventSink* sink : sinks) {
    if (!BeginCall(sink))
      continue;
    try {
      aCall(*sink);
    } catch (const std::exception& error) {
      KrLogger("KrDevice")
          .Log(KrLogLevel::Error, {"KrDevice::Notify", "krdevice"},
               std::string("A device's event sink threw an exception: ") + error.what());
    } catch (...) {
      KrLogger("KrDevice")
          .Log(KrLogLevel::Error, {"KrDevice::Notify", "krdevice"},
               "A device's event sink threw an exception of unknown type.");
    }
    EndCall(sink);
  }
}

bool EventSinks::IsRegistered(const KrDeviceEventSink* aSink) const {
  return std::ranges::find(mSinks, aSink) != mSinks.end();
}

bool EventSinks::BeginCall(KrDeviceEventSink* aSink) {
  const std::lock_guard lock(mMutex);
  if (!IsRegistered(aSink))
    return false;
  mRunning.push_back({aSink, std::this_thread::get_id()});
  return true;
}

void EventSinks::EndCall(KrDeviceEventSink* aSink) {
  const std::lock_guard lock(mMutex);
  const auto call = std::ranges::find_if(mRunning, [aSink](const RunningCall& aCall) {
    return aCall.sink == aSink && aCall.thread == std::this_thread::get_id();
  });
  mRunning.erase(call);
  mCallEnded.notify_all();
}

} // namespace krdevice

#pragma once
// What tests of KrSystem share: a sink that records, and what a system lists.

#include "await.h"
#include "faketransport.h"
#include "krsystem/krsystem.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <gmock/gmock.h>
#include <mutex>
#include <vector>

class RecordingSink : public KrSystemEventSink {
public:
  void OnDeviceFound(const KrInterface*, const KrDeviceInfo* aDevice, bool& aIgnore) override {
    EXPECT_EQ(mRunning.fetch_add(1), 0) << "two calls at a time";
    mIDs.push_back(aDevice->GetUniqueID());
    if (onFound)
      onFound(*aDevice, aIgnore);
    mRunning.fetch_sub(1);
  }
  const std::vector<KrString>& GetIDs() const { return mIDs; }

  std::function<void(const KrDeviceInfo&, bool&)> onFound;

private:
  std::atomic<int> mRunning = 0;
  std::vector<KrString> mIDs;
};

inline std::vector<KrString> ListDevices(const KrSystem& aSystem) {
  std::vector<KrString> ids;
  for (std::size_t i = 0; i < aSystem.GetDeviceCount(); ++i)
    ids.push_back(aSystem.GetDeviceInfo(i)->GetUniqueID());
  return ids;
}

inline std::vector<KrString> ListInterfaces(const KrSystem& aSystem) {
  std::vector<KrString> ids;
  for (std::size_t i = 0; i < aSystem.GetInterfaceCount(); ++i)
    ids.push_back(aSystem.GetInterface(i)->GetUniqueID());
  return ids;
}

// Waits for the cancellation of a round, with a limit that is reached only when there is none.
inline KrResult WaitForCancel(const krsystem::DiscoveryRequest& aRequest) {
  std::mutex mutex;
  std::condition_variable_any cancelled;
  std::unique_lock lock(mutex);
  cancelled.wait_for(lock, aRequest.cancel, krtest::GetGenerousLimit(), [] { return false; });
  return aRequest.cancel.stop_requested() ? KrResult::Code::Aborted : KrResult::Code::TimeLimitExceeded;
}

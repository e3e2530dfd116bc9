#pragma once
// Lets a test know when the notification thread of a browsed camera has nothing left to do.

#include "changingcamera.h"

#include <chrono>
#include <functional>
#include <string>
#include <thread>

namespace krgui {

/// Stands on a feature of the test's own, which nothing else changes.
class NotificationWait {
public:
  explicit NotificationWait(KrGenInteger& aFeature) : mFeature(aFeature) { mSink.Listen(aFeature); }

  /// Returns when the thread has been through all that was queued before.
  void Await() {
    EXPECT_TRUE(mFeature.SetValue(++mValue).IsOK());
    mSink.WaitForCalls(static_cast<std::size_t>(mValue));
  }

private:
  KrGenInteger& mFeature;
  RecordingSink mSink;
  std::int64_t mValue = 0;
};

/// The node of such a feature.
inline const std::string kWaitNode = "<Integer Name=\"Wait\"><Value>0</Value></Integer>\n";

} // namespace krgui

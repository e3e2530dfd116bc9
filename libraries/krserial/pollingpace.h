#pragma once
// How long a line behind features is left alone between two questions: shortly while bytes move, longer and longer
// while none do. Who asks, and what traffic is, is left to FeatureChannel.

#include <algorithm>
#include <chrono>

namespace krserial {

/// Thread: one at a time.
class PollingPace {
public:
  using Duration = std::chrono::milliseconds;

  static constexpr Duration kQuickest{20};
  /// Below the time for which a terminal waits in one read, and hardly felt by whoever types.
  static constexpr Duration kSlowest{200};

  Duration GetPause() const { return mPause; }
  void OnTraffic() { mPause = kQuickest; }
  void OnSilence() { mPause = std::min(2 * mPause, kSlowest); }

private:
  Duration mPause = kQuickest;
};

} // namespace krserial

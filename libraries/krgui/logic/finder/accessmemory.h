#pragma once
// Remembers which devices did not say who controls them. Asking one that is silent takes as long as the answer is
// waited for, and the user interface waits with it; so it is asked again only after a while. How a device is asked is
// left to the finder.

#include "krbase/krstring.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>

namespace krgui {

/// Thread: user interface. Ownership: the window that shows the devices.
class AccessMemory {
public:
  using Clock = std::chrono::steady_clock;
  /// How long a device that was silent is not asked again.
  static constexpr std::chrono::seconds kSilence{10};
  /// What a device that does not say is shown as: no known type.
  static constexpr std::int32_t kUnknown = 0;

  /// aAsk asks the device of an address and gives nothing when that does not say; aNow gives the time.
  AccessMemory(std::function<std::optional<std::int32_t>(const KrString& aAddress)> aAsk,
               std::function<Clock::time_point()> aNow);

  /// The type of access as the device says it now; kUnknown, at once, for one that was silent a short while ago.
  std::int32_t Query(const KrString& aAddress);
  /// Every device is asked again: the user wants to know it anew.
  void Forget();

private:
  const std::function<std::optional<std::int32_t>(const KrString& aAddress)> mAsk;
  const std::function<Clock::time_point()> mNow;
  std::map<KrString, Clock::time_point> mSilentUntil; ///< By address.
};

} // namespace krgui

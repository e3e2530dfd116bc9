#include "logic/finder/accessmemory.h"

#include <utility>

namespace krgui {

AccessMemory::AccessMemory(std::function<std::optional<std::int32_t>(const KrString& aAddress)> aAsk,
                           std::function<Clock::time_point()> aNow)
    : mAsk(std::move(aAsk)), mNow(std::move(aNow)) {}

std::int32_t AccessMemory::Query(const KrString& aAddress) {
  const Clock::time_point now = mNow();
  std::erase_if(mSilentUntil, [now](const auto& aEntry) { return aEntry.second <= now; });
  if (mSilentUntil.contains(aAddress)) {
    return kUnknown;
  }
  const std::optional<std::int32_t> answer = mAsk(aAddress);
  if (!answer) {
    // From the end of the waiting on, else a long one would be repeated all the sooner.
    mSilentUntil[aAddress] = mNow() + kSilence;
  }
  return answer.value_or(kUnknown);
}

void AccessMemory::Forget() {
  mSilentUntil.clear();
}

} // namespace krgui

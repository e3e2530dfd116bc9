#include "logic/serial/loopbackcheck.h"

#include <algorithm>

namespace krgui {

void LoopbackCheck::Expect(std::span<const std::uint8_t> aBytes) {
  const std::scoped_lock lock(mMutex);
  const std::size_t room = kMostExpected - mExpected.size();
  const std::span<const std::uint8_t> kept = aBytes.first(std::min(room, aBytes.size()));
  mExpected.insert(mExpected.end(), kept.begin(), kept.end());
}

void LoopbackCheck::Match(std::span<const std::uint8_t> aReceived) {
  const std::scoped_lock lock(mMutex);
  auto received = aReceived.begin();
  while (received != aReceived.end() && !mExpected.empty()) {
    if (*received == mExpected.front()) {
      --mOutstanding;
      ++received;
    }
    mExpected.pop_front();
  }
}

void LoopbackCheck::End() {
  const std::scoped_lock lock(mMutex);
  mOutstanding = 0;
  mExpected = {};
}

} // namespace krgui

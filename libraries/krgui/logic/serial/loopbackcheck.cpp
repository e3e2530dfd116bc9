#include "logic/serial/loopbackcheck.h"

namespace krgui {

void LoopbackCheck::Expect(std::span<const std::uint8_t> aBytes) {
  const std::scoped_lock lock(mMutex);
  mExpected.insert(mExpected.end(), aBytes.begin(), aBytes.end());
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

#include "acquisition/responsetimer.h"

#include <array>
#include <cstdint>

namespace krviewer {

namespace {

using std::chrono::steady_clock;

// The version of the standard: cameras on the network and on USB have it there, and it never changes.
constexpr std::uint64_t kRegister = 0x0000;
// Longer than others wait, so that it is not this access by which a slow camera comes to count as silent.
constexpr std::uint32_t kLimitMs = 5000;

} // namespace

void ResponseJudge::Note(std::chrono::milliseconds aTook) {
  const bool isSlow = aTook >= kSlow;
  mOthers = isSlow == mIsSlow ? 0 : mOthers + 1;
  if (mOthers < kAnswers)
    return;
  mIsSlow = isSlow;
  mOthers = 0;
}

void ResponseTimer::Follow(IKrRegisterPort& aPort) {
  Leave();
  mThread = std::jthread([this, &aPort](const std::stop_token& aStop) { Run(aStop, aPort); });
}

void ResponseTimer::Leave() {
  mThread = {};
  mIsSlow = false;
}

void ResponseTimer::Run(const std::stop_token& aStop, IKrRegisterPort& aPort) {
  ResponseJudge judge;
  while (!aStop.stop_requested()) {
    std::array<std::uint8_t, 4> bytes{};
    const auto asked = steady_clock::now();
    const KrResult answer = aPort.Read(kRegister, bytes.data(), bytes.size(), kLimitMs, aStop);
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - asked);
    // A camera that was silent a moment ago is not asked: what it does not answer takes as long as it may.
    if (answer == KrResult::Code::TimeLimitExceeded)
      judge.Note(std::chrono::milliseconds(kLimitMs));
    else if (answer.IsOK() || answer == KrResult::Code::ProtocolError)
      judge.Note(took);
    mIsSlow = judge.IsSlow();
    std::unique_lock lock(mMutex);
    (void)mNever.wait_for(lock, aStop, mPeriod, [] { return false; });
  }
}

} // namespace krviewer

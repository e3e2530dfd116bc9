#include "serialtraffic.h"

#include <algorithm>
#include <utility>

SerialTraffic::SerialTraffic(std::uint32_t aSeed, int aMostBytes, Exchange aExchange)
    : mMostBytes(aMostBytes), mExchange(std::move(aExchange)), mDice(aSeed) {}

SerialTraffic::~SerialTraffic() {
  Abandon();
}

void SerialTraffic::Start() {
  mIsLast = false;
  mThread = std::jthread([this](const std::stop_token& aStop) { Run(aStop); });
}

void SerialTraffic::Finish() {
  mIsLast = true;
  if (mThread.joinable())
    mThread.join();
}

void SerialTraffic::Abandon() {
  mThread.request_stop();
  Finish();
}

void SerialTraffic::Run(const std::stop_token& aStop) {
  while (!mIsLast && !aStop.stop_requested()) {
    std::string block(static_cast<std::size_t>(mDice.Draw(1, mMostBytes)), '\0');
    std::ranges::generate(block, [this] { return static_cast<char>(mDice.Draw(0, 255)); });
    const std::string back = mExchange(block, aStop);
    if (aStop.stop_requested())
      return;
    mFailures += back == block ? 0 : 1;
    mBytes += block.size();
  }
}

#include "logic/serial/receiving.h"

#include "krbase/krlogger.h"
#include "logic/serial/terminalmessages.h"

#include <array>
#include <span>
#include <utility>

namespace krgui {

Receiving::Receiving(ITerminalLine& aLine, TranscriptEncoder& aEncoder, LoopbackCheck& aCheck,
                     std::function<bool()> aIsLoopbackOn, std::shared_ptr<MessageQueue> aQueue, Clock aClock,
                     Pause aPause)
    : mLine(aLine), mEncoder(aEncoder), mCheck(aCheck), mIsLoopbackOn(std::move(aIsLoopbackOn)),
      mQueue(std::move(aQueue)), mClock(std::move(aClock)), mPause(std::move(aPause)) {}

void Receiving::Run(const std::stop_token& aStop) {
  KrLogger("KrGUILib")
      .Log(KrLogLevel::Info, {"SerialTerminalWnd::RxThread", "serialterminalwnd"}, "Terminal thread started");
  mRequestTime = mClock();
  while (!aStop.stop_requested()) {
    Receive(aStop);
    RequestFlush();
  }
}

void Receiving::Receive(const std::stop_token& aStop) {
  std::array<std::uint8_t, kReadSize> bytes{};
  std::uint32_t count = 0;
  const KrResult result = mLine.Read(bytes.data(), kReadSize, count, kReadTimeoutMs);
  if (result.IsOK()) {
    mEncoder.RenderBytes(bytes.data(), count);
    if (mIsLoopbackOn())
      mCheck.Match(std::span(bytes).first(count));
  } else if (result.GetCode() != KrResult::Code::TimeLimitExceeded) {
    mPause(kFailurePause, aStop);
  }
}

void Receiving::RequestFlush() {
  const std::uint32_t unflushed = mEncoder.GetUnflushedBytes();
  const std::chrono::milliseconds now = mClock();
  if (unflushed == 0 || (unflushed < kFlushBytes && now - mRequestTime < kFlushPeriod))
    return;
  mQueue->PostOnce({kFlushTranscriptMessage, 0, 0});
  mRequestTime = now;
}

} // namespace krgui

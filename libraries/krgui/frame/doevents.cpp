#include "frame/wnd.h"

#include "frame/wndbody.h"
#include "krbase/krlogger.h"
#include "platform/inputhold.h"
#include "platform/tickcount.h"

#include <string>

namespace krgui {

namespace {

constexpr std::uint32_t kLimitMs = 1000;
constexpr const char* kChannel = "KrGUILib";

constexpr KrLogSite MakeSite(int aLine) {
  return {"Wnd::DoEvents", "wnd", aLine};
}

constexpr KrLogSite kNotOpenSite = MakeSite(223);
constexpr KrLogSite kPumpedSite = MakeSite(227);
constexpr KrLogSite kTimeLimitSite = MakeSite(233);

KrResult ReportError(const KrLogSite& aSite, KrResult::Code aCode, const char* aText) {
  KrLogger(kChannel).Log(KrLogLevel::Error, aSite, aText);
  return {aCode, aText};
}

/// An opening as it was when pumping began. Every handler may close, reopen or delete the window; then nothing of it
/// may be touched any more.
class PumpedOpening {
public:
  PumpedOpening(std::weak_ptr<const bool> aWindow, std::shared_ptr<MessageQueue> aQueue)
      : mWindow(std::move(aWindow)), mQueue(std::move(aQueue)), mGeneration(mQueue->GetGeneration()) {}

  bool HasEnded() const { return mWindow.expired() || mQueue->GetGeneration() != mGeneration; }
  bool IsQueueEmpty() const { return mQueue->IsEmpty(); }

private:
  const std::weak_ptr<const bool> mWindow;
  const std::shared_ptr<MessageQueue> mQueue;
  const std::uint64_t mGeneration;
};

} // namespace

KrResult Wnd::ReportNotOpen() {
  return ReportError(kNotOpenSite, KrResult::Code::WrongState, "The window is not currently open.");
}

KrResult Wnd::DoEvents() {
  const std::uint32_t start = GetTickCount();
  mBody->deletions->Flush();
  if (!IsOpen()) {
    return ReportNotOpen();
  }
  const KrLogger logger(kChannel);
  const PumpedOpening opening(mBody->alive, mBody->queue);
  // A child is useless without the window around it, so all of that counts as its own.
  QWidget& dialog = *mBody->opening->dialog;
  const auto log = [&logger](std::uint32_t aNumber) {
    logger.Log(KrLogLevel::Debug, kPumpedSite, KrString("Pumped message " + std::to_string(aNumber)));
  };
  InputHold::Pump pump(GetShowMode() == Mode::Child ? *dialog.window() : dialog, log);
  for (;;) {
    bool wasOurs = true;
    if (std::optional<MessageQueue::Taken> message = mBody->queue->Take()) {
      log(message->Get().number);
      mBody->Dispatch(*message);
    } else {
      wasOurs = pump.Pass();
    }
    if (opening.HasEnded()) {
      return {};
    }
    if (!wasOurs) {
      if (opening.IsQueueEmpty()) {
        return {};
      }
      // A message that came meanwhile: the limit is for what has been handled.
      continue;
    }
    if (GetTickCount() - start > kLimitMs) {
      return ReportError(kTimeLimitSite, KrResult::Code::TimeLimitExceeded,
                         "Time limit exceeded while pumping UI messages");
    }
  }
}

} // namespace krgui

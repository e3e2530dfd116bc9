#include "krsystem/linkevents.h"

#include "krbase/krlogger.h"

#include <exception>
#include <string>
#include <utility>

namespace krsystem {

namespace {

void Call(IDeviceLinkSink& aSink, const std::optional<KrResult>& aLossReason) {
  try {
    if (aLossReason)
      aSink.OnLinkLost(*aLossReason);
    else
      aSink.OnLinkBack();
  } catch (const std::exception& error) {
    KrLogger("KrSystem")
        .Log(KrLogLevel::Error, {"LinkEvents::Deliver", "linkevents"},
             std::string("The sink of a link threw an exception: ") + error.what());
  } catch (...) {
    KrLogger("KrSystem")
        .Log(KrLogLevel::Error, {"LinkEvents::Deliver", "linkevents"},
             "The sink of a link threw an exception of unknown type.");
  }
}

} // namespace

LinkEvents::LinkEvents() : mThread([this] { Deliver(); }) {}

LinkEvents::~LinkEvents() {
  {
    const std::lock_guard lock(mMutex);
    mEnding = true;
    mChanged.notify_all();
  }
  mThread.join();
}

void LinkEvents::SetSink(IDeviceLinkSink* aSink) {
  std::unique_lock lock(mMutex);
  mSink = aSink;
  mChanged.notify_all();
  // Not the former one alone: whose call still runs may have been taken away before, by itself for one.
  if (mThread.get_id() != std::this_thread::get_id())
    mChanged.wait(lock, [this, aSink] { return !mCalled || mCalled == aSink; });
}

void LinkEvents::ReportLost(const KrResult& aReason) {
  Report(aReason);
}

void LinkEvents::ReportBack() {
  Report(std::nullopt);
}

void LinkEvents::Forget() {
  const std::lock_guard lock(mMutex);
  mEvents.clear();
}

void LinkEvents::Report(Event aEvent) {
  const std::lock_guard lock(mMutex);
  // A camera may come and go for hours while nobody listens.
  if (!mEvents.empty() && mEvents.back().has_value() == aEvent.has_value())
    mEvents.back() = std::move(aEvent);
  else
    mEvents.push_back(std::move(aEvent));
  mChanged.notify_all();
}

void LinkEvents::Deliver() {
  std::unique_lock lock(mMutex);
  while (true) {
    mChanged.wait(lock, [this] { return mEnding || (mSink && !mEvents.empty()); });
    if (mEnding)
      return;
    const Event event = std::move(mEvents.front());
    mEvents.pop_front();
    IDeviceLinkSink* const sink = mSink;
    mCalled = sink;
    lock.unlock();
    Call(*sink, event);
    lock.lock();
    mCalled = nullptr;
    mChanged.notify_all();
  }
}

} // namespace krsystem

#pragma once
// The sinks of one thing and the calls that are under way, so that a sink that was taken out is not called any more.
// What the calls say, and on which thread they come, is left to the thing.

#include "krbase/krlogger.h"
#include "krbase/krresult.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

/// Who hears of one thing's events.
///
/// Thread: any. A sink that is called may register and unregister sinks, itself among them.
/// Ownership: borrows the sinks between Register and Unregister.
template <typename Sink>
class KrEventSinks {
public:
  /// aSubject names a sink in errors, for example "a device's event sink"; an exception that a sink throws is logged on
  /// aChannel as coming from aSite.
  KrEventSinks(const char* aSubject, const char* aChannel, const KrLogSite& aSite)
      : mSubject(aSubject), mChannel(aChannel), mSite(aSite) {}

  /// InvalidInput for null or one that is there.
  KrResult Register(Sink* aSink) {
    if (!aSink)
      return Refuse("Registering", "there is none (null).");
    const std::lock_guard lock(mMutex);
    if (IsRegistered(aSink))
      return Refuse("Registering", "it is registered already.");
    mSinks.push_back(aSink);
    return {};
  }

  /// Returns when no call of the sink is running on another thread, and at once inside its own call; InvalidInput for
  /// one that is not there.
  KrResult Unregister(Sink* aSink) {
    std::unique_lock lock(mMutex);
    if (std::erase(mSinks, aSink) == 0)
      return Refuse("Unregistering", "it is not registered.");
    mCallEnded.wait(lock, [this, aSink] {
      return std::ranges::none_of(mRunning, [aSink](const RunningCall& aCall) {
        return aCall.sink == aSink && aCall.thread != std::this_thread::get_id();
      });
    });
    return {};
  }

  /// Whether no sink is registered.
  bool IsEmpty() const {
    const std::lock_guard lock(mMutex);
    return mSinks.empty();
  }

  /// Calls each sink that is still registered when its turn comes, with no lock held. What a sink throws is logged.
  void Notify(const std::function<void(Sink&)>& aCall) {
    std::vector<Sink*> sinks;
    {
      const std::lock_guard lock(mMutex);
      sinks = mSinks;
    }
    for (Sink* sink : sinks) {
      if (!BeginCall(sink))
        continue;
      try {
        aCall(*sink);
      } catch (const std::exception& error) {
        LogException(std::string(": ") + error.what());
      } catch (...) {
        LogException(" of unknown type.");
      }
      EndCall(sink);
    }
  }

private:
  struct RunningCall {
    Sink* sink;
    std::thread::id thread;
  };

  KrResult Refuse(const char* aAttempt, const char* aReason) const {
    return {KrResult::Code::InvalidInput, std::string(aAttempt) + " " + mSubject + ": " + aReason};
  }

  void LogException(const std::string& aWhat) const {
    std::string text = mSubject + " threw an exception" + aWhat;
    if (text.front() >= 'a' && text.front() <= 'z')
      text.front() = static_cast<char>(text.front() - 'a' + 'A');
    KrLogger(mChannel).Log(KrLogLevel::Error, mSite, text);
  }

  bool IsRegistered(const Sink* aSink) const { return std::ranges::find(mSinks, aSink) != mSinks.end(); }

  bool BeginCall(Sink* aSink) {
    const std::lock_guard lock(mMutex);
    if (!IsRegistered(aSink))
      return false;
    mRunning.push_back({aSink, std::this_thread::get_id()});
    return true;
  }

  void EndCall(Sink* aSink) {
    const std::lock_guard lock(mMutex);
    const auto call = std::ranges::find_if(mRunning, [aSink](const RunningCall& aRunning) {
      return aRunning.sink == aSink && aRunning.thread == std::this_thread::get_id();
    });
    mRunning.erase(call);
    mCallEnded.notify_all();
  }

  const std::string mSubject;
  const char* const mChannel;
  const KrLogSite mSite;
  mutable std::mutex mMutex; // Guards the members from here on.
  std::condition_variable mCallEnded;
  std::vector<Sink*> mSinks;
  std::vector<RunningCall> mRunning;
};

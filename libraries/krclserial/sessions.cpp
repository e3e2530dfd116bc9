#include "sessions.h"

#include <utility>

#include <pthread.h>

namespace krclserial {

Sessions& Sessions::Get() {
  static Sessions sessions;
  return sessions;
}

Sessions::Sessions() {
  // A fork waits for the lock, so that the new process finds everything whole.
  ::pthread_atfork([] { Get().mMutex.lock(); }, [] { Get().mMutex.unlock(); },
                   [] {
                     Get().mMutex.unlock();
                     Get().LeaveToParent();
                   });
}

Sessions::~Sessions() {
  std::map<std::uintptr_t, std::shared_ptr<Port>> left;
  {
    const std::lock_guard lock(mMutex);
    left.swap(mSessions);
  }
  for (const auto& [reference, port] : left)
    port->Close();
}

// Threads of the parent may have been in a port's turn, and never leave it here: ports are not even destroyed.
void Sessions::LeaveToParent() {
  for (const auto& [reference, port] : mSessions)
    port->LeaveToParent();
  [[maybe_unused]] const auto* const kept = new auto(std::move(mSessions));
  mSessions.clear();
  mPorts.clear();
  mIsCounted = false;
}

std::size_t Sessions::CountPorts() {
  const std::lock_guard lock(mMutex);
  mPorts.clear();
  (void)KrListCLPorts(mPorts); // What cannot be listed cannot be opened.
  mIsCounted = true;
  return mPorts.size();
}

std::optional<KrCLPort> Sessions::FindPort(std::size_t aIndex) {
  const std::lock_guard lock(mMutex);
  if (!mIsCounted && aIndex >= mPorts.size())
    (void)KrListCLPorts(mPorts);
  return aIndex < mPorts.size() ? std::optional(mPorts[aIndex]) : std::nullopt;
}

hSerRef Sessions::Add(const std::shared_ptr<Port>& aPort) {
  const std::lock_guard lock(mMutex);
  mSessions.emplace(++mLastReference, aPort);
  return reinterpret_cast<hSerRef>(mLastReference);
}

std::shared_ptr<Port> Sessions::Find(hSerRef aReference) {
  const std::lock_guard lock(mMutex);
  const auto found = mSessions.find(reinterpret_cast<std::uintptr_t>(aReference));
  return found == mSessions.end() ? nullptr : found->second;
}

std::shared_ptr<Port> Sessions::Remove(hSerRef aReference) {
  const std::lock_guard lock(mMutex);
  const auto node = mSessions.extract(reinterpret_cast<std::uintptr_t>(aReference));
  return node ? node.mapped() : nullptr;
}

} // namespace krclserial

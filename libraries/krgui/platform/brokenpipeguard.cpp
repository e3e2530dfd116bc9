#include "platform/brokenpipeguard.h"

#include <ctime>

namespace krgui {

namespace {

sigset_t GetBrokenPipe() {
  sigset_t brokenPipe;
  sigemptyset(&brokenPipe);
  sigaddset(&brokenPipe, SIGPIPE);
  return brokenPipe;
}

bool IsPending() {
  sigset_t pending;
  sigemptyset(&pending);
  sigpending(&pending);
  return sigismember(&pending, SIGPIPE) == 1;
}

} // namespace

BrokenPipeGuard::BrokenPipeGuard() {
  const sigset_t brokenPipe = GetBrokenPipe();
  pthread_sigmask(SIG_BLOCK, &brokenPipe, &mMaskBefore);
  mWasPending = IsPending();
}

BrokenPipeGuard::~BrokenPipeGuard() {
  // One that was raised meanwhile is taken back before the thread could get it; one from before is the application's.
  if (!mWasPending && IsPending()) {
    const sigset_t brokenPipe = GetBrokenPipe();
    constexpr timespec kAtOnce = {};
    sigtimedwait(&brokenPipe, nullptr, &kAtOnce);
  }
  pthread_sigmask(SIG_SETMASK, &mMaskBefore, nullptr);
}

} // namespace krgui

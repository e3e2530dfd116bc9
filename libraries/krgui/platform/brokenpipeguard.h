#pragma once
// Writing to a server that has ended raises a signal, which ends a process that does not expect it. While one of these
// lives, the calling thread does not get it; the library that writes reports the end by itself.

#include <csignal>

namespace krgui {

/// Thread: made and destroyed on the same one. Whatever the application does about the signal otherwise stays.
class BrokenPipeGuard {
public:
  BrokenPipeGuard();
  ~BrokenPipeGuard();
  BrokenPipeGuard(const BrokenPipeGuard&) = delete;
  BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;

private:
  sigset_t mMaskBefore = {};
  bool mWasPending = false;
};

} // namespace krgui

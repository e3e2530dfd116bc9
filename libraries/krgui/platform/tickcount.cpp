#include "platform/tickcount.h"

#include <atomic>
#include <chrono>
#include <utility>

namespace krgui {

namespace {

/// Null for the steady clock.
std::atomic<const TickCountOverride::Source*> source = nullptr;

} // namespace

std::uint32_t GetTickCount() {
  if (const TickCountOverride::Source* replacement = source.load()) {
    return (*replacement)();
  }
  using namespace std::chrono;
  return static_cast<std::uint32_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

TickCountOverride::TickCountOverride(Source aSource)
    : mSource(std::move(aSource)), mPrevious(source.exchange(&mSource)) {}

TickCountOverride::~TickCountOverride() {
  source.store(mPrevious);
}

} // namespace krgui

#pragma once
// Milliseconds of a steady clock, for time limits inside windows. Tests put a clock of their own in its place.

#include <cstdint>
#include <functional>

namespace krgui {

/// Milliseconds since an unknown start; wraps after 49 days, so elapsed times are taken by unsigned subtraction.
///
/// Thread: any.
std::uint32_t GetTickCount();

/// Replaces the clock while it lives; overrides nest.
///
/// Thread: made and destroyed while no other thread reads the clock; the source is called on the reading thread.
class TickCountOverride {
public:
  using Source = std::function<std::uint32_t()>;

  explicit TickCountOverride(Source aSource);
  ~TickCountOverride();
  TickCountOverride(const TickCountOverride&) = delete;
  TickCountOverride& operator=(const TickCountOverride&) = delete;

private:
  Source mSource;
  const Source* mPrevious;
};

} // namespace krgui

#pragma once
// A driver of serial ports that lacks a speed: this program's own ioctl, which all libraries in it call, refuses it. A
// pseudo-terminal would take any.

#include <cstdint>

namespace krtest {

/// No tty takes this speed as long as the object lives.
///
/// Thread: one at a time; ttys may be set on any.
class RefusedSpeed {
public:
  explicit RefusedSpeed(std::uint32_t aBaudRate);
  ~RefusedSpeed();
  RefusedSpeed(const RefusedSpeed&) = delete;
  RefusedSpeed& operator=(const RefusedSpeed&) = delete;
};

} // namespace krtest

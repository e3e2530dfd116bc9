#include "bridge/stopsignal.h"

#include <sys/eventfd.h>

#include <array>

namespace krserial {

StopSignal::StopSignal() : mDescriptor(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

StopSignal::Waited StopSignal::Wait(int aDescriptor, short aEvents, int aLimitMs, const std::stop_token& aStop) {
  if (!IsOpen())
    return Waited::Stopped;
  // What an earlier token has left behind. It fails only when nothing was.
  eventfd_t count = 0;
  static_cast<void>(eventfd_read(mDescriptor.Get(), &count));
  const std::stop_callback signal(aStop, [this] { static_cast<void>(eventfd_write(mDescriptor.Get(), 1)); });
  std::array<pollfd, 2> descriptors = {pollfd{.fd = mDescriptor.Get(), .events = POLLIN, .revents = 0},
                                       pollfd{.fd = aDescriptor, .events = aEvents, .revents = 0}};
  const int ready = poll(descriptors.data(), descriptors.size(), aLimitMs);
  if (aStop.stop_requested())
    return Waited::Stopped;
  // A signal of the system's ends the waiting early, which callers take for what it looks like.
  return ready > 0 ? Waited::Ready : Waited::TimeOver;
}

} // namespace krserial

#include "bridge/stopsignal.h"

#include <array>

namespace krserial {

StopSignal::Waited StopSignal::Wait(int aDescriptor, short aEvents, int aLimitMs, const std::stop_token& aStop) {
  if (!IsOpen())
    return Waited::Stopped;
  mEvent.Clear(); // What an earlier token has left behind.
  const std::stop_callback signal(aStop, [this] { mEvent.Signal(); });
  std::array<pollfd, 2> descriptors = {pollfd{.fd = mEvent.GetDescriptor(), .events = POLLIN, .revents = 0},
                                       pollfd{.fd = aDescriptor, .events = aEvents, .revents = 0}};
  const int ready = poll(descriptors.data(), descriptors.size(), aLimitMs);
  if (aStop.stop_requested())
    return Waited::Stopped;
  // A signal of the system's ends the waiting early, which callers take for what it looks like.
  return ready > 0 ? Waited::Ready : Waited::TimeOver;
}

} // namespace krserial

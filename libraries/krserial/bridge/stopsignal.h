#pragma once
// Waiting for a descriptor until a stop token is stopped: the token's stop is made a descriptor that poll can hear.

#include "krbase/wakeevent.h"

#include <poll.h>

#include <stop_token>

namespace krserial {

/// Thread: one waits at a time. Ownership: an event descriptor.
class StopSignal {
public:
  enum class Waited { Ready, TimeOver, Stopped };

  /// False where the system had no descriptor left; waiting then ends with Stopped.
  bool IsOpen() const { return mEvent.IsOpen(); }
  /// Waits for the events of a descriptor, errors and hang-ups too, at most so many milliseconds, or without end at -1.
  Waited Wait(int aDescriptor, short aEvents, int aLimitMs, const std::stop_token& aStop);

private:
  krbase::WakeEvent mEvent;
};

} // namespace krserial

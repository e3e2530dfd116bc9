#include "krbase/wakeevent.h"

#include <sys/eventfd.h>

namespace krbase {

WakeEvent::WakeEvent() : mDescriptor(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

void WakeEvent::Signal() const {
  // A full counter is a signal too, so a refused write loses nothing.
  static_cast<void>(::eventfd_write(mDescriptor.Get(), 1));
}

void WakeEvent::Clear() const {
  // It fails only where nothing was signalled.
  eventfd_t count = 0;
  static_cast<void>(::eventfd_read(mDescriptor.Get(), &count));
}

} // namespace krbase

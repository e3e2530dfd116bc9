#include "krbase/wakeevent.h"

#include <gtest/gtest.h>

#include <poll.h>

using krbase::WakeEvent;

namespace {

bool IsReadable(const WakeEvent& aEvent) {
  pollfd waited{.fd = aEvent.GetDescriptor(), .events = POLLIN, .revents = 0};
  return poll(&waited, 1, 0) == 1;
}

} // namespace

TEST(WakeEvent, Signalled_IsReadableUntilItIsCleared) {
  const WakeEvent event;
  ASSERT_TRUE(event.IsOpen());
  EXPECT_FALSE(IsReadable(event));

  event.Signal();
  event.Signal();
  EXPECT_TRUE(IsReadable(event));

  event.Clear();
  EXPECT_FALSE(IsReadable(event));
}

TEST(WakeEvent, ClearedWithoutASignal_DoesNotWait) {
  const WakeEvent event;

  event.Clear();
  event.Signal();

  EXPECT_TRUE(IsReadable(event));
}

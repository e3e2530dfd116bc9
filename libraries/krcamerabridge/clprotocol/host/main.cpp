// Runs one CL Protocol driver for an application, which starts this program, speaks to it over a socket and ends it.

#include "clprotocol/host/drivercalls.h"
#include "clprotocol/host/hostchannel.h"
#include "clprotocol/host/keeper.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

using namespace krcamerabridge;

constexpr int kSocket = 3;

// Drivers log without saying for whom.
std::atomic<HostChannel*> theChannel{nullptr};

void LogForDriver(CLUINT32 aLevel, const char* aFormat, va_list aValues) {
  HostChannel* const channel = theChannel;
  if (channel == nullptr || aFormat == nullptr)
    return;
  char text[1000];
  const int size = std::vsnprintf(text, sizeof text, aFormat, aValues);
  const std::size_t written = std::min(static_cast<std::size_t>(std::max(size, 0)), sizeof text - 1);
  channel->Send({.kind = WireKind::Log, .code = static_cast<std::int32_t>(aLevel), .bytes = {text, text + written}});
}

} // namespace

int main() {
  int type = 0;
  socklen_t size = sizeof type;
  if (getsockopt(kSocket, SOL_SOCKET, SO_TYPE, &type, &size) != 0 || type != SOCK_STREAM) {
    std::fputs("This program runs drivers for applications, and is started by them.\n", stderr);
    return 2;
  }
  // Drivers that crash are told of; their memory is nobody's business.
  const rlimit none{0, 0};
  static_cast<void>(setrlimit(RLIMIT_CORE, &none));
  // Programs that the driver starts do not hold the socket.
  static_cast<void>(fcntl(kSocket, F_SETFD, FD_CLOEXEC));
  RunKept(kSocket);

  HostChannel channel(kSocket);
  theChannel = &channel;
  DriverCalls calls(channel, LogForDriver);
  std::thread([&] {
    for (;;)
      channel.Send(calls.Make(channel.AwaitCall()));
  }).detach();
  channel.Listen([&] { calls.StopProbe(); });
}

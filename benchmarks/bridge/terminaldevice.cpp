#include "terminaldevice.h"

#include "pseudoterminal.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace benchmarks {

KrResult TerminalChannel::Open() {
  mTerminal = OpenRaw(mPath);
  CheckSystem(fcntl(mTerminal.Get(), F_SETFL, O_NONBLOCK) == 0, "fcntl");
  return {};
}

KrResult TerminalChannel::Wait(short aEvents, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) const {
  const krbase::FileDescriptor stopped(eventfd(0, EFD_CLOEXEC));
  const std::stop_callback wake(aCancel, [&stopped] { CheckSystem(eventfd_write(stopped.Get(), 1) == 0, "eventfd"); });
  std::array<pollfd, 2> waited = {{{.fd = mTerminal.Get(), .events = aEvents, .revents = 0},
                                   {.fd = stopped.Get(), .events = POLLIN, .revents = 0}}};
  const int count = poll(waited.data(), waited.size(), static_cast<int>(aTimeoutMs));
  if (aCancel.stop_requested())
    return KrResult(KrResult::Code::Aborted, "The call was ended.");
  return count > 0 ? KrResult() : KrResult(KrResult::Code::TimeLimitExceeded, "Nothing happened.");
}

KrResult TerminalChannel::Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                               const std::stop_token& aCancel) {
  aRead = 0;
  for (;;) {
    const ssize_t count = read(mTerminal.Get(), aBytes, aSize);
    if (count > 0) {
      aRead = static_cast<std::size_t>(count);
      return {};
    }
    if (count < 0 && errno != EAGAIN)
      return KrResult(KrResult::Code::ConnectionLost, "The terminal is gone.");
    if (KrResult waited = Wait(POLLIN, aTimeoutMs, aCancel); !waited.IsOK())
      return waited;
  }
}

KrResult TerminalChannel::Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                                std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  aWritten = 0;
  while (aWritten < aSize) {
    const ssize_t count = write(mTerminal.Get(), aBytes + aWritten, aSize - aWritten);
    if (count < 0 && errno != EAGAIN)
      return KrResult(KrResult::Code::ConnectionLost, "The terminal is gone.");
    if (count > 0)
      aWritten += static_cast<std::size_t>(count);
    else if (KrResult waited = Wait(POLLOUT, aTimeoutMs, aCancel); !waited.IsOK())
      return waited;
  }
  return {};
}

} // namespace benchmarks

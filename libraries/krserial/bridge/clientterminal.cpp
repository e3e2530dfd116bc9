#include "bridge/clientterminal.h"

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>

namespace krserial {

namespace {

constexpr std::uint32_t kFirstSpeed = 9600;

KrResult MakeFailure(const char* aWhat) {
  return {KrResult::Code::SystemError, std::string(aWhat) + ": " + std::generic_category().message(errno) + "."};
}

krbase::FileDescriptor OpenClientsEnd(const std::string& aPath) {
  return krbase::FileDescriptor(::open(aPath.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
}

} // namespace

ClientTerminal::ClientTerminal(krbase::FileDescriptor aMaster, krbase::FileDescriptor aComings, std::string aPath)
    : mMaster(std::move(aMaster)), mComings(std::move(aComings)), mPath(std::move(aPath)) {}

KrResult ClientTerminal::Make(std::unique_ptr<ClientTerminal>& aTerminal) {
  krbase::FileDescriptor master(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  std::array<char, PATH_MAX> path = {};
  if (!master.IsOpen() || ::grantpt(master.Get()) != 0 || ::unlockpt(master.Get()) != 0 ||
      ::ptsname_r(master.Get(), path.data(), path.size()) != 0)
    return MakeFailure("Making a pseudo-terminal");
  krbase::FileDescriptor comings(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  if (comings.IsOpen() && ::inotify_add_watch(comings.Get(), path.data(), IN_OPEN | IN_CLOSE) < 0)
    comings.Close();
  std::unique_ptr<ClientTerminal> terminal(
      new ClientTerminal(std::move(master), std::move(comings), std::string(path.data())));
  // That no client is there is told only after there has been one.
  if (!OpenClientsEnd(terminal->mPath).IsOpen())
    return MakeFailure("Opening a pseudo-terminal");
  terminal->Prepare(kFirstSpeed);
  int isOn = 1;
  if (::ioctl(terminal->GetDescriptor(), TIOCPKT, &isOn) != 0)
    return MakeFailure("Asking a pseudo-terminal to tell its settings");
  aTerminal = std::move(terminal);
  return {};
}

bool ClientTerminal::HasClient() const {
  pollfd asked = {.fd = mMaster.Get(), .events = 0, .revents = 0};
  return ::poll(&asked, 1, 0) < 0 || (asked.revents & POLLHUP) == 0;
}

void ClientTerminal::DropComings() {
  std::array<char, 4096> news;
  while (mComings.IsOpen() && ::read(mComings.Get(), news.data(), news.size()) > 0) {
  }
}

// In packet mode a byte that says what follows stands before the bytes of one reading, or alone.
ClientTerminal::Taken ClientTerminal::Read(std::uint8_t* aBytes, std::size_t aSize) {
  std::array<std::uint8_t, 4096> packet;
  const ssize_t size = ::read(mMaster.Get(), packet.data(), std::min(packet.size(), aSize + 1));
  if (size <= 0)
    return {.hasClient = size < 0 && (errno == EAGAIN || errno == EINTR)};
  const std::size_t count = packet[0] == TIOCPKT_DATA ? static_cast<std::size_t>(size) - 1 : 0;
  std::memcpy(aBytes, packet.data() + 1, count);
  return {.size = count, .isSet = (packet[0] & TIOCPKT_IOCTL) != 0};
}

std::size_t ClientTerminal::Write(const std::uint8_t* aBytes, std::size_t aSize) {
  const ssize_t size = ::write(mMaster.Get(), aBytes, aSize);
  return size > 0 ? static_cast<std::size_t>(size) : 0;
}

std::optional<TtySettings> ClientTerminal::GetSettings() const {
  return TtySettings::Read(mMaster.Get());
}

void ClientTerminal::Prepare(std::optional<std::uint32_t> aBaudRate) {
  std::optional<TtySettings> settings = GetSettings();
  if (!settings)
    return;
  settings->MakeRaw();
  settings->TellChanges();
  if (aBaudRate)
    settings->PutSpeed(*aBaudRate);
  // Without it a change is noticed a little later.
  static_cast<void>(settings->Apply(mMaster.Get()));
}

} // namespace krserial

#include "simulation/serial/hosttty.h"

#include <asm/termbits.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace krtransport {

namespace {

KrResult MakeFailure(const std::string& aWhat) {
  return {KrResult::Code::SystemError, aWhat + ": " + std::generic_category().message(errno)};
}

bool CanBeTriedAgain() {
  return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

// Unix98 pseudo-terminals have device numbers of their own (Linux, admin-guide/devices.txt).
bool IsPseudoTerminal(int aDescriptor) {
  constexpr unsigned kFirstMajor = 136;
  constexpr unsigned kLastMajor = 143;
  struct stat properties = {};
  if (fstat(aDescriptor, &properties) != 0)
    return false;
  return major(properties.st_rdev) >= kFirstMajor && major(properties.st_rdev) <= kLastMajor;
}

// Bytes as they are, without lines, signals, echo or flow control, whatever modem lines say.
void MakeRaw(termios2& aSettings) {
  aSettings.c_iflag = 0;
  aSettings.c_oflag = 0;
  aSettings.c_lflag = 0;
  aSettings.c_cflag = CS8 | CREAD | CLOCAL;
  aSettings.c_cc[VMIN] = 1;
  aSettings.c_cc[VTIME] = 0;
}

// Rates that the system has a name for, by which other programs know them.
struct NamedRate {
  std::uint32_t rate;
  tcflag_t name;
};
constexpr std::array<NamedRate, 28> kNamedRates = {
    {{50, B50},           {75, B75},           {110, B110},         {134, B134},         {150, B150},
     {200, B200},         {300, B300},         {600, B600},         {1200, B1200},       {1800, B1800},
     {2400, B2400},       {4800, B4800},       {9600, B9600},       {19200, B19200},     {38400, B38400},
     {57600, B57600},     {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},
     {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000}, {1500000, B1500000},
     {2000000, B2000000}, {3000000, B3000000}, {4000000, B4000000}}};

// Any number of bits a second, which the portable interface does not have.
void PutRate(termios2& aSettings, std::uint32_t aRate) {
  const auto named = std::ranges::find(kNamedRates, aRate, &NamedRate::rate);
  aSettings.c_cflag &= ~static_cast<tcflag_t>(CBAUD | CIBAUD);
  aSettings.c_cflag |= named == kNamedRates.end() ? static_cast<tcflag_t>(BOTHER) : named->name;
  aSettings.c_ispeed = aRate;
  aSettings.c_ospeed = aRate;
}

} // namespace

KrResult HostTty::Open(const std::string& aPath, std::uint32_t aRate) {
  Close();
  mDescriptor = open(aPath.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (mDescriptor < 0)
    return MakeFailure("Opening " + aPath);
  termios2 settings = {};
  if (ioctl(mDescriptor, TCGETS2, &settings) == 0) {
    MakeRaw(settings);
    PutRate(settings, aRate);
    if (ioctl(mDescriptor, TCSETS2, &settings) == 0)
      return {};
  }
  KrResult failure = MakeFailure("Setting up " + aPath + " as a serial line");
  Close();
  return failure;
}

void HostTty::Close() {
  if (mDescriptor < 0)
    return;
  // A UART that cannot send would hold up the closing for seconds. A pseudo-terminal never does, and what it was given
  // the other end may still read.
  if (!IsPseudoTerminal(mDescriptor))
    ioctl(mDescriptor, TCFLSH, TCOFLUSH);
  close(mDescriptor);
  mDescriptor = -1;
}

KrResult HostTty::SetRate(std::uint32_t aRate) {
  termios2 settings = {};
  if (ioctl(mDescriptor, TCGETS2, &settings) != 0)
    return MakeFailure("Setting a tty's rate");
  PutRate(settings, aRate);
  return ioctl(mDescriptor, TCSETS2, &settings) == 0 ? KrResult() : MakeFailure("Setting a tty's rate");
}

void HostTty::DropReceived() {
  // What cannot be dropped is received like anything else.
  ioctl(mDescriptor, TCFLSH, TCIFLUSH);
}

bool HostTty::Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead) {
  const ssize_t size = read(mDescriptor, aBytes, aSize);
  aRead = size > 0 ? static_cast<std::size_t>(size) : 0;
  return size > 0 || (size < 0 && CanBeTriedAgain());
}

bool HostTty::Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten) {
  const ssize_t size = write(mDescriptor, aBytes, aSize);
  aWritten = size > 0 ? static_cast<std::size_t>(size) : 0;
  return size >= 0 || CanBeTriedAgain();
}

} // namespace krtransport

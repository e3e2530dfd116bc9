#include "bridge/opentty.h"

#include "bridge/ttylocks.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace krserial {

namespace {

std::string GetSystemText(int aError) {
  return std::generic_category().message(aError);
}

// Unix98 pseudo-terminals have device numbers of their own (Linux, admin-guide/devices.txt).
bool IsPseudoTerminalNumber(dev_t aDevice) {
  constexpr unsigned kFirstMajor = 136;
  constexpr unsigned kLastMajor = 143;
  return major(aDevice) >= kFirstMajor && major(aDevice) <= kLastMajor;
}

KrResult MakeOpeningFailure(const std::string& aText, int aError) {
  const std::string start = "Opening " + aText + ": " + GetSystemText(aError);
  switch (aError) {
  case ENOENT:
  case ENXIO:
  case ENODEV:
    return {KrResult::Code::NotFound, start + ". Is the adapter plugged in, or the program at the other end running?"};
  case EACCES:
  case EPERM:
    return {KrResult::Code::AccessDenied, start + ". Serial ports are mostly open to the members of a group, such as "
                                                  "dialout, alone."};
  case EBUSY:
    return {KrResult::Code::Busy, start + ". Another program holds it."};
  default:
    return {KrResult::Code::SystemError, start + "."};
  }
}

} // namespace

OpenTty::OpenTty(krbase::FileDescriptor aDescriptor, bool aIsPseudoTerminal, std::string aText)
    : mDescriptor(std::move(aDescriptor)), mIsPseudoTerminal(aIsPseudoTerminal), mText(std::move(aText)) {}

KrResult OpenTty::Open(const KrHostSerialPort& aPort, const KrSerialPortConfiguration& aConfiguration,
                       std::shared_ptr<OpenTty>& aTty) {
  const std::string text = aPort.name.ToUtf8() + " (" + aPort.path.ToUtf8() + ")";
  struct stat status = {};
  if (::stat(aPort.path.CStr(), &status) != 0)
    return MakeOpeningFailure(text, errno);
  // Opening something else might do more than to open it.
  if (!S_ISCHR(status.st_mode))
    return {KrResult::Code::SystemError, "Opening " + text + ": it is no serial port."};
  if (const std::optional<TtyLock> lock = FindTtyLock(aPort.path.ToUtf8(), KrHostSerialPorts::GetFolders()))
    return {KrResult::Code::Busy, "Opening " + text + ": the process " + std::to_string(lock->process) +
                                      " holds it, by the lock file " + lock->path + "."};
  krbase::FileDescriptor descriptor(::open(aPort.path.CStr(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  if (!descriptor.IsOpen() || ::fstat(descriptor.Get(), &status) != 0)
    return MakeOpeningFailure(text, errno);
  std::optional<TtySettings> former = TtySettings::Read(descriptor.Get());
  if (!former)
    return {KrResult::Code::SystemError, "Opening " + text + ": it is no serial port (" + GetSystemText(errno) + ")."};
  std::shared_ptr<OpenTty> tty(new OpenTty(std::move(descriptor), IsPseudoTerminalNumber(status.st_rdev), text));
  KrResult result = tty->Hold();
  if (result.IsOK()) {
    tty->mFormer = former;
    result = tty->Configure(aConfiguration);
  }
  if (result.IsOK())
    aTty = std::move(tty);
  return result;
}

// Two locks, as programs use the one or the other (and lock files, which were looked for before): a lock of the file,
// and the tty's own, which keeps out those that ask for no lock. The latter would outlast a killed process on a
// pseudo-terminal, for as long as the other end lives.
KrResult OpenTty::Hold() const {
  int isExclusive = 0;
  const bool isHeld = ::ioctl(GetDescriptor(), TIOCGEXCL, &isExclusive) == 0 && isExclusive != 0;
  if (isHeld || (::flock(GetDescriptor(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK))
    return MakeOpeningFailure(mText, EBUSY);
  if (!mIsPseudoTerminal && ::ioctl(GetDescriptor(), TIOCEXCL) != 0)
    return MakeOpeningFailure(mText, errno);
  return {};
}

OpenTty::~OpenTty() {
  if (!mFormer)
    return; // Never ours.
  if (!mIsPseudoTerminal) {
    // A UART that cannot send would hold up the closing for seconds.
    ::ioctl(GetDescriptor(), TCFLSH, TCOFLUSH);
    ::ioctl(GetDescriptor(), TIOCNXCL);
  }
  // One that has gone has no settings any more.
  static_cast<void>(mFormer->Apply(GetDescriptor()));
}

KrResult OpenTty::Configure(const KrSerialPortConfiguration& aConfiguration) {
  const std::lock_guard lock(mMutex);
  const std::optional<TtySettings> before = TtySettings::Read(GetDescriptor());
  if (!before)
    return MakeFailure("Asking for the settings of ");
  TtySettings settings = *before;
  settings.MakeRaw();
  settings.Put(aConfiguration);
  KrResult result = Apply(settings, aConfiguration);
  if (result.IsOK())
    mSpeed = aConfiguration.baudRate;
  else
    static_cast<void>(before->Apply(GetDescriptor())); // What failed first is what counts.
  return result;
}

KrResult OpenTty::Apply(const TtySettings& aSettings, const KrSerialPortConfiguration& aConfiguration) {
  if (!aSettings.Apply(GetDescriptor()))
    return MakeFailure("Setting up ");
  const std::optional<TtySettings> taken = TtySettings::Read(GetDescriptor());
  if (!taken)
    return MakeFailure("Asking for the settings of ");
  // A pseudo-terminal has no wire: it keeps 8 bits without parity, and any speed, and carries all bytes regardless.
  if (mIsPseudoTerminal || IsNearEnough(aConfiguration, taken->Get()))
    return {};
  return {KrResult::Code::NotSupported, mText + " cannot be set so: " + std::to_string(aConfiguration.baudRate) +
                                            " baud became " + std::to_string(taken->GetSpeed()) +
                                            ", or parity, bits or stop bits others than asked for."};
}

bool OpenTty::NoticeSpeed(std::uint32_t& aBaudRate) {
  const std::lock_guard lock(mMutex);
  std::optional<TtySettings> settings = TtySettings::Read(GetDescriptor());
  if (!settings)
    return false;
  if (!settings->ArePassingBytes()) {
    settings->PassBytes();
    // One that has gone is lost at the next reading.
    static_cast<void>(settings->Apply(GetDescriptor()));
  }
  if (settings->GetSpeed() == 0 || settings->GetSpeed() == mSpeed)
    return false;
  mSpeed = aBaudRate = settings->GetSpeed();
  return true;
}

bool OpenTty::IsHungUp() const {
  pollfd asked = {.fd = GetDescriptor(), .events = 0, .revents = 0};
  return ::poll(&asked, 1, 0) > 0 && (asked.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

void OpenTty::DropReceived() {
  // What cannot be dropped is received like anything else.
  ::ioctl(GetDescriptor(), TCFLSH, TCIFLUSH);
}

KrResult OpenTty::MakeFailure(const std::string& aWhat) {
  const int error = errno;
  if (error == EIO || error == ENXIO || error == ENODEV)
    return Lose();
  return {error == EINVAL ? KrResult::Code::NotSupported : KrResult::Code::SystemError,
          aWhat + mText + ": " + GetSystemText(error) + "."};
}

KrResult OpenTty::Lose() {
  mIsLost = true;
  return {KrResult::Code::ConnectionLost, mText + " has gone."};
}

} // namespace krserial

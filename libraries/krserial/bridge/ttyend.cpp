#include "bridge/ttyend.h"

#include "bridge/portlink.h"
#include "krbase/krlogger.h"
#include "krbase/rest.h"
#include "krserial/krhostserialports.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <utility>

namespace krserial {

namespace {

constexpr int kLookMs = 250;

bool CanBeTriedAgain() {
  return errno == EAGAIN || errno == EINTR;
}

// What happens at the other end of a pseudo-terminal is not always told to ours.
int GetLimitMs(const OpenTty& aTty) {
  return aTty.IsPseudoTerminal() ? kLookMs : -1;
}

// A port that another bridge makes is for a program, of which that bridge would not hear that it has come second.
KrResult FindFree(const KrString& aName, KrHostSerialPort& aPort) {
  if (KrResult found = KrHostSerialPorts::Find(aName, aPort); !found.IsOK())
    return found;
  if (PortLink::FindMaker(aPort.path.ToUtf8()) == PortLink::Maker::Bridge)
    return {KrResult::Code::Busy,
            aPort.name + " (" + aPort.path + ") is a port that another bridge makes, for a program to open."};
  return {};
}

} // namespace

TtyEnd::TtyEnd(const KrString& aName, const KrSerialPortConfiguration& aConfiguration, std::shared_ptr<OpenTty> aTty)
    : mName(aName), mConfiguration(aConfiguration), mTty(std::move(aTty)) {}

KrResult TtyEnd::Open(const KrString& aName, const KrSerialPortConfiguration& aConfiguration,
                      std::unique_ptr<IHostEnd>& aEnd) {
  if (!aConfiguration.IsValid())
    return {KrResult::Code::InvalidInput, "No serial port can be set so."};
  KrHostSerialPort port;
  if (KrResult found = FindFree(aName, port); !found.IsOK())
    return found;
  std::shared_ptr<OpenTty> tty;
  if (KrResult opened = OpenTty::Open(port, aConfiguration, tty); !opened.IsOK())
    return opened;
  tty->DropReceived(); // Meant for whoever had the port before.
  std::unique_ptr<TtyEnd> end(new TtyEnd(port.name, aConfiguration, std::move(tty)));
  if (!end->mReadStop.IsOpen() || !end->mWriteStop.IsOpen())
    return {KrResult::Code::SystemError, "Opening " + aName.ToUtf8() + ": the system has no descriptor left."};
  aEnd = std::move(end);
  return {};
}

std::shared_ptr<OpenTty> TtyEnd::GetTty() const {
  const std::lock_guard lock(mMutex);
  return mTty;
}

KrResult TtyEnd::MakeLost() const {
  return {KrResult::Code::ConnectionLost, mName.ToUtf8() + " has gone."};
}

KrResult TtyEnd::Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, const std::stop_token& aStop) {
  aRead = 0;
  const std::shared_ptr<OpenTty> tty = GetTty();
  if (!tty)
    return MakeLost();
  while (!aStop.stop_requested() && aSize > 0) {
    const ssize_t size = ::read(tty->GetDescriptor(), aBytes, aSize);
    if (tty->IsLost() || (size == 0 && tty->IsHungUp()) || (size < 0 && !CanBeTriedAgain())) {
      ForgetRefusal();
      return tty->Lose();
    }
    // What came after the change of speed is given after the asking for it.
    FollowSpeed(*tty);
    aRead = size > 0 ? static_cast<std::size_t>(size) : 0;
    if (aRead > 0)
      return {};
    mReadStop.Wait(tty->GetDescriptor(), POLLIN, GetLimitMs(*tty), aStop);
  }
  return aStop.stop_requested() ? KrResult(KrResult::Code::Aborted) : KrResult();
}

void TtyEnd::FollowSpeed(OpenTty& aTty) {
  std::uint32_t baudRate = 0;
  if (!aTty.IsPseudoTerminal() || !aTty.NoticeSpeed(baudRate) || !mSpeedRequest)
    return;
  const KrResult followed = mSpeedRequest(baudRate);
  mIsRefused = !followed.IsOK();
  if (mIsRefused)
    KrLogger("KrSerial")
        .Log(KrLogLevel::Info, {"TtyEnd::FollowSpeed", "ttyend"},
             mName + " was set to " + std::to_string(baudRate) +
                 " baud, which the device does not follow: " + followed.GetDescription());
}

void TtyEnd::ForgetRefusal() {
  if (mIsRefused && mSpeedRequest)
    (void)mSpeedRequest(0);
  mIsRefused = false;
}

KrResult TtyEnd::Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                       const std::stop_token& aStop) {
  aWritten = 0;
  const std::shared_ptr<OpenTty> tty = GetTty();
  if (!tty)
    return MakeLost();
  while (!aStop.stop_requested() && aWritten < aSize) {
    const ssize_t size = ::write(tty->GetDescriptor(), aBytes + aWritten, aSize - aWritten);
    if (tty->IsLost() || (size < 0 && !CanBeTriedAgain()))
      return tty->Lose();
    if (size > 0)
      aWritten += static_cast<std::size_t>(size);
    else
      mWriteStop.Wait(tty->GetDescriptor(), POLLOUT, GetLimitMs(*tty), aStop);
  }
  return aWritten < aSize ? KrResult(KrResult::Code::Aborted) : KrResult();
}

KrResult TtyEnd::Recover(const std::stop_token& aStop, const TellHindrance& aTell) {
  KrString said;
  while (!aStop.stop_requested()) {
    const KrResult taken = TakeAgain();
    if (taken.IsOK())
      return {};
    if (taken.GetDescription() != said) {
      KrLogger("KrSerial").Log(KrLogLevel::Info, {"TtyEnd::Recover", "ttyend"}, taken.GetDescription());
      aTell(taken);
    }
    said = taken.GetDescription();
    (void)krbase::Rest(std::chrono::milliseconds(kLookMs), aStop);
  }
  return KrResult::Code::Aborted;
}

KrResult TtyEnd::TakeAgain() {
  KrSerialPortConfiguration configuration;
  {
    const std::lock_guard lock(mMutex);
    if (mTty && !mTty->IsLost())
      return {};
    // The system gives a USB adapter that comes back another name while its former tty is open.
    mTty.reset();
    configuration = mConfiguration;
  }
  KrHostSerialPort port;
  if (KrResult found = FindFree(mName, port); !found.IsOK())
    return found;
  std::shared_ptr<OpenTty> tty;
  if (KrResult opened = OpenTty::Open(port, configuration, tty); !opened.IsOK())
    return opened;
  const std::lock_guard lock(mMutex);
  if (configuration != mConfiguration)
    return {KrResult::Code::Busy, mName + " was given other settings while it was opened."};
  mTty = std::move(tty);
  return {};
}

KrResult TtyEnd::Configure(const KrSerialPortConfiguration& aConfiguration) {
  if (!aConfiguration.IsValid())
    return {KrResult::Code::InvalidInput, mName.ToUtf8() + " cannot be set so, nor can any serial port."};
  const std::lock_guard lock(mMutex);
  if (mTty && !mTty->IsLost()) {
    KrResult configured = mTty->Configure(aConfiguration);
    if (!configured.IsOK() && !mTty->IsLost())
      return configured;
  }
  mConfiguration = aConfiguration;
  return {};
}

void TtyEnd::SetSpeedRequest(SpeedRequest aRequest) {
  mSpeedRequest = std::move(aRequest);
}

void TtyEnd::TellSpeed(const DevicePortSpeed&) {}

} // namespace krserial

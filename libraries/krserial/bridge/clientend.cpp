#include "bridge/clientend.h"

#include "comname.h"
#include "krbase/krlogger.h"
#include "krserial/krhostserialports.h"

#include <array>
#include <optional>
#include <string>
#include <utility>

namespace krserial {

namespace {

constexpr std::size_t kMostWaiting = 65536;
constexpr int kLookMs = 250;

} // namespace

ClientEnd::ClientEnd(std::unique_ptr<ClientTerminal> aTerminal, std::unique_ptr<PortLink> aLink)
    : mTerminal(std::move(aTerminal)), mLink(std::move(aLink)), mWaiting(kMostWaiting) {
  if (const std::optional<TtySettings> settings = mTerminal->GetSettings())
    mSeenSpeed = settings->GetSpeed();
}

KrResult ClientEnd::Open(const KrString& aName, std::unique_ptr<IHostEnd>& aEnd) {
  const std::optional<std::uint32_t> number = ParseComName(aName.ToUtf8());
  if (!number)
    return MakeNoComName(aName);
  std::unique_ptr<ClientTerminal> terminal;
  if (KrResult made = ClientTerminal::Make(terminal); !made.IsOK())
    return made;
  std::unique_ptr<PortLink> link;
  const std::string folder = KrHostSerialPorts::GetFolders().links.ToUtf8();
  if (KrResult made = PortLink::Make(folder, *number, terminal->GetPath(), link); !made.IsOK())
    return made;
  std::unique_ptr<ClientEnd> end(new ClientEnd(std::move(terminal), std::move(link)));
  if (!end->mReadStop.IsOpen() || !end->mWriteStop.IsOpen())
    return {KrResult::Code::SystemError, "Making " + aName.ToUtf8() + ": the system has no descriptor left."};
  aEnd = std::move(end);
  return {};
}

KrResult ClientEnd::Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, const std::stop_token& aStop) {
  aRead = 0;
  while (!aStop.stop_requested() && aSize > 0) {
    mTerminal->DropComings(); // Before looking, so that none after it is missed.
    {
      const std::lock_guard lock(mMutex);
      GiveWaiting();
    }
    const ClientTerminal::Taken taken = mTerminal->Read(aBytes, aSize);
    if (taken.hasClient) {
      FollowSpeed(taken.isSet);
    } else {
      ForgetRefusal();
      PrepareForNext();
    }
    aRead = taken.size;
    if (aRead > 0)
      return {};
    if (!taken.isSet)
      WaitForNews(taken.hasClient, aStop);
  }
  return aStop.stop_requested() ? KrResult(KrResult::Code::Aborted) : KrResult();
}

// A client that has switched the telling of its changes off is looked at from time to time.
void ClientEnd::WaitForNews(bool aHasClient, const std::stop_token& aStop) {
  if (aHasClient)
    mReadStop.Wait(mTerminal->GetDescriptor(), static_cast<short>(POLLIN | POLLPRI | (IsWaiting() ? POLLOUT : 0)),
                   kLookMs, aStop);
  else
    mReadStop.Wait(mTerminal->GetComings(), POLLIN, mTerminal->GetComings() < 0 ? kLookMs : -1, aStop);
}

bool ClientEnd::IsWaiting() {
  const std::lock_guard lock(mMutex);
  return !mWaiting.IsEmpty();
}

// The mutex is held.
void ClientEnd::GiveWaiting() {
  std::array<std::uint8_t, 4096> bytes;
  while (!mWaiting.IsEmpty() && mTerminal->HasClient()) {
    const std::size_t given = mTerminal->Write(bytes.data(), mWaiting.Peek(bytes.data(), bytes.size()));
    if (given == 0)
      return;
    mWaiting.Drop(given);
  }
}

// As many as can be given at once; all of them where nobody is there.
std::size_t ClientEnd::Give(const std::uint8_t* aBytes, std::size_t aSize) {
  const std::lock_guard lock(mMutex);
  const bool hasClient = mTerminal->HasClient();
  if (!hasClient)
    mWaiting.Push(aBytes, aSize);
  GiveWaiting(); // Also for a client that came this moment, whom Read has seen with nothing waiting.
  if (!hasClient)
    return aSize;
  return mWaiting.IsEmpty() ? mTerminal->Write(aBytes, aSize) : 0;
}

KrResult ClientEnd::Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                          const std::stop_token& aStop) {
  aWritten = 0;
  while (!aStop.stop_requested() && aWritten < aSize) {
    const std::size_t taken = Give(aBytes + aWritten, aSize - aWritten);
    aWritten += taken;
    if (taken == 0)
      mWriteStop.Wait(mTerminal->GetDescriptor(), POLLOUT, kLookMs, aStop);
  }
  return aWritten < aSize ? KrResult(KrResult::Code::Aborted) : KrResult();
}

KrResult ClientEnd::Recover(const std::stop_token&, const TellHindrance&) {
  return {};
}

KrResult ClientEnd::Configure(const KrSerialPortConfiguration& aConfiguration) {
  if (!aConfiguration.IsValid())
    return {KrResult::Code::InvalidInput, "No serial port can be set so."};
  Offer(mConfiguredSpeed, aConfiguration.baudRate);
  return {};
}

void ClientEnd::SetSpeedRequest(SpeedRequest aRequest) {
  mSpeedRequest = std::move(aRequest);
}

void ClientEnd::TellSpeed(const DevicePortSpeed& aSpeed) {
  Offer(mDeviceSpeed, aSpeed.current);
}

void ClientEnd::Offer(std::uint32_t& aSpeed, std::uint32_t aBaudRate) {
  {
    const std::lock_guard lock(mMutex);
    aSpeed = aBaudRate;
  }
  if (!mTerminal->HasClient())
    PrepareForNext();
}

// A client that sets no speed finds the device's; where that is not known, the configured one. One that was set and not
// noticed yet is not undone: programs open a port for no more than to set it.
void ClientEnd::PrepareForNext() {
  const std::lock_guard lock(mMutex);
  const std::optional<TtySettings> settings = mTerminal->GetSettings();
  if (!settings || settings->GetSpeed() != mSeenSpeed)
    return;
  const std::uint32_t offered = mDeviceSpeed != 0 ? mDeviceSpeed : mConfiguredSpeed;
  const std::uint32_t speed = offered != 0 ? offered : mSeenSpeed;
  if (settings->AreChangesTold() && speed == mSeenSpeed)
    return;
  mTerminal->Prepare(speed);
  mSeenSpeed = speed;
}

void ClientEnd::ForgetRefusal() {
  if (mIsRefused && mSpeedRequest)
    (void)mSpeedRequest(0);
  mIsRefused = false;
}

// A client that has set its port asks for that speed even where it is the one that the port had, if the device has
// another.
void ClientEnd::FollowSpeed(bool aIsSet) {
  const std::optional<TtySettings> settings = mTerminal->GetSettings();
  const std::uint32_t speed = settings ? settings->GetSpeed() : 0;
  std::uint32_t former = 0;
  {
    const std::lock_guard lock(mMutex);
    const bool isAsked = speed != mSeenSpeed || (aIsSet && speed != mDeviceSpeed);
    if (speed == 0 || !isAsked)
      return;
    mSeenSpeed = speed;
    // The speed that the device has is asked for where that takes a refused wish back.
    if ((speed == mDeviceSpeed && !mIsRefused) || !mSpeedRequest)
      return;
    former = std::exchange(mDeviceSpeed, speed);
  }
  const KrResult followed = mSpeedRequest(speed);
  mIsRefused = !followed.IsOK();
  if (!mIsRefused)
    return;
  {
    const std::lock_guard lock(mMutex);
    if (mDeviceSpeed == speed) // Else the device has told another meanwhile.
      mDeviceSpeed = former;
  }
  KrLogger("KrSerial")
      .Log(KrLogLevel::Info, {"ClientEnd::FollowSpeed", "clientend"},
           "A program has set its port to " + std::to_string(speed) +
               " baud, which the device does not follow: " + followed.GetDescription().ToUtf8());
}

} // namespace krserial

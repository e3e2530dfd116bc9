#include "bridge/cameraserver.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace krserial {

namespace {

constexpr std::size_t kMostWaiting = 64 * 1024;  // Bytes of one direction.
constexpr std::uint32_t kDefaultBaudRate = 9600; // What a program finds after an opening, by the standard.
constexpr int kDescriptorWaitMs = 200;
constexpr std::chrono::seconds kLongestAwaited(5); // Well before the program gives up.
constexpr short kGone = POLLHUP | POLLERR;

bool Has(const std::vector<std::uint32_t>& aBaudRates, std::uint32_t aBaudRate) {
  return std::find(aBaudRates.begin(), aBaudRates.end(), aBaudRate) != aBaudRates.end();
}

} // namespace

CameraServer::CameraServer(std::unique_ptr<KrCLPublication> aPublication, krbase::WakeEvent aWake, bool aHasPort)
    : mPublication(std::move(aPublication)), mWake(std::move(aWake)), mHasPort(aHasPort) {}

void CameraServer::Serve(const std::stop_token& aStop) {
  const std::stop_callback wakeOnStop(aStop, [this] { Wake(); });
  while (!aStop.stop_requested()) {
    if (Wait())
      continue;
    const std::lock_guard lock(mMutex);
    mFailure = {KrResult::Code::SystemError,
                "Waiting for Camera Link programs failed: " + std::generic_category().message(errno) + "."};
    mChanged.notify_all();
    return;
  }
}

void CameraServer::Wake() const {
  mWake.Signal();
}

bool CameraServer::Wait() {
  std::array<pollfd, 3> waited = {{
      {.fd = mWake.GetDescriptor(), .events = POLLIN, .revents = 0},
      {.fd = AcceptsPrograms() ? mPublication->GetSocket() : -1, .events = POLLIN, .revents = 0},
      {.fd = mSession ? mSession->GetSocket() : -1, .events = GetSessionEvents(), .revents = 0},
  }};
  if (::poll(waited.data(), waited.size(), GetWaitMs()) < 0)
    return errno == EINTR;
  if (waited[0].revents != 0)
    mWake.Clear();
  if ((waited[2].revents & kGone) != 0 || ((waited[2].revents & POLLIN) != 0 && !ReceiveFrom(Amount::WhileThereIsRoom)))
    EndSession();
  if (waited[1].revents != 0)
    Accept();
  if (mSession)
    Continue();
  if (mSession)
    SendTo();
  return true;
}

int CameraServer::GetWaitMs() {
  if (std::exchange(mHasNoDescriptors, false))
    return kDescriptorWaitMs;
  const std::lock_guard lock(mMutex);
  if (mAwaited == Awaited::Nothing)
    return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(mAwaitedUntil - Clock::now());
  return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
}

bool CameraServer::AcceptsPrograms() {
  const std::lock_guard lock(mMutex);
  return !mHasNoDescriptors && (mIsTaken || !mHasPort);
}

short CameraServer::GetSessionEvents() {
  if (!mSession)
    return 0;
  const bool hasAnswers = mSession->HasAnswers();
  const std::lock_guard lock(mMutex);
  if (mAwaited == Awaited::Opening)
    return 0;
  const bool receives = !hasAnswers && mAwaited == Awaited::Nothing && mFromProgram.size() < kMostWaiting;
  const bool sends = hasAnswers || mHasNewSpeed || !mToProgram.empty();
  return static_cast<short>((receives ? POLLIN : 0) | (sends ? POLLOUT : 0));
}

void CameraServer::Accept() {
  krbase::FileDescriptor socket(::accept4(mPublication->GetSocket(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (!socket.IsOpen()) {
    mHasNoDescriptors = errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM;
    return;
  }
  if (!KrIsOwnUser(socket.Get()))
    return;
  // Who closes a port and opens it again finds it free.
  if (mSession && mSession->HasHungUp())
    EndSession();
  if (!IsRefused()) {
    OpenSession(std::move(socket));
    return;
  }
  CameraSession refused(std::move(socket));
  refused.Answer(KrCLMessageKind::Welcome, static_cast<std::uint32_t>(KrCLAnswer::InUse));
  (void)refused.SendAnswers(); // A new socket takes it, or nobody is there.
}

bool CameraServer::IsRefused() {
  if (mSession || !mHasPort)
    return true;
  // One that died may have left more than the queue holds: its line is not free before the device has taken it.
  const std::lock_guard lock(mMutex);
  return mFromProgram.size() >= kMostWaiting + kKrCLMostBytes;
}

void CameraServer::OpenSession(krbase::FileDescriptor aSocket) {
  mSession = std::make_unique<CameraSession>(std::move(aSocket));
  Await(Awaited::Opening, kDefaultBaudRate);
}

void CameraServer::FinishOpening(bool aIsReady) {
  if (!aIsReady) {
    mSession->Answer(KrCLMessageKind::Welcome, static_cast<std::uint32_t>(KrCLAnswer::InUse));
    (void)mSession->SendAnswers(); // A new socket takes it, or nobody is there.
    EndSession();
    return;
  }
  (void)SetSpeed(kDefaultBaudRate); // A port without that speed, or that refuses it, stays as it is.
  mSession->Answer(KrCLMessageKind::Welcome, static_cast<std::uint32_t>(KrCLAnswer::Taken), GetName().ToUtf8());
  {
    const std::lock_guard lock(mMutex);
    mHasNewSpeed = false;
    mHasProgram = true;
  }
  mSession->Answer(KrCLMessageKind::Speeds, GetSpeedBits());
}

void CameraServer::EndSession() {
  if (mSession->HasHungUp())
    (void)ReceiveFrom(Amount::All); // As much as the socket held when the program went.
  mSession.reset();
  const std::lock_guard lock(mMutex);
  mAwaited = Awaited::Nothing;
  mHasProgram = false;
  DropOld();
}

// The mutex is held.
void CameraServer::DropOld() {
  mToProgram.clear();
  mIsDropping = !mIsEmpty;
  mChanged.notify_all();
}

bool CameraServer::AsksForEmptiness() const {
  const std::lock_guard lock(mMutex);
  return !mIsEmpty;
}

void CameraServer::TellEmpty() {
  const std::lock_guard lock(mMutex);
  mIsEmpty = true;
  if (std::exchange(mIsDropping, false))
    Wake();
}

bool CameraServer::ReceiveFrom(Amount aAmount) {
  while (aAmount == Amount::All || (TakesMore() && !mSession->HasAnswers())) {
    KrCLMessage message;
    switch (mSession->Receive(message)) {
    case CameraSession::Received::Message:
      Understand(message);
      break;
    case CameraSession::Received::Nothing:
      return true;
    case CameraSession::Received::Gone:
      return false;
    }
  }
  return true;
}

bool CameraServer::TakesMore() {
  const std::lock_guard lock(mMutex);
  return mAwaited == Awaited::Nothing && mFromProgram.size() < kMostWaiting;
}

void CameraServer::Understand(const KrCLMessage& aMessage) {
  if (aMessage.kind != KrCLMessageKind::Data) {
    if (mSession->HasHungUp())
      return; // Nobody waits for it any more.
    const bool isSpeed = aMessage.kind == KrCLMessageKind::SetSpeed;
    Await(isSpeed ? Awaited::Speed : Awaited::Flush, KrGetCLSpeed(aMessage.value));
    return;
  }
  const std::lock_guard lock(mMutex);
  mFromProgram.insert(mFromProgram.end(), aMessage.bytes.begin(), aMessage.bytes.end());
  mChanged.notify_all();
}

void CameraServer::Await(Awaited aAwaited, std::uint32_t aBaudRate) {
  mAwaitedBaudRate = aBaudRate;
  mAwaitedUntil = Clock::now() + kLongestAwaited;
  const std::lock_guard lock(mMutex);
  mAwaited = aAwaited;
  if (aAwaited == Awaited::Flush)
    DropOld();
}

// A speed is for what comes after it: the device has all from before, or it is one that the device has not. The mutex
// is held.
bool CameraServer::IsReadyForSpeed() const {
  return (mFromProgram.empty() && mIsTaking) || !Has(mSpeed.supported, mAwaitedBaudRate);
}

void CameraServer::Continue() {
  Awaited awaited = Awaited::Nothing;
  bool isReady = false;
  {
    const std::lock_guard lock(mMutex);
    if (mAwaited == Awaited::Nothing)
      return;
    isReady = mAwaited == Awaited::Flush || IsReadyForSpeed();
    const bool isDropping = mAwaited != Awaited::Speed && mIsDropping;
    if ((!isReady || isDropping) && Clock::now() < mAwaitedUntil)
      return;
    awaited = std::exchange(mAwaited, Awaited::Nothing);
    // A device that always has something to read is not waited for any longer.
    mIsDropping = mIsDropping && !isDropping;
  }
  if (awaited == Awaited::Opening)
    FinishOpening(isReady);
  if (awaited == Awaited::Flush)
    mSession->Answer(KrCLMessageKind::Flushed, 0);
  if (awaited == Awaited::Speed) {
    const KrCLAnswer answer = isReady ? SetSpeed(mAwaitedBaudRate) : KrCLAnswer::Failed;
    mSession->Answer(KrCLMessageKind::SpeedSet, static_cast<std::uint32_t>(answer));
  }
}

void CameraServer::SendTo() {
  bool isTold = false;
  {
    const std::lock_guard lock(mMutex);
    isTold = mHasNewSpeed && mAwaited != Awaited::Opening && !mSession->HasAnswers();
    mHasNewSpeed = mHasNewSpeed && !isTold;
  }
  if (isTold)
    mSession->Answer(KrCLMessageKind::Speeds, GetSpeedBits());
  while (mSession->SendAnswers() && SendBytes()) {
  }
}

// Sends one packet of the line; false when there is none, or none is taken now.
bool CameraServer::SendBytes() {
  std::string bytes;
  {
    const std::lock_guard lock(mMutex);
    const std::size_t size = std::min(mToProgram.size(), kKrCLMostBytes);
    bytes.assign(mToProgram.begin(), mToProgram.begin() + static_cast<std::ptrdiff_t>(size));
  }
  if (bytes.empty() || !mSession->Send(bytes))
    return false;
  const std::lock_guard lock(mMutex);
  mToProgram.erase(mToProgram.begin(), mToProgram.begin() + static_cast<std::ptrdiff_t>(bytes.size()));
  mChanged.notify_all();
  return true;
}

KrCLAnswer CameraServer::SetSpeed(std::uint32_t aBaudRate) {
  IHostEnd::SpeedRequest request;
  {
    const std::lock_guard lock(mMutex);
    if (mSpeed.supported.empty())
      return aBaudRate != 0 && aBaudRate == mSpeed.current ? KrCLAnswer::Taken : KrCLAnswer::NotSupported;
    if (!Has(mSpeed.supported, aBaudRate) || !mRequest)
      return KrCLAnswer::NotSupported;
    request = mRequest;
  }
  const KrResult result = request(aBaudRate);
  if (result.IsOK())
    return KrCLAnswer::Taken;
  return result == KrResult::Code::NotSupported ? KrCLAnswer::NotSupported : KrCLAnswer::Failed;
}

std::uint32_t CameraServer::GetSpeedBits() {
  const std::lock_guard lock(mMutex);
  if (mSpeed.supported.empty())
    return KrGetCLSpeedBit(mSpeed.current);
  std::uint32_t bits = 0;
  for (const std::uint32_t baudRate : mSpeed.supported)
    bits |= KrGetCLSpeedBit(baudRate);
  return bits;
}

KrResult CameraServer::Take(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aTaken,
                            const std::stop_token& aStop) {
  aTaken = 0;
  std::unique_lock lock(mMutex);
  if (!std::exchange(mIsTaken, true) || mAwaited != Awaited::Nothing)
    Wake();
  mIsTaking = true;
  const bool hasNews = mChanged.wait(lock, aStop, [this] { return !mFromProgram.empty() || !mFailure.IsOK(); });
  mIsTaking = false;
  if (!hasNews)
    return KrResult::Code::Aborted;
  if (mFromProgram.empty())
    return mFailure;
  aTaken = std::min(aSize, mFromProgram.size());
  const auto end = mFromProgram.begin() + static_cast<std::ptrdiff_t>(aTaken);
  std::copy(mFromProgram.begin(), end, aBytes);
  const bool wasFull = mFromProgram.size() >= kMostWaiting;
  mFromProgram.erase(mFromProgram.begin(), end);
  if (wasFull)
    Wake();
  return {};
}

KrResult CameraServer::Give(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aGiven,
                            const std::stop_token& aStop) {
  aGiven = 0;
  std::unique_lock lock(mMutex);
  const auto isWanted = [this] { return mHasProgram && !mIsDropping; };
  const auto goesOn = [&] { return !isWanted() || mToProgram.size() < kMostWaiting || !mFailure.IsOK(); };
  mIsEmpty = mIsEmpty && aSize == 0;
  while (aGiven < aSize) {
    if (!mChanged.wait(lock, aStop, goesOn))
      return KrResult::Code::Aborted;
    if (!mFailure.IsOK())
      return mFailure;
    // Otherwise nobody will ever want them.
    const std::size_t size = isWanted() ? std::min(aSize - aGiven, kMostWaiting - mToProgram.size()) : aSize - aGiven;
    if (isWanted()) {
      mToProgram.insert(mToProgram.end(), aBytes + aGiven, aBytes + aGiven + size);
      Wake();
    }
    aGiven += size;
  }
  return {};
}

void CameraServer::SetSpeedRequest(IHostEnd::SpeedRequest aRequest) {
  const std::lock_guard lock(mMutex);
  mRequest = std::move(aRequest);
}

void CameraServer::TellSpeed(const DevicePortSpeed& aSpeed) {
  const std::lock_guard lock(mMutex);
  mSpeed = aSpeed;
  mHasNewSpeed = true;
  Wake();
}

} // namespace krserial

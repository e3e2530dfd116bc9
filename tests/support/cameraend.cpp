#include "cameraend.h"

#include "await.h"
#include "krbase/filedescriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

namespace krtest {

namespace {

int MakePair(int (&aSockets)[2]) {
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, aSockets) != 0)
    throw std::system_error(errno, std::generic_category(), "socketpair");
  return aSockets[0];
}

// Something that poll can wait for, and a stop wakes.
class StopSignal {
public:
  explicit StopSignal(const std::stop_token& aStop)
      : mHandle(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
        mCallback(aStop, [this] { ::eventfd_write(mHandle.Get(), 1); }) {}
  StopSignal(const StopSignal&) = delete;
  StopSignal& operator=(const StopSignal&) = delete;

  int Get() const { return mHandle.Get(); }

private:
  const krbase::FileDescriptor mHandle; // Closed when nobody writes to it any more.
  std::stop_callback<std::function<void()>> mCallback;
};

} // namespace

KrResult SocketLine::Await(short aEvents, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) const {
  const StopSignal stop(aCancel);
  std::array<pollfd, 2> handles = {{{mSocket, aEvents, 0}, {stop.Get(), POLLIN, 0}}};
  ::poll(handles.data(), handles.size(), static_cast<int>(aTimeoutMs));
  if (aCancel.stop_requested())
    return KrResult::Code::Aborted;
  return handles[0].revents != 0 ? KrResult() : KrResult(KrResult::Code::TimeLimitExceeded);
}

KrResult SocketLine::Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                          const std::stop_token& aCancel) {
  if (KrResult result = Await(POLLIN, aTimeoutMs, aCancel); !result.IsOK())
    return result;
  const ssize_t read = ::recv(mSocket, aBytes, aSize, 0);
  if (read <= 0)
    return {KrResult::Code::ConnectionLost, "The camera's end of the line is closed."};
  aRead = static_cast<std::size_t>(read);
  return {};
}

KrResult SocketLine::Write(const std::uint8_t* aBytes, std::size_t aSize, std::uint32_t aTimeoutMs,
                           const std::stop_token& aCancel) {
  for (std::size_t sent = 0; sent < aSize;) {
    if (KrResult result = Await(POLLOUT, aTimeoutMs, aCancel); !result.IsOK())
      return result;
    const ssize_t written = ::send(mSocket, aBytes + sent, aSize - sent, MSG_NOSIGNAL);
    if (written < 0)
      return {KrResult::Code::ConnectionLost, "The camera's end of the line is closed."};
    sent += static_cast<std::size_t>(written);
  }
  return {};
}

void SocketLine::DropReceived() {
  std::array<char, 4096> bytes{};
  while (::recv(mSocket, bytes.data(), bytes.size(), 0) > 0) {
  }
}

CameraEnd::CameraEnd(Camera aCamera)
    : mLine(MakePair(mSockets)), mCamera(std::move(aCamera)),
      mThread([this](const std::stop_token& aStop) { Run(aStop); }) {}

CameraEnd::~CameraEnd() {
  mThread.request_stop();
  mThread.join();
  ::close(mSockets[0]);
  ::close(mSockets[1]);
}

void CameraEnd::SetFaults(unsigned aEvery, unsigned aSeed) {
  const std::lock_guard lock(mMutex);
  mEvery = aEvery;
  mRandom.seed(aSeed);
}

int CameraEnd::CountFaults() {
  const std::lock_guard lock(mMutex);
  return mFaults;
}

void CameraEnd::HoldBack(bool aIsHeld) {
  const std::lock_guard lock(mMutex);
  mIsHeld = aIsHeld;
  if (!aIsHeld)
    Send(std::exchange(mHeld, {}));
}

void CameraEnd::Say(std::string_view aBytes) {
  const std::lock_guard lock(mMutex);
  Send(aBytes);
}

bool CameraEnd::AwaitBytes(std::size_t aCount) {
  std::unique_lock lock(mMutex);
  return mChanged.wait_for(lock, krtest::GetGenerousLimit(), [&] { return mCount >= aCount; });
}

void CameraEnd::HangUp() {
  ::shutdown(mSockets[1], SHUT_RDWR);
}

void CameraEnd::Run(const std::stop_token& aStop) {
  const StopSignal stop(aStop);
  std::array<char, 512> bytes{};
  for (;;) {
    std::array<pollfd, 2> handles = {{{mSockets[1], POLLIN, 0}, {stop.Get(), POLLIN, 0}}};
    ::poll(handles.data(), handles.size(), -1);
    const ssize_t read = aStop.stop_requested() ? 0 : ::recv(mSockets[1], bytes.data(), bytes.size(), 0);
    if (read <= 0)
      return;
    const std::lock_guard lock(mMutex);
    const std::string answer = Damage(mCamera(Damage({bytes.data(), static_cast<std::size_t>(read)})));
    mCount += static_cast<std::size_t>(read);
    mChanged.notify_all();
    if (mIsSilent)
      continue;
    if (mIsHeld)
      mHeld += answer;
    else
      Send(answer);
  }
}

std::string CameraEnd::Damage(std::string_view aBytes) {
  std::string damaged;
  for (const char byte : aBytes) {
    const unsigned fault = mEvery > 0 && mRandom() % mEvery == 0 ? 1 + static_cast<unsigned>(mRandom() % 3) : 0;
    mFaults += fault != 0 ? 1 : 0;
    if (fault == 1)
      continue;
    damaged += fault == 2 ? static_cast<char>(byte ^ static_cast<char>(1 << mRandom() % 8)) : byte;
    if (fault == 3)
      damaged += byte;
  }
  return damaged;
}

void CameraEnd::Send(std::string_view aBytes) {
  // The sockets hold far more than a test lets wait in them; a broken line takes nothing.
  if (!aBytes.empty() && ::send(mSockets[1], aBytes.data(), aBytes.size(), MSG_NOSIGNAL) < 0 && errno == EAGAIN)
    throw std::system_error(errno, std::generic_category(), "send");
}

} // namespace krtest

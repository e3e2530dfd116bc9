#include "simulation/serial/ttylineend.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

namespace krtransport {

namespace {

constexpr int kRetryMs = 500;

} // namespace

TtyLineEnd::TtyLineEnd(std::string aPort, std::string aPath)
    : mPort(std::move(aPort)), mPath(std::move(aPath)), mFromPort(kBufferBytes), mToPort(kBufferBytes) {}

TtyLineEnd::~TtyLineEnd() {
  Close();
}

void TtyLineEnd::Open(std::uint32_t aRate, Waker aWaker) {
  mWaker = std::move(aWaker);
  mFromPort.Clear();
  mToPort.Clear();
  mRate = aRate;
  mIsStopping = false;
  mIsMissing = false;
  // What came while nobody listened is not heard.
  if (OpenTty())
    mTty.DropReceived();
  if (!mSignal.IsOpen())
    mSignal = krbase::WakeEvent(); // When the line was made no descriptor was left.
  mSignal.Clear();                 // What its last opening left behind.
  try {
    if (mSignal.IsOpen())
      mThread = std::thread([this] { Run(); });
  } catch (const std::system_error&) {
    // Handled below, as one that has no descriptor.
  }
  if (!mThread.joinable())
    LoseTty({KrResult::Code::SystemError, "No thread or descriptor was left to watch " + mPath + "."});
  AllNews news;
  {
    const std::lock_guard lock(mMutex);
    news.swap(mNews);
  }
  Tell(news);
}

void TtyLineEnd::Close() {
  {
    const std::lock_guard lock(mMutex);
    mIsStopping = true;
    mSignal.Signal();
  }
  if (mThread.joinable())
    mThread.join();
  mTty.Close();
}

bool TtyLineEnd::OpenTty() {
  const KrResult opened = mTty.Open(mPath, mRate);
  if (!opened.IsOK()) {
    LoseTty(opened);
    return false;
  }
  if (std::exchange(mIsMissing, false))
    mNews.push_back({KrLogLevel::Info, mPort + ": " + mPath + " is there again."});
  return true;
}

void TtyLineEnd::LoseTty(const KrResult& aReason) {
  mTty.Close();
  mFromPort.Clear();
  if (!std::exchange(mIsMissing, true))
    mNews.push_back(
        {KrLogLevel::Warning, mPort + " is silent until its tty is there: " + aReason.GetDescription().ToUtf8()});
}

void TtyLineEnd::Tell(const AllNews& aNews) const {
  for (const News& news : aNews)
    KrLogger("KrTransport").Log(news.level, {"TtyLineEnd", "ttylineend"}, news.text);
}

void TtyLineEnd::SetRate(std::uint32_t aRate) {
  AllNews news;
  {
    const std::lock_guard lock(mMutex);
    mRate = aRate;
    if (!mTty.IsOpen())
      return;
    if (const KrResult set = mTty.SetRate(aRate); !set.IsOK()) {
      LoseTty(set);
      mSignal.Signal(); // The thread waits at a tty that is closed now.
    }
    news.swap(mNews);
  }
  Tell(news);
}

std::size_t TtyLineEnd::Take(const std::uint8_t* aBytes, std::size_t aSize, std::uint64_t) {
  const std::lock_guard lock(mMutex);
  if (!mTty.IsOpen())
    return aSize; // Nobody hears it.
  const std::size_t taken = mFromPort.Push(aBytes, aSize);
  mSignal.Signal();
  return taken;
}

std::size_t TtyLineEnd::Give(std::uint8_t* aBytes, std::size_t aSize, std::uint64_t) {
  const std::lock_guard lock(mMutex);
  const bool wasFull = mToPort.GetRoom() == 0;
  const std::size_t given = mToPort.Pop(aBytes, aSize);
  if (wasFull && given > 0)
    mSignal.Signal();
  return given;
}

void TtyLineEnd::Run() {
  Lock lock(mMutex);
  while (!mIsStopping) {
    Poll(lock);
    if (mIsStopping)
      return;
    const bool isThere = mTty.IsOpen() || OpenTty();
    const bool hasMoved = isThere && Transfer();
    const AllNews news = std::exchange(mNews, {});
    if (!hasMoved && news.empty())
      continue;
    lock.unlock();
    Tell(news);
    if (hasMoved)
      mWaker();
    lock.lock();
  }
}

// Waits until the tty or the line has something, or the tty may be there again. One that has gone while there is no
// room for what it left is not asked: it would answer at once, again and again.
void TtyLineEnd::Poll(Lock& aLock) {
  const bool isOpen = mTty.IsOpen();
  const bool canRead = mToPort.GetRoom() > 0;
  const bool canWrite = !mFromPort.IsEmpty();
  const short events = static_cast<short>((canRead ? POLLIN : 0) | (canWrite ? POLLOUT : 0));
  std::array<pollfd, 2> descriptors = {
      pollfd{.fd = mSignal.GetDescriptor(), .events = POLLIN, .revents = 0},
      pollfd{.fd = events != 0 ? mTty.GetDescriptor() : -1, .events = events, .revents = 0}};
  aLock.unlock();
  poll(descriptors.data(), descriptors.size(), isOpen ? -1 : kRetryMs);
  mSignal.Clear();
  aLock.lock();
}

// Moves what can be moved; false when the line has nothing new to do. A line that has bytes to fetch still, or room to
// fill, comes by itself: to wake it then would move them one by one.
bool TtyLineEnd::Transfer() {
  std::array<std::uint8_t, kBufferBytes> bytes;
  const bool wasEmpty = mToPort.IsEmpty();
  const bool wasFull = mFromPort.GetRoom() == 0;
  std::size_t read = 0;
  bool isThere = true;
  if (mToPort.GetRoom() > 0) {
    isThere = mTty.Read(bytes.data(), mToPort.GetRoom(), read);
    mToPort.Push(bytes.data(), read);
  }
  std::size_t written = 0;
  if (isThere && !mFromPort.IsEmpty()) {
    isThere = mTty.Write(bytes.data(), mFromPort.Peek(bytes.data(), bytes.size()), written);
    mFromPort.Drop(written);
  }
  if (!isThere)
    LoseTty({KrResult::Code::ConnectionLost, mPath + " has gone."});
  return (read > 0 && wasEmpty) || (written > 0 && wasFull) || !isThere;
}

} // namespace krtransport

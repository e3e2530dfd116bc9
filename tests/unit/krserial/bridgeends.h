#pragma once
// Both sides of a bridge for tests: a host's end over a real socket, and an adapter whose parameters may be changed
// while a bridge asks for them.

#include "await.h"
#include "bridge/ihostend.h"
#include "serialadapter.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <string>

namespace krtest {

/// A host's end whose far end is the test's: Send and Receive. Its socket's buffers are as small as the system has
/// them.
class SocketEnd : public krserial::IHostEnd {
public:
  SocketEnd() { Connect(); }
  ~SocketEnd() override { CloseBoth(); }

  /// The port has gone, with what was on its way.
  void Lose() {
    const std::scoped_lock lock(mMutex);
    mIsLost = true;
    ::shutdown(mNear, SHUT_RDWR);
  }
  /// Writing fails with this from now on, while reading waits on; until Restore.
  void FailWriting(const KrResult& aResult) {
    const std::scoped_lock lock(mMutex);
    mWriteFailure = aResult;
  }
  /// The port is back, for who waits in Recover or comes there.
  void Restore() {
    const std::scoped_lock lock(mMutex);
    mMayRecover = true;
    mChanged.notify_all();
  }
  /// How often the end was taken again.
  int CountRecoveries() const {
    const std::scoped_lock lock(mMutex);
    return mRecoveries;
  }

  /// Sends all bytes, however long that takes.
  void Send(const std::string& aBytes) const {
    std::size_t sent = 0;
    while (sent < aBytes.size()) {
      const ssize_t count = ::send(mFar, aBytes.data() + sent, aBytes.size() - sent, MSG_NOSIGNAL);
      if (count <= 0)
        throw std::runtime_error("the far end cannot send");
      sent += static_cast<std::size_t>(count);
    }
  }
  /// Sends what finds room at the moment, and says how much.
  std::size_t SendSome(const std::string& aBytes) const {
    const ssize_t count = ::send(mFar, aBytes.data(), aBytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
  }
  /// So many bytes; less when they do not come within a generous limit.
  std::string Receive(std::size_t aSize) const {
    std::string bytes(aSize, '\0');
    std::size_t received = 0;
    while (received < aSize) {
      pollfd waiting = {mFar, POLLIN, 0};
      if (::poll(&waiting, 1, static_cast<int>(GetGenerousLimit().count())) <= 0)
        break;
      const ssize_t count = ::recv(mFar, bytes.data() + received, aSize - received, 0);
      if (count <= 0)
        break;
      received += static_cast<std::size_t>(count);
    }
    bytes.resize(received);
    return bytes;
  }
  /// Bytes that the far end could read now.
  bool HasBytes() const {
    pollfd waiting = {mFar, POLLIN, 0};
    return ::poll(&waiting, 1, 0) > 0;
  }
  /// The far end asks for a speed.
  KrResult Ask(std::uint32_t aBaudRate) { return mSpeedRequest(aBaudRate); }
  krserial::DevicePortSpeed GetTold() const {
    const std::scoped_lock lock(mMutex);
    return mTold;
  }
  KrSerialPortConfiguration GetConfiguration() const {
    const std::scoped_lock lock(mMutex);
    return mConfiguration;
  }
  /// Configure fails with this.
  KrResult configureFailure;

  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, const std::stop_token& aStop) override {
    aRead = 0;
    if (KrResult waited = Wait(POLLIN, aStop); !waited.IsOK())
      return waited;
    const ssize_t count = ::recv(mNear, aBytes, aSize, 0);
    if (count <= 0)
      return {KrResult::Code::ConnectionLost, "The socket has ended."};
    aRead = static_cast<std::size_t>(count);
    return {};
  }
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                 const std::stop_token& aStop) override {
    aWritten = 0;
    while (aWritten < aSize) {
      if (KrResult failure = GetWriteFailure(); !failure.IsOK())
        return failure;
      if (KrResult waited = Wait(POLLOUT, aStop); !waited.IsOK())
        return waited;
      const ssize_t count = ::send(mNear, aBytes + aWritten, aSize - aWritten, MSG_NOSIGNAL | MSG_DONTWAIT);
      if (count < 0 && errno != EAGAIN)
        return {KrResult::Code::ConnectionLost, "The socket has ended."};
      aWritten += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return {};
  }
  KrResult Recover(const std::stop_token& aStop, const TellHindrance& aTell) override {
    aTell({KrResult::Code::NotFound, "Nobody has restored it."});
    std::unique_lock lock(mMutex);
    if (!mChanged.wait(lock, aStop, [this] { return mMayRecover; }))
      return KrResult::Code::Aborted;
    mMayRecover = false;
    mWriteFailure = {};
    ++mRecoveries;
    if (mIsLost) {
      CloseBoth();
      Connect();
      mIsLost = false;
    }
    return {};
  }
  KrResult Configure(const KrSerialPortConfiguration& aConfiguration) override {
    const std::scoped_lock lock(mMutex);
    if (configureFailure.IsOK())
      mConfiguration = aConfiguration;
    return configureFailure;
  }
  void SetSpeedRequest(SpeedRequest aRequest) override { mSpeedRequest = std::move(aRequest); }
  void TellSpeed(const krserial::DevicePortSpeed& aSpeed) override {
    const std::scoped_lock lock(mMutex);
    mTold = aSpeed;
  }

private:
  void Connect() {
    std::array<int, 2> both = {};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, both.data()) != 0)
      throw std::runtime_error("there is no socket");
    mNear = both[0];
    mFar = both[1];
    const int smallest = 1;
    for (const int socket : both)
      ::setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &smallest, sizeof(smallest));
  }
  void CloseBoth() const {
    ::close(mNear);
    ::close(mFar);
  }
  KrResult GetWriteFailure() const {
    const std::scoped_lock lock(mMutex);
    return mWriteFailure;
  }
  KrResult Wait(short aEvents, const std::stop_token& aStop) const {
    const int stopping = ::eventfd(0, EFD_CLOEXEC);
    KrResult result;
    {
      const std::stop_callback onStop(aStop, [stopping] { ::eventfd_write(stopping, 1); });
      std::array<pollfd, 2> waiting = {{{mNear, aEvents, 0}, {stopping, POLLIN, 0}}};
      ::poll(waiting.data(), waiting.size(), -1);
      if (waiting[1].revents != 0)
        result = KrResult::Code::Aborted;
    }
    ::close(stopping);
    return result;
  }

  int mNear = -1; // Both are changed in Recover alone, while nobody reads or writes.
  int mFar = -1;
  SpeedRequest mSpeedRequest;

  mutable std::mutex mMutex; // Guards the members from here on.
  std::condition_variable_any mChanged;
  bool mIsLost = false;
  bool mMayRecover = false;
  int mRecoveries = 0;
  KrResult mWriteFailure;
  krserial::DevicePortSpeed mTold;
  KrSerialPortConfiguration mConfiguration;
};

/// A device with the speeds of its first port, asked for and changed on any thread.
class LockedAdapter : public SerialAdapter {
public:
  LockedAdapter() { enumerations[kSpeed] = {{"Baud9600", "Baud19200", "Baud115200"}, "Baud9600"}; }

  KrResult GetEnumEntries(const KrString& aName, KrStringList& aEntries) override {
    const std::scoped_lock lock(mMutex);
    return SerialAdapter::GetEnumEntries(aName, aEntries);
  }
  KrResult GetEnumValue(const KrString& aName, KrString& aValue) override {
    std::unique_lock lock(mMutex);
    ++mQuestions;
    mHeld += mIsHolding ? 1 : 0;
    mReleased.wait(lock, [this] { return !mIsHolding; });
    return SerialAdapter::GetEnumValue(aName, aValue);
  }
  KrResult SetEnumValue(const KrString& aName, const KrString& aValue) override {
    const std::scoped_lock lock(mMutex);
    return SerialAdapter::SetEnumValue(aName, aValue);
  }
  /// The entry that is set.
  std::string GetSpeed() {
    const std::scoped_lock lock(mMutex);
    return enumerations[kSpeed].value;
  }
  /// Somebody else sets the speed.
  void SetSpeed(const std::string& aEntry) {
    const std::scoped_lock lock(mMutex);
    enumerations[kSpeed].value = aEntry;
  }
  void FailReading(const KrResult& aResult) {
    const std::scoped_lock lock(mMutex);
    readFailure = aResult;
  }
  /// How often a value was asked for.
  int CountQuestions() {
    const std::scoped_lock lock(mMutex);
    return mQuestions;
  }
  /// Does not answer the questions for a value that come from now on, until Release.
  void Hold() {
    const std::scoped_lock lock(mMutex);
    mIsHolding = true;
  }
  void Release() {
    const std::scoped_lock lock(mMutex);
    mIsHolding = false;
    mHeld = 0;
    mReleased.notify_all();
  }
  /// How many questions wait for an answer.
  int CountHeld() {
    const std::scoped_lock lock(mMutex);
    return mHeld;
  }
  /// A device that cannot say the speed; before it is used.
  void HideSpeed() { enumerations.clear(); }

private:
  static constexpr const char* kSpeed = "Uart0BaudRate";

  std::mutex mMutex; // Guards values, from the first use on.
  int mQuestions = 0;
  std::condition_variable mReleased;
  bool mIsHolding = false;
  int mHeld = 0;
};

} // namespace krtest

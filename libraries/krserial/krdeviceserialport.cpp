#include "krserial/krdeviceserialport.h"

#include "guarded.h"
#include "krbase/eitherstop.h"
#include "krbase/krlogger.h"
#include "serialchannels.h"
#include "writeturns.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <limits>
#include <mutex>
#include <string>
#include <utility>

namespace {

using krserial::Guard;
using ChannelPointer = std::shared_ptr<krsystem::IByteChannel>;

// Long enough for any line; what a device gives before that is said of the device.
constexpr std::uint32_t kNoLimitMs = std::numeric_limits<std::uint32_t>::max();

std::uint32_t GetLeftMs(std::chrono::steady_clock::time_point aUntil) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(aUntil - std::chrono::steady_clock::now()).count();
  return static_cast<std::uint32_t>(std::clamp<std::int64_t>(left, 0, kNoLimitMs));
}

KrResult RefuseClosed(const char* aAttempt) {
  return {KrResult::Code::WrongState, std::string(aAttempt) + ": no serial port is open; open one first."};
}

KrResult RefuseCancelled(const char* aAttempt) {
  return {KrResult::Code::Aborted, std::string(aAttempt) + " was cancelled."};
}

} // namespace

struct KrDeviceSerialPort::Body {
  // Counts a call of Read or Write while it lives, so that the port is closed after it.
  class Call {
  public:
    explicit Call(Body& aBody) : mBody(aBody) {
      const std::lock_guard lock(mBody.mutex);
      channel = mBody.channel;
      token = mBody.cancel.get_token();
      ++mBody.running;
    }
    ~Call() {
      const std::lock_guard lock(mBody.mutex);
      --mBody.running;
      mBody.changed.notify_all();
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    ChannelPointer channel; // Null where no port is open.
    std::stop_token token;

  private:
    Body& mBody;
  };

  KrResult Close();
  static KrResult WriteAll(krsystem::IByteChannel& aChannel, const std::uint8_t* aData, std::uint32_t aSize,
                           std::uint32_t& aBytesWritten, std::uint32_t aTimeoutMs, const std::stop_token& aCancel);

  krserial::WriteTurns turns;

  std::mutex opening; // Held by Open and Close, one of which runs at a time.

  std::mutex mutex; // Guards the members from here on; not held while the channel works.
  std::condition_variable_any changed;
  ChannelPointer channel;  // Null while no port is open.
  std::stop_source cancel; // Of this opening.
  std::size_t running = 0; // Calls of Read and Write.
};

KrResult KrDeviceSerialPort::Body::Close() {
  ChannelPointer closing;
  {
    std::unique_lock lock(mutex);
    std::stop_source cancelled = cancel;
    lock.unlock();
    // Its callbacks wake whoever waits, and may need the lock for that.
    cancelled.request_stop();
    lock.lock();
    closing = std::exchange(channel, nullptr);
    changed.wait(lock, [this] { return running == 0; });
  }
  if (!closing)
    return {};
  return Guard("Closing the serial port", [&]() -> KrResult {
    closing->Close();
    return {};
  });
}

KrResult KrDeviceSerialPort::Body::WriteAll(krsystem::IByteChannel& aChannel, const std::uint8_t* aData,
                                            std::uint32_t aSize, std::uint32_t& aBytesWritten, std::uint32_t aTimeoutMs,
                                            const std::stop_token& aCancel) {
  const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(aTimeoutMs);
  while (aBytesWritten < aSize) {
    if (aCancel.stop_requested())
      return RefuseCancelled("Writing to the serial port");
    const std::size_t left = aSize - aBytesWritten;
    std::size_t written = 0;
    KrResult result = aChannel.Write(aData + aBytesWritten, left, written, GetLeftMs(until), aCancel);
    if (written > left || (result.IsOK() && written == 0))
      return {KrResult::Code::ProtocolError, "Writing to the serial port: of " + std::to_string(left) +
                                                 " bytes its line says to have taken " + std::to_string(written) + "."};
    aBytesWritten += static_cast<std::uint32_t>(written);
    if (!result.IsOK())
      return result;
  }
  return {};
}

KrDeviceSerialPort::KrDeviceSerialPort() : mBody(std::make_unique<Body>()) {}

KrDeviceSerialPort::~KrDeviceSerialPort() {
  static_cast<void>(Close()); // Always OK.
}

bool KrDeviceSerialPort::IsSupported(IKrDeviceAdapter* aAdapter, KrDeviceSerial aPort) {
  ChannelPointer channel;
  return krserial::FindSerialChannel(aAdapter, aPort, channel).IsOK();
}

KrResult KrDeviceSerialPort::Open(IKrDeviceAdapter* aAdapter, KrDeviceSerial aPort) {
  if (!aAdapter)
    return {KrResult::Code::InvalidInput, "Opening a serial port: there is no device (null)."};
  const std::lock_guard opening(mBody->opening);
  {
    const std::lock_guard lock(mBody->mutex);
    if (mBody->channel)
      return {KrResult::Code::WrongState,
              "Opening the serial port " + GetPortName(aPort) + ": this object has a port open; close that first."};
    // From here on Cancel counts for this opening.
    mBody->cancel = std::stop_source();
  }
  ChannelPointer channel;
  if (KrResult found = krserial::FindSerialChannel(aAdapter, aPort, channel); !found.IsOK())
    return found;
  if (KrResult opened = Guard("Opening the serial port", [&] { return channel->Open(); }); !opened.IsOK())
    return opened;
  const std::lock_guard lock(mBody->mutex);
  mBody->channel = std::move(channel);
  return {};
}

bool KrDeviceSerialPort::IsOpened() const {
  const std::lock_guard lock(mBody->mutex);
  return mBody->channel != nullptr;
}

KrResult KrDeviceSerialPort::Close() {
  KrResult closed;
  {
    const std::lock_guard opening(mBody->opening);
    closed = mBody->Close();
  }
  // Without the lock, as whoever hears of it may use the port.
  if (!closed.IsOK())
    KrLogger("KrSerial")
        .Log(KrLogLevel::Warning, {"KrDeviceSerialPort::Close", "krdeviceserialport"}, closed.GetDescription());
  return {};
}

KrResult KrDeviceSerialPort::Read(std::uint8_t* aBuffer, std::uint32_t aBufferSize, std::uint32_t& aBytesRead,
                                  std::uint32_t aTimeoutMs) {
  return Read(aBuffer, aBufferSize, aBytesRead, aTimeoutMs, {});
}

KrResult KrDeviceSerialPort::Read(std::uint8_t* aBuffer, std::uint32_t aBufferSize, std::uint32_t& aBytesRead,
                                  std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  constexpr const char* kAttempt = "Reading from the serial port";
  aBytesRead = 0;
  if (!aBuffer || aBufferSize == 0)
    return {KrResult::Code::InvalidInput, "Reading from the serial port: there is no room for a byte."};
  const Body::Call call(*mBody);
  if (!call.channel)
    return RefuseClosed(kAttempt);
  const krbase::EitherStop stop(call.token, aCancel);
  if (stop.GetToken().stop_requested())
    return RefuseCancelled(kAttempt);
  std::size_t read = 0;
  KrResult result =
      Guard(kAttempt, [&] { return call.channel->Read(aBuffer, aBufferSize, read, aTimeoutMs, stop.GetToken()); });
  if (read > aBufferSize)
    return {KrResult::Code::ProtocolError, "Reading from the serial port: its line says to have given " +
                                               std::to_string(read) + " bytes where " + std::to_string(aBufferSize) +
                                               " were asked for."};
  aBytesRead = static_cast<std::uint32_t>(read);
  return result;
}

KrResult KrDeviceSerialPort::Write(const std::uint8_t* aData, std::uint32_t aSize, std::uint32_t& aBytesWritten) {
  return Write(aData, aSize, aBytesWritten, {});
}

KrResult KrDeviceSerialPort::Write(const std::uint8_t* aData, std::uint32_t aSize, std::uint32_t& aBytesWritten,
                                   const std::stop_token& aCancel) {
  return Write(aData, aSize, aBytesWritten, kNoLimitMs, aCancel);
}

KrResult KrDeviceSerialPort::Write(const std::uint8_t* aData, std::uint32_t aSize, std::uint32_t& aBytesWritten,
                                   std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  constexpr const char* kAttempt = "Writing to the serial port";
  aBytesWritten = 0;
  if (!aData && aSize > 0)
    return {KrResult::Code::InvalidInput, "Writing to the serial port: there are no bytes (null)."};
  const Body::Call call(*mBody);
  if (!call.channel)
    return RefuseClosed(kAttempt);
  const krbase::EitherStop stop(call.token, aCancel);
  const krserial::WriteTurns::Turn turn(mBody->turns, stop.GetToken());
  if (!turn.IsMine() || stop.GetToken().stop_requested())
    return RefuseCancelled(kAttempt);
  return Guard(kAttempt,
               [&] { return Body::WriteAll(*call.channel, aData, aSize, aBytesWritten, aTimeoutMs, stop.GetToken()); });
}

void KrDeviceSerialPort::Cancel() {
  std::stop_source cancelled(std::nostopstate);
  {
    const std::lock_guard lock(mBody->mutex);
    cancelled = mBody->cancel;
  }
  cancelled.request_stop();
}

#include "wirechannel.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace krtest {

namespace {

using Bytes = std::vector<std::uint8_t>;

class SocketChannel final : public krsystem::IByteChannel {
public:
  SocketChannel(int aSocket, std::shared_ptr<WireEnds> aWire) : mSocket(aSocket), mWire(std::move(aWire)) {}
  ~SocketChannel() override { ::close(mSocket); }

  KrResult Open() override { return {}; }
  void Close() override {}
  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override {
    aRead = 0;
    if (KrResult result = Await(POLLIN, aTimeoutMs, aCancel); !result.IsOK())
      return result;
    const ssize_t read = ::recv(mSocket, aBytes, aSize, MSG_DONTWAIT);
    if (read <= 0)
      return {KrResult::Code::ConnectionLost, "The line is gone."};
    aRead = static_cast<std::size_t>(read);
    return {};
  }
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override {
    aWritten = 0;
    if (KrResult result = Await(POLLOUT, aTimeoutMs, aCancel); !result.IsOK())
      return result;
    Bytes bytes(aBytes, aBytes + aSize);
    if (mWire->hostRate != mWire->cameraRate)
      std::ranges::transform(bytes, bytes.begin(), [](std::uint8_t aByte) { return aByte ^ 0xB5; });
    const ssize_t written = ::send(mSocket, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (written < 0)
      return {KrResult::Code::ConnectionLost, "The line is gone."};
    aWritten = static_cast<std::size_t>(written);
    return {};
  }

private:
  KrResult Await(short aEvents, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) const {
    int ends[2];
    if (::pipe(ends) != 0)
      throw std::runtime_error("There is no pipe.");
    int ready = 0;
    pollfd polled[2] = {{mSocket, aEvents, 0}, {ends[0], POLLIN, 0}};
    {
      const std::stop_callback wake(aCancel, [&] { static_cast<void>(!::write(ends[1], "", 1)); });
      ready = ::poll(polled, 2, static_cast<int>(std::min<std::uint32_t>(aTimeoutMs, 1u << 30)));
    }
    ::close(ends[0]);
    ::close(ends[1]);
    if (aCancel.stop_requested())
      return {KrResult::Code::Aborted, "The call was ended."};
    return ready > 0 ? KrResult() : KrResult(KrResult::Code::TimeLimitExceeded, "Nothing came.");
  }

  const int mSocket;
  const std::shared_ptr<WireEnds> mWire;
};

} // namespace

std::shared_ptr<krsystem::IByteChannel> MakeWireChannel(int aSocket, std::shared_ptr<WireEnds> aWire) {
  return std::make_shared<SocketChannel>(aSocket, std::move(aWire));
}

} // namespace krtest

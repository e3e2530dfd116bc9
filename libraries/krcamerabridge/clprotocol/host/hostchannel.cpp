#include "clprotocol/host/hostchannel.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace krcamerabridge {

// What the driver has started is left to the keeper.
void HostChannel::End() {
  _exit(1);
}

WireFrame HostChannel::AwaitCall() {
  std::unique_lock lock(mMutex);
  mChanged.wait(lock, [this] { return mCall.has_value(); });
  return *std::exchange(mCall, std::nullopt);
}

void HostChannel::Send(const WireFrame& aFrame) {
  const std::vector<std::uint8_t> bytes = MakeWireBytes(aFrame);
  const std::lock_guard lock(mSending);
  for (std::size_t sent = 0; sent < bytes.size();) {
    const ssize_t count = send(mSocket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count < 0 && errno != EINTR)
      End();
    sent += count > 0 ? static_cast<std::size_t>(count) : 0;
  }
}

WireFrame HostChannel::AskLine(const WireFrame& aUse) {
  const std::lock_guard asking(mAsking);
  Send(aUse);
  std::unique_lock lock(mMutex);
  mChanged.wait(lock, [this] { return mLineAnswer.has_value(); });
  return *std::exchange(mLineAnswer, std::nullopt);
}

WireKind HostChannel::Hear() {
  std::optional<WireFrame> frame = mReader.Take();
  while (!frame) {
    std::array<std::uint8_t, 65536> bytes;
    const ssize_t count = recv(mSocket, bytes.data(), bytes.size(), 0);
    if (count == 0 || (count < 0 && errno != EINTR) || mReader.IsBroken())
      End();
    if (count > 0)
      mReader.Add(std::span(bytes).first(static_cast<std::size_t>(count)));
    frame = mReader.Take();
  }
  const WireKind kind = frame->kind;
  if (kind != WireKind::StopProbe) {
    const std::lock_guard lock(mMutex);
    (kind == WireKind::LineAnswer ? mLineAnswer : mCall) = std::move(frame);
    mChanged.notify_all();
  }
  return kind;
}

} // namespace krcamerabridge

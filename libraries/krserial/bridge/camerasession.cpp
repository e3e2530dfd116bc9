#include "bridge/camerasession.h"

#include "krbase/krclsockets.h"

#include <cerrno>
#include <cstddef>
#include <optional>

#include <poll.h>
#include <sys/socket.h>

namespace krserial {

CameraSession::Received CameraSession::Receive(KrCLMessage& aMessage) {
  const std::ptrdiff_t length = KrReceiveCLPacket(mSocket.Get(), mPacket.data(), mPacket.size());
  if (length < 0)
    return errno == EAGAIN || errno == EINTR ? Received::Nothing : Received::Gone;
  if (length == 0 || static_cast<std::size_t>(length) > mPacket.size())
    return Received::Gone;
  const std::optional<KrCLMessage> message =
      KrParseCLMessage({mPacket.data(), static_cast<std::size_t>(length)}, KrCLSide::Program);
  if (!message)
    return Received::Gone;
  aMessage = *message;
  return Received::Message;
}

void CameraSession::Answer(KrCLMessageKind aKind, std::uint32_t aValue, std::string_view aBytes) {
  mAnswers.push_back(KrMakeCLMessage({aKind, aValue, aBytes}));
}

bool CameraSession::SendAnswers() {
  while (!mAnswers.empty()) {
    if (!SendPacket(mAnswers.front()))
      return false;
    mAnswers.pop_front();
  }
  return true;
}

bool CameraSession::Send(std::string_view aBytes) {
  return SendPacket(KrMakeCLMessage({KrCLMessageKind::Data, 0, aBytes}));
}

bool CameraSession::SendPacket(const std::vector<std::uint8_t>& aPacket) {
  // A program that has gone is found when its socket is read.
  return ::send(mSocket.Get(), aPacket.data(), aPacket.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0 ||
         (errno != EAGAIN && errno != EINTR && errno != ENOBUFS && errno != ENOMEM);
}

bool CameraSession::HasHungUp() const {
  pollfd waited{.fd = mSocket.Get(), .events = 0, .revents = 0};
  return ::poll(&waited, 1, 0) > 0 && (waited.revents & (POLLHUP | POLLERR)) != 0;
}

} // namespace krserial

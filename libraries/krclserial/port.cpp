#include "port.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/socket.h>

namespace krclserial {

namespace {

// What is received ahead of a read that asks for less; the rest waits in the socket and, beyond it, in the bridge.
constexpr std::size_t kMostAhead = 64 * 1024;
// What may come before an answer does, which the bridge sends first.
constexpr std::size_t kMostBeforeAnswer = 16 * 1024 * 1024;
// A device may need seconds to set its speed.
constexpr std::chrono::seconds kAnswerLimit{10};

} // namespace

CLINT32 Port::Open(const KrCLPort& aPort, std::shared_ptr<Port>& aOpened) {
  krbase::FileDescriptor socket;
  const KrResult connected = KrConnectCLPort(aPort, kAnswerLimit, socket);
  if (connected == KrResult::Code::TimeLimitExceeded)
    return CL_ERR_PORT_IN_USE;
  if (connected == KrResult::Code::SystemError)
    return CL_ERR_OUT_OF_MEMORY;
  if (!connected.IsOK())
    return CL_ERR_INVALID_INDEX;
  const std::shared_ptr<Port> port(new Port(std::move(socket)));
  const CLINT32 result = port->AwaitWelcome(aPort.name.ToUtf8());
  if (result == CL_ERR_NO_ERR)
    aOpened = port;
  return result;
}

CLINT32 Port::AwaitWelcome(const std::string& aName) {
  const std::lock_guard receiving(mReceiving);
  const Clock::time_point end = Clock::now() + kAnswerLimit;
  while (true) {
    Receive(kMostAhead);
    if (mIsWelcome && mWelcome != KrCLAnswer::Taken)
      return CL_ERR_PORT_IN_USE;
    // The number may be another port's since it was listed.
    if (mIsWelcome && mName != aName)
      return CL_ERR_INVALID_INDEX;
    if (mHasSpeeds)
      return CL_ERR_NO_ERR;
    if (mIsLost)
      return CL_ERR_INVALID_INDEX;
    if (!Wait(POLLIN, end))
      return CL_ERR_PORT_IN_USE;
  }
}

CLINT32 Port::Read(char* aBytes, std::size_t aSize, std::chrono::milliseconds aLimit) {
  const Clock::time_point end = Clock::now() + aLimit;
  const std::unique_lock receiving(mReceiving, end);
  if (!receiving)
    return CL_ERR_TIMEOUT;
  while (true) {
    Receive(std::max(aSize, kMostAhead));
    if (mReceived.size() >= aSize)
      break;
    if (mIsLost)
      return CL_ERR_INVALID_REFERENCE;
    if (!Wait(POLLIN, end))
      return CL_ERR_TIMEOUT;
  }
  const auto last = mReceived.begin() + static_cast<std::ptrdiff_t>(aSize);
  std::copy(mReceived.begin(), last, aBytes);
  mReceived.erase(mReceived.begin(), last);
  return CL_ERR_NO_ERR;
}

CLINT32 Port::Write(const char* aBytes, CLUINT32& aSize, std::chrono::milliseconds aLimit) {
  const Clock::time_point end = Clock::now() + aLimit;
  const std::unique_lock sending(mSending, end);
  if (!sending) {
    aSize = 0;
    return CL_ERR_TIMEOUT;
  }
  std::string_view rest(aBytes, aSize);
  Sent sent = Sent::All;
  while (!rest.empty()) {
    const std::string_view piece = rest.substr(0, kKrCLMostBytes);
    sent = Send({KrCLMessageKind::Data, 0, piece}, end);
    if (sent != Sent::All)
      break;
    rest.remove_prefix(piece.size());
  }
  if (sent == Sent::Lost)
    return CL_ERR_INVALID_REFERENCE;
  aSize -= static_cast<CLUINT32>(rest.size());
  return sent == Sent::All ? CL_ERR_NO_ERR : CL_ERR_TIMEOUT;
}

CLINT32 Port::CountAvailable(CLUINT32& aCount) {
  const std::lock_guard receiving(mReceiving);
  Receive(kMostAhead);
  if (mIsLost && mReceived.empty())
    return CL_ERR_INVALID_REFERENCE;
  aCount = static_cast<CLUINT32>(std::min<std::size_t>(mReceived.size(), std::numeric_limits<CLUINT32>::max()));
  return CL_ERR_NO_ERR;
}

CLINT32 Port::Flush() {
  const std::lock_guard receiving(mReceiving);
  const Clock::time_point end = Clock::now() + kAnswerLimit;
  Receive(kMostBeforeAnswer);
  mReceived.clear();
  const std::unique_lock sending(mSending, end);
  const Sent sent = sending ? Send({KrCLMessageKind::Flush}, end) : Sent::Late;
  if (sent != Sent::All)
    return sent == Sent::Lost ? CL_ERR_INVALID_REFERENCE : CL_ERR_TIMEOUT;
  ++mFlushesAsked;
  mIsFlushing = true;
  const CLINT32 result = AwaitFlushed(end);
  mIsFlushing = false;
  return result;
}

CLINT32 Port::AwaitFlushed(Clock::time_point aEnd) {
  while (true) {
    Receive(kMostAhead);
    if (mFlushesAnswered == mFlushesAsked)
      return CL_ERR_NO_ERR;
    mReceived.clear();
    if (mIsLost)
      return CL_ERR_INVALID_REFERENCE;
    if (Clock::now() > aEnd || !Wait(POLLIN, aEnd))
      return CL_ERR_TIMEOUT;
  }
}

CLINT32 Port::GetSpeeds(CLUINT32& aBits) {
  const std::lock_guard receiving(mReceiving);
  Receive(kMostAhead);
  if (mIsLost)
    return CL_ERR_INVALID_REFERENCE;
  aBits = mSpeeds;
  return CL_ERR_NO_ERR;
}

CLINT32 Port::SetSpeed(CLUINT32 aBit) {
  if (KrGetCLSpeed(aBit) == 0)
    return CL_ERR_BAUD_RATE_NOT_SUPPORTED;
  const std::lock_guard receiving(mReceiving);
  const std::lock_guard sending(mSending);
  const Clock::time_point end = Clock::now() + kAnswerLimit;
  switch (Send({KrCLMessageKind::SetSpeed, aBit}, end)) {
  case Sent::Lost:
    return CL_ERR_INVALID_REFERENCE;
  case Sent::Late:
    return CL_ERR_TIMEOUT;
  case Sent::All:
    break;
  }
  ++mSpeedsAsked;
  return AwaitSpeedSet(end);
}

CLINT32 Port::AwaitSpeedSet(Clock::time_point aEnd) {
  const std::size_t most = mReceived.size() + kMostBeforeAnswer;
  while (true) {
    Receive(most);
    // One that came too late for its own call is not taken for this one's.
    if (mSpeedsAnswered == mSpeedsAsked)
      break;
    if (mIsLost)
      return CL_ERR_INVALID_REFERENCE;
    if (mReceived.size() >= most || !Wait(POLLIN, aEnd))
      return CL_ERR_TIMEOUT;
  }
  if (mSpeedSet == KrCLAnswer::Taken)
    return CL_ERR_NO_ERR;
  return mSpeedSet == KrCLAnswer::NotSupported ? CL_ERR_BAUD_RATE_NOT_SUPPORTED : CL_ERR_TIMEOUT;
}

void Port::Close() {
  ::shutdown(mSocket.Get(), SHUT_RDWR);
  const std::lock_guard receiving(mReceiving);
  const std::lock_guard sending(mSending);
  mIsLost = true;
  mReceived.clear();
  mSocket.Close();
}

void Port::Receive(std::size_t aMost) {
  while (!mIsLost && mReceived.size() < aMost) {
    const std::ptrdiff_t length = KrReceiveCLPacket(mSocket.Get(), mPacket.data(), mPacket.size());
    if (length < 0 && errno == EINTR)
      continue;
    if (length < 0 && errno == EAGAIN)
      return;
    std::optional<KrCLMessage> message;
    if (length > 0 && static_cast<std::size_t>(length) <= mPacket.size())
      message = KrParseCLMessage({mPacket.data(), static_cast<std::size_t>(length)}, KrCLSide::Bridge);
    if (message)
      Understand(*message);
    else
      mIsLost = true;
  }
}

void Port::Understand(const KrCLMessage& aMessage) {
  switch (aMessage.kind) {
  case KrCLMessageKind::Welcome:
    mIsWelcome = true;
    mWelcome = static_cast<KrCLAnswer>(aMessage.value);
    mName = aMessage.bytes;
    break;
  case KrCLMessageKind::Data:
    mReceived.insert(mReceived.end(), aMessage.bytes.begin(), aMessage.bytes.end());
    break;
  case KrCLMessageKind::SpeedSet:
    mSpeedSet = static_cast<KrCLAnswer>(aMessage.value);
    ++mSpeedsAnswered;
    break;
  case KrCLMessageKind::Speeds:
    mSpeeds = aMessage.value;
    mHasSpeeds = mIsWelcome;
    break;
  case KrCLMessageKind::Flushed:
    ++mFlushesAnswered;
    if (mIsFlushing)
      mReceived.clear();
    break;
  case KrCLMessageKind::SetSpeed:
  case KrCLMessageKind::Flush:
    break; // Never a bridge's.
  }
}

Port::Sent Port::Send(const KrCLMessage& aMessage, Clock::time_point aEnd) {
  const std::vector<std::uint8_t> packet = KrMakeCLMessage(aMessage);
  while (::send(mSocket.Get(), packet.data(), packet.size(), MSG_DONTWAIT | MSG_NOSIGNAL) < 0) {
    if (errno != EAGAIN && errno != EINTR)
      return Sent::Lost;
    if (!Wait(POLLOUT, aEnd))
      return Sent::Late;
  }
  return Sent::All;
}

bool Port::Wait(short aEvents, Clock::time_point aEnd) const {
  while (true) {
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(aEnd - Clock::now()).count();
    const auto limit = std::clamp<std::int64_t>(rest, 0, std::numeric_limits<int>::max());
    pollfd waited{.fd = mSocket.Get(), .events = aEvents, .revents = 0};
    const int ready = ::poll(&waited, 1, static_cast<int>(limit));
    if (ready > 0)
      return true;
    if (ready == 0 ? limit >= rest : errno != EINTR)
      return false;
  }
}

} // namespace krclserial

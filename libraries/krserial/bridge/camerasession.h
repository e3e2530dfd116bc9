#pragma once
// One program's session at a published Camera Link port: the packets of its socket. What bytes and speeds mean is left
// to the end that owns it.

#include "krbase/filedescriptor.h"
#include "krbase/krclwire.h"

#include <array>
#include <cstdint>
#include <deque>
#include <string_view>
#include <utility>
#include <vector>

namespace krserial {

/// Thread: one, the one that serves the socket.
class CameraSession {
public:
  explicit CameraSession(krbase::FileDescriptor aSocket) : mSocket(std::move(aSocket)) {}

  int GetSocket() const { return mSocket.Get(); }
  /// Whether answers wait that the program does not fetch: no more is asked of it until it does.
  bool HasAnswers() const { return !mAnswers.empty(); }

  /// What a look for a packet came to.
  enum class Received { Message, Nothing, Gone };
  /// Takes one packet; Gone also for one that a program may not send. The message's bytes live until the next call.
  Received Receive(KrCLMessage& aMessage);

  /// Queues an answer or the speeds; they go out before bytes of the line.
  void Answer(KrCLMessageKind aKind, std::uint32_t aValue, std::string_view aBytes = {});
  /// Sends what is queued; false when not all of it is taken now.
  bool SendAnswers();
  /// Sends bytes of the line; false when they are not taken now. What a program that has gone leaves is lost.
  bool Send(std::string_view aBytes);
  /// Whether the program has closed its end or died.
  bool HasHungUp() const;

private:
  bool SendPacket(const std::vector<std::uint8_t>& aPacket);

  krbase::FileDescriptor mSocket;
  std::deque<std::vector<std::uint8_t>> mAnswers;
  std::array<std::uint8_t, kKrCLMostMessage> mPacket = {};
};

} // namespace krserial

#pragma once
// The socket of a published port in the hands of a program that keeps to no rule.

#include "await.h"
#include "krbase/filedescriptor.h"
#include "krbase/krclwire.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

class RawProgram {
public:
  /// Connects with the first port of a directory.
  explicit RawProgram(const std::string& aDirectory) : mSocket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s/1.sock", aDirectory.c_str());
    EXPECT_EQ(::connect(mSocket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  }

  /// The next message's kind and value; nothing when the bridge has closed the connection.
  std::optional<std::pair<KrCLMessageKind, std::uint32_t>> Await() {
    std::array<std::uint8_t, kKrCLMostMessage> bytes{};
    pollfd waited{.fd = mSocket.Get(), .events = POLLIN, .revents = 0};
    EXPECT_EQ(::poll(&waited, 1, kLimitMs), 1) << "The bridge neither answers nor closes.";
    const ssize_t length = ::recv(mSocket.Get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (length <= 0)
      return std::nullopt;
    const auto message = KrParseCLMessage({bytes.data(), static_cast<std::size_t>(length)}, KrCLSide::Bridge);
    EXPECT_TRUE(message.has_value());
    return message ? std::optional(std::pair(message->kind, message->value)) : std::nullopt;
  }
  /// Whether the bridge closes the connection, whatever it says before.
  bool IsClosed() {
    while (Await()) {
      if (testing::Test::HasFailure())
        return false;
    }
    return true;
  }
  /// Sends a packet; false when it is not taken, now or any more.
  bool Send(const std::vector<std::uint8_t>& aPacket) {
    return ::send(mSocket.Get(), aPacket.data(), aPacket.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
  }
  int GetSocket() const { return mSocket.Get(); }

private:
  inline static const int kLimitMs = 2 * krtest::GetGenerousMs();

  krbase::FileDescriptor mSocket;
};

#include "gvcpresponder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::uint16_t kPort = 3956;
constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kDiscoveryAcknowledgeSize = kHeaderSize + 248;

} // namespace

GvcpResponder::GvcpResponder(AnswerCommand aAnswer) : mAnswer(std::move(aAnswer)) {
  mSocket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(kPort);
  const int enable = 1;
  ::setsockopt(mSocket, SOL_SOCKET, SO_BROADCAST, &enable, sizeof(enable));
  EXPECT_EQ(::bind(mSocket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0)
      << "UDP port 3956 is in use; run the test by scripts/with-network.sh.";
  EXPECT_EQ(::pipe(mStopPipe.data()), 0);
  mThread = std::thread([this] { Serve(); });
}

GvcpResponder::~GvcpResponder() {
  ::close(mStopPipe[1]);
  mThread.join();
  ::close(mStopPipe[0]);
  ::close(mSocket);
}

void GvcpResponder::Serve() {
  std::array<pollfd, 2> waits = {pollfd{mSocket, POLLIN, 0}, pollfd{mStopPipe[0], POLLIN, 0}};
  while (::poll(waits.data(), waits.size(), -1) > 0 && waits[1].revents == 0) {
    std::array<std::uint8_t, 1024> buffer{};
    sockaddr_in sender{};
    socklen_t senderSize = sizeof(sender);
    const auto size =
        ::recvfrom(mSocket, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr*>(&sender), &senderSize);
    if (size < static_cast<ssize_t>(kHeaderSize))
      continue;
    for (const auto& answer : mAnswer(std::span(buffer).first(static_cast<std::size_t>(size))))
      ::sendto(mSocket, answer.data(), answer.size(), 0, reinterpret_cast<const sockaddr*>(&sender), senderSize);
  }
}

std::vector<std::uint8_t> MakeDiscoveryAcknowledge(std::span<const std::uint8_t> aCommand, std::uint32_t aAddress,
                                                   const std::string& aSerialNumber) {
  std::vector<std::uint8_t> answer(kDiscoveryAcknowledgeSize);
  answer[3] = 0x03;
  answer[5] = 0xF8;
  std::copy_n(aCommand.begin() + 6, 2, answer.begin() + 6);
  PutBigEndian32(answer, kHeaderSize + 0x24, aAddress);
  PutText(answer, kHeaderSize + 0x48, "Maker");
  PutText(answer, kHeaderSize + 0x68, "Model");
  PutText(answer, kHeaderSize + 0xD8, aSerialNumber);
  return answer;
}

void PutBigEndian32(std::vector<std::uint8_t>& aBytes, std::size_t aOffset, std::uint32_t aValue) {
  for (std::size_t i = 0; i < 4; ++i)
    aBytes[aOffset + i] = static_cast<std::uint8_t>(aValue >> (24 - 8 * i));
}

void PutText(std::vector<std::uint8_t>& aBytes, std::size_t aOffset, const std::string& aText) {
  std::copy(aText.begin(), aText.end(), aBytes.begin() + static_cast<std::ptrdiff_t>(aOffset));
}

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

GvcpResponder::GvcpResponder(AnswerCommand aAnswer, GvcpAnswers aAnswers, std::uint32_t aAddress)
    : mAnswer(std::move(aAnswer)), mAnswers(aAnswers) {
  mSocket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(kPort);
  address.sin_addr.s_addr = htonl(aAddress);
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
  while (true) {
    const bool goesOn = mAnswers == GvcpAnswers::WithoutEnd && !mCommand.empty();
    if (::poll(waits.data(), waits.size(), goesOn ? 0 : -1) < 0 || waits[1].revents != 0)
      return;
    if (waits[0].revents != 0)
      TakeCommand();
    if (!mCommand.empty())
      Answer();
    if (mAnswers == GvcpAnswers::Once)
      mCommand.clear();
  }
}

void GvcpResponder::TakeCommand() {
  std::array<std::uint8_t, 1024> buffer{};
  socklen_t senderSize = sizeof(mSender);
  const auto size =
      ::recvfrom(mSocket, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr*>(&mSender), &senderSize);
  if (size >= static_cast<ssize_t>(kHeaderSize))
    mCommand.assign(buffer.begin(), buffer.begin() + size);
}

void GvcpResponder::Answer() {
  for (const auto& answer : mAnswer(mCommand))
    ::sendto(mSocket, answer.data(), answer.size(), 0, reinterpret_cast<const sockaddr*>(&mSender), sizeof(mSender));
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

std::vector<std::uint8_t> MakeReadAcknowledge(std::span<const std::uint8_t> aCommand, std::uint32_t aValue) {
  std::vector<std::uint8_t> answer = {0, 0, 0, 0x81, 0, 4, aCommand[6], aCommand[7], 0, 0, 0, 0};
  PutBigEndian32(answer, kHeaderSize, aValue);
  return answer;
}

std::vector<std::uint8_t> MakePendingAcknowledge(std::span<const std::uint8_t> aCommand, std::uint16_t aMilliseconds) {
  std::vector<std::uint8_t> answer = {0, 0, 0, 0x89, 0, 4, aCommand[6], aCommand[7], 0, 0, 0, 0};
  PutBigEndian32(answer, kHeaderSize, aMilliseconds);
  return answer;
}

std::vector<std::uint8_t> MakeReadRefusal(std::span<const std::uint8_t> aCommand, std::uint16_t aStatus) {
  return {static_cast<std::uint8_t>(aStatus >> 8),
          static_cast<std::uint8_t>(aStatus),
          0,
          0x81,
          0,
          0,
          aCommand[6],
          aCommand[7]};
}

bool IsReadRegister(std::span<const std::uint8_t> aCommand) {
  return aCommand[2] == 0 && aCommand[3] == 0x80;
}

void PutBigEndian32(std::vector<std::uint8_t>& aBytes, std::size_t aOffset, std::uint32_t aValue) {
  for (std::size_t i = 0; i < 4; ++i)
    aBytes[aOffset + i] = static_cast<std::uint8_t>(aValue >> (24 - 8 * i));
}

void PutText(std::vector<std::uint8_t>& aBytes, std::size_t aOffset, const std::string& aText) {
  std::copy(aText.begin(), aText.end(), aBytes.begin() + static_cast<std::ptrdiff_t>(aOffset));
}

#include "camerarelay.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <cerrno>
#include <cstdlib>
#include <netinet/in.h>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::uint16_t kControlPort = 3956;
constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kIpAndUdpSize = 28;
constexpr int kAnswerLimitMs = 10'000;
constexpr std::uint16_t kReadRegisterCommand = 0x0080;
constexpr std::uint16_t kWriteRegisterCommand = 0x0082;
constexpr std::uint16_t kPacketResendCommand = 0x0040;
constexpr std::uint16_t kDiscoveryAcknowledge = 0x0003;
constexpr std::size_t kDiscoveredAddress = 0x24;
constexpr std::uint16_t kWriteProtected = 0x8004;
constexpr std::uint32_t kCapability = 0x0934; // Of the control protocol.
constexpr std::uint32_t kResendBit = 1u << 2;
constexpr std::uint32_t kStreamPort = 0x0D00;
constexpr std::uint32_t kPacketSize = 0x0D04;
constexpr std::uint32_t kStreamDestination = 0x0D18;
constexpr std::uint32_t kFireBit = 1u << 31;
constexpr std::uint32_t kDoNotFragmentBit = 1u << 30;

sockaddr_in MakeAddress(const std::string& aAddress, std::uint16_t aPort) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(aPort);
  ::inet_pton(AF_INET, aAddress.c_str(), &address.sin_addr);
  return address;
}

int OpenSocket(const std::string& aAddress, std::uint16_t aPort) {
  const int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = MakeAddress(aAddress, aPort);
  // A burst of a whole frame must fit, or the relay itself would lose packets.
  const int bytes = 16 << 20;
  if (::setsockopt(descriptor, SOL_SOCKET, SO_RCVBUFFORCE, &bytes, sizeof(bytes)) != 0)
    ::setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &bytes, sizeof(bytes));
  EXPECT_EQ(::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0)
      << aAddress << " cannot be used; run the test by scripts/with-network.sh.";
  return descriptor;
}

std::uint32_t Read32(std::span<const std::uint8_t> aBytes, std::size_t aOffset) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i)
    value = value << 8 | aBytes[aOffset + i];
  return value;
}

std::uint16_t Read16(std::span<const std::uint8_t> aBytes, std::size_t aOffset) {
  return static_cast<std::uint16_t>(aBytes[aOffset] << 8 | aBytes[aOffset + 1]);
}

void Write32(std::vector<std::uint8_t>& aBytes, std::size_t aOffset, std::uint32_t aValue) {
  for (std::size_t i = 0; i < 4; ++i)
    aBytes[aOffset + i] = static_cast<std::uint8_t>(aValue >> (24 - 8 * i));
}

// The acknowledge of a register that cannot be written.
std::vector<std::uint8_t> MakeRefusal(std::span<const std::uint8_t> aCommand) {
  return {kWriteProtected >> 8, kWriteProtected & 0xFF, 0x00, 0x83, 0x00, 0x04, aCommand[6], aCommand[7], 0, 0, 0, 0};
}

std::optional<StreamPacket> ParseStreamPacket(std::span<const std::uint8_t> aDatagram) {
  if (aDatagram.size() < kHeaderSize)
    return std::nullopt;
  return StreamPacket{
      .frame = 0, .format = static_cast<std::uint8_t>(aDatagram[4] & 0x0F), .number = Read32(aDatagram, 4) & 0xFFFFFF};
}

void RunIp(const std::string& aArguments) {
  const std::string command = "PATH=$PATH:/usr/sbin:/sbin ip " + aArguments;
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

} // namespace

void AddLoopbackAddress(const std::string& aAddress) {
  RunIp("address replace " + aAddress + "/8 dev lo");
}

LoopbackMtu::LoopbackMtu(std::uint32_t aBytes) {
  RunIp("link set lo mtu " + std::to_string(aBytes));
}

LoopbackMtu::~LoopbackMtu() {
  RunIp("link set lo mtu 65536");
}

CameraRelay::CameraRelay(const std::string& aAddress, const std::string& aCameraAddress, RelayOrders aOrders)
    : mAddress(aAddress), mOrders(std::move(aOrders)), mFront(OpenSocket(aAddress, kControlPort)),
      mBack(OpenSocket(aAddress, 0)), mStream(OpenSocket(aAddress, 0)) {
  const sockaddr_in camera = MakeAddress(aCameraAddress, kControlPort);
  EXPECT_EQ(::connect(mBack, reinterpret_cast<const sockaddr*>(&camera), sizeof(camera)), 0);
  EXPECT_EQ(::pipe(mStopPipe.data()), 0);
  mControlThread = std::thread([this] { RelayControl(); });
  mStreamThread = std::thread([this] { RelayStream(); });
}

CameraRelay::~CameraRelay() {
  ::close(mStopPipe[1]);
  mControlThread.join();
  mStreamThread.join();
  for (const int descriptor : {mStopPipe[0], mFront, mBack, mStream})
    ::close(descriptor);
}

std::vector<std::uint32_t> CameraRelay::GetWritten(std::uint32_t aRegister) const {
  const std::lock_guard lock(mMutex);
  const auto written = mWritten.find(aRegister);
  return written != mWritten.end() ? written->second : std::vector<std::uint32_t>();
}

void CameraRelay::RelayControl() {
  std::array<pollfd, 2> waits = {pollfd{mFront, POLLIN, 0}, pollfd{mStopPipe[0], POLLIN, 0}};
  while (::poll(waits.data(), waits.size(), -1) > 0 && waits[1].revents == 0) {
    std::array<std::uint8_t, 2048> buffer{};
    sockaddr_in host{};
    socklen_t hostSize = sizeof(host);
    const auto size =
        ::recvfrom(mFront, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr*>(&host), &hostSize);
    if (size < static_cast<ssize_t>(kHeaderSize))
      continue;
    const auto command = std::span<const std::uint8_t>(buffer).first(static_cast<std::size_t>(size));
    if (mOrders.isUnheard && mOrders.isUnheard(Read16(command, 2)))
      continue;
    const Datagram answer = Answer(command);
    if (mOrders.getAnswerDelay && ::poll(&waits[1], 1, static_cast<int>(mOrders.getAnswerDelay().count())) != 0)
      return;
    if (!answer.empty())
      ::sendto(mFront, answer.data(), answer.size(), 0, reinterpret_cast<const sockaddr*>(&host), hostSize);
  }
}

CameraRelay::Datagram CameraRelay::Answer(std::span<const std::uint8_t> aCommand) {
  if (Read16(aCommand, 2) == kWriteRegisterCommand && aCommand.size() == kHeaderSize + 8)
    return AnswerWrite(aCommand);
  if (Read16(aCommand, 2) == kPacketResendCommand && aCommand.size() >= kHeaderSize + 12) {
    Resend(aCommand);
    return {};
  }
  Datagram answer = Forward(aCommand);
  StateRegister(aCommand, answer);
  // The camera knows no resends; the relay does.
  const bool isCapabilityRead = Read16(aCommand, 2) == kReadRegisterCommand && aCommand.size() == kHeaderSize + 4 &&
                                Read32(aCommand, kHeaderSize) == kCapability;
  if (mOrders.isLate && isCapabilityRead && answer.size() == kHeaderSize + 4)
    Write32(answer, kHeaderSize, Read32(answer, kHeaderSize) | kResendBit);
  // The camera knows nothing of its relay.
  if (answer.size() > kHeaderSize + kDiscoveredAddress + 4 && Read16(answer, 2) == kDiscoveryAcknowledge)
    Write32(answer, kHeaderSize + kDiscoveredAddress, ntohl(MakeAddress(mAddress, 0).sin_addr.s_addr));
  return answer;
}

void CameraRelay::StateRegister(std::span<const std::uint8_t> aCommand, Datagram& aAnswer) const {
  if (Read16(aCommand, 2) != kReadRegisterCommand || aCommand.size() != kHeaderSize + 4)
    return;
  const auto stated = mOrders.statedRegisters.find(Read32(aCommand, kHeaderSize));
  if (stated != mOrders.statedRegisters.end() && aAnswer.size() == kHeaderSize + 4)
    Write32(aAnswer, kHeaderSize, stated->second);
}

CameraRelay::Datagram CameraRelay::AnswerWrite(std::span<const std::uint8_t> aCommand) {
  const std::uint32_t address = Read32(aCommand, kHeaderSize);
  const std::uint32_t value = Read32(aCommand, kHeaderSize + 4);
  if (mOrders.refusedRegisters.contains(address))
    return MakeRefusal(aCommand);
  {
    const std::lock_guard lock(mMutex);
    mWritten[address].push_back(value);
  }
  Datagram command(aCommand.begin(), aCommand.end());
  // The stream goes through the relay; the packet size is kept without the bits of a trial.
  if (address == kStreamDestination) {
    mHostAddress = value;
    Write32(command, kHeaderSize + 4, ntohl(MakeAddress(mAddress, 0).sin_addr.s_addr));
  } else if (address == kStreamPort) {
    mHostPort = value;
    sockaddr_in own{};
    socklen_t size = sizeof(own);
    ::getsockname(mStream, reinterpret_cast<sockaddr*>(&own), &size);
    Write32(command, kHeaderSize + 4, value != 0 ? ntohs(own.sin_port) : 0);
  } else if (address == kPacketSize) {
    Write32(command, kHeaderSize + 4, value & ~(kFireBit | kDoNotFragmentBit));
    if ((value & kFireBit) != 0)
      SendTrial(value & 0xFFFF);
  }
  return Forward(command);
}

// One command after the other, so that no request number is in use twice.
CameraRelay::Datagram CameraRelay::Forward(std::span<const std::uint8_t> aCommand) {
  ::send(mBack, aCommand.data(), aCommand.size(), 0);
  constexpr std::uint8_t kAcknowledgeWanted = 0x01;
  if ((aCommand[1] & kAcknowledgeWanted) == 0)
    return {};
  std::array<pollfd, 2> waits = {pollfd{mBack, POLLIN, 0}, pollfd{mStopPipe[0], POLLIN, 0}};
  while (::poll(waits.data(), waits.size(), kAnswerLimitMs) > 0 && waits[1].revents == 0) {
    Datagram answer(2048);
    const auto size = ::recv(mBack, answer.data(), answer.size(), 0);
    answer.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    if (answer.size() >= kHeaderSize && Read16(answer, 6) == Read16(aCommand, 6))
      return answer;
    if (size < 0)
      break;
  }
  return {};
}

void CameraRelay::SendTrial(std::uint32_t aBytes) {
  ++mTrials;
  if (aBytes > mOrders.largestTrial || aBytes < kIpAndUdpSize)
    return;
  SendToHost(Datagram(aBytes - kIpAndUdpSize));
}

// The command names a channel, a frame, the first packet and the last.
void CameraRelay::Resend(std::span<const std::uint8_t> aCommand) {
  const std::uint16_t frame = Read16(aCommand, kHeaderSize + 2);
  const std::uint32_t first = Read32(aCommand, kHeaderSize + 4) & 0xFFFFFF;
  const std::uint32_t last = Read32(aCommand, kHeaderSize + 8) & 0xFFFFFF;
  const std::lock_guard lock(mMutex);
  const auto begin = mLate.lower_bound({frame, first});
  const auto end = mLate.upper_bound({frame, last});
  for (auto packet = begin; packet != end; packet = mLate.erase(packet)) {
    SendToHost(packet->second);
    ++mResentPackets;
  }
}

void CameraRelay::SendToHost(std::span<const std::uint8_t> aPacket) const {
  sockaddr_in host{};
  host.sin_family = AF_INET;
  host.sin_addr.s_addr = htonl(mHostAddress);
  host.sin_port = htons(static_cast<std::uint16_t>(mHostPort));
  ::sendto(mStream, aPacket.data(), aPacket.size(), 0, reinterpret_cast<const sockaddr*>(&host), sizeof(host));
}

void CameraRelay::RelayStream() {
  std::array<pollfd, 2> waits = {pollfd{mStream, POLLIN, 0}, pollfd{mStopPipe[0], POLLIN, 0}};
  std::vector<std::uint8_t> buffer(1 << 16);
  Datagram overtaken;
  while (::poll(waits.data(), waits.size(), -1) > 0 && waits[1].revents == 0) {
    const auto size = ::recv(mStream, buffer.data(), buffer.size(), 0);
    const auto datagram = std::span<const std::uint8_t>(buffer).first(size > 0 ? static_cast<std::size_t>(size) : 0);
    auto packet = ParseStreamPacket(datagram);
    if (!packet)
      continue;
    mFrames += packet->format == kLeaderFormat ? 1 : 0;
    packet->frame = mFrames;
    if (mOrders.isLost && mOrders.isLost(*packet)) {
      ++mLostPackets;
      continue;
    }
    if (mOrders.isLate && mOrders.isLate(*packet)) {
      const std::lock_guard lock(mMutex);
      mLate[{Read16(datagram, 2), packet->number}].assign(datagram.begin(), datagram.end());
      continue;
    }
    if (overtaken.empty() && mOrders.isOvertaken && mOrders.isOvertaken(*packet)) {
      overtaken.assign(datagram.begin(), datagram.end());
      continue;
    }
    SendToHost(datagram);
    if (mOrders.isDoubled && mOrders.isDoubled(*packet))
      SendToHost(datagram);
    if (!overtaken.empty())
      SendToHost(std::exchange(overtaken, {}));
  }
}

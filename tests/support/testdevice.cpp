#include "testdevice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <net/if.h>
#include <netinet/in.h>
#include <netpacket/packet.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace {

using std::chrono::steady_clock;

constexpr std::uint16_t kPort = 3956;
constexpr std::uint16_t kDiscovery = 0x0002;
constexpr std::uint16_t kForceIP = 0x0004;
constexpr std::uint8_t kBroadcastAllowed = 0x10;
constexpr std::uint16_t kEveryType = 0x0003; // ETH_P_ALL

// A socket for whole frames of one adapter, of the calling thread's namespace; negative, with errno, where none can be.
int OpenFrameSocket(const std::string& aAdapter) {
  const int descriptor = ::socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, htons(kEveryType));
  sockaddr_ll local{};
  local.sll_family = AF_PACKET;
  local.sll_protocol = htons(kEveryType);
  local.sll_ifindex = static_cast<int>(::if_nametoindex(aAdapter.c_str()));
  if (descriptor >= 0 && local.sll_ifindex != 0 &&
      ::bind(descriptor, reinterpret_cast<const sockaddr*>(&local), sizeof(local)) == 0)
    return descriptor;
  if (descriptor >= 0)
    ::close(descriptor);
  return -1;
}

bool IsInSubnet(const DeviceAddresses& aDevice, std::uint32_t aAddress) {
  return aDevice.address != 0 && aDevice.mask != 0 && (aDevice.address & aDevice.mask) == (aAddress & aDevice.mask);
}

std::uint16_t GetCommand(const UdpFrame& aFrame) {
  return aFrame.payload.size() < 4 ? std::uint16_t{0}
                                   : static_cast<std::uint16_t>((aFrame.payload[2] << 8) | aFrame.payload[3]);
}

} // namespace

TestDevice::TestDevice(const NetworkHost& aHost, const std::string& aAdapter, const TestDeviceIdentity& aIdentity)
    : mRegisters(aIdentity), mChange([](const Bytes& aAcknowledge) { return std::vector<Bytes>{aAcknowledge}; }) {
  aHost.Run([&] {
    mSocket = OpenFrameSocket(aAdapter);
    EXPECT_GE(mSocket, 0) << aHost.GetName() << " has no packet socket on " << aAdapter << ": " << std::strerror(errno);
  });
  mStop = ::eventfd(0, EFD_CLOEXEC);
  if (mSocket >= 0)
    mThread = std::thread([this] { Serve(); });
}

TestDevice::~TestDevice() {
  ::eventfd_write(mStop, 1);
  if (mThread.joinable())
    mThread.join();
  ::close(mStop);
  if (mSocket >= 0)
    ::close(mSocket);
}

void TestDevice::SetSilent(bool aIsSilent) {
  const std::scoped_lock lock(mMutex);
  mIsSilent = aIsSilent;
}

void TestDevice::SetAnswerWay(AnswerWay aWay) {
  const std::scoped_lock lock(mMutex);
  mWay = aWay;
}

void TestDevice::ChangeDiscoveryAcknowledges(ChangeAcknowledge aChange) {
  const std::scoped_lock lock(mMutex);
  mChange = std::move(aChange);
}

void TestDevice::Flood(std::uint32_t aAnswersPerSecond) {
  const std::scoped_lock lock(mMutex);
  mFloodPerSecond = aAnswersPerSecond;
  mFloodAnswer = {};
}

DeviceAddresses TestDevice::GetAddresses() const {
  const std::scoped_lock lock(mMutex);
  return mRegisters.GetAddresses();
}

void TestDevice::SetForceIPManner(ForceIPManner aManner) {
  const std::scoped_lock lock(mMutex);
  mForceIPManner = aManner;
  mRegisters.SetForceIPManner(aManner);
}

std::uint32_t TestDevice::Read(std::uint32_t aRegister) const {
  const std::scoped_lock lock(mMutex);
  return mRegisters.Read(aRegister);
}

void TestDevice::Write(std::uint32_t aRegister, std::uint32_t aValue) {
  const std::scoped_lock lock(mMutex);
  mRegisters.Write(aRegister, aValue);
}

void TestDevice::SetForeignControl(std::uint32_t aPrivilege) {
  const std::scoped_lock lock(mMutex);
  mRegisters.SetForeignControl(aPrivilege);
}

std::uint32_t TestDevice::GetHeard(std::uint16_t aCommand) const {
  const std::scoped_lock lock(mMutex);
  const auto heard = mHeard.find(aCommand);
  return heard == mHeard.end() ? 0 : heard->second;
}

std::uint64_t TestDevice::GetSent() const {
  const std::scoped_lock lock(mMutex);
  return mSent;
}

void TestDevice::Serve() {
  constexpr int kFloodPauseMs = 1;
  std::array<std::uint8_t, 4096> buffer{};
  std::array<pollfd, 2> waits = {pollfd{mSocket, POLLIN, 0}, pollfd{mStop, POLLIN, 0}};
  bool isFlooding = false;
  while (::poll(waits.data(), waits.size(), isFlooding ? kFloodPauseMs : -1) >= 0 && waits[1].revents == 0) {
    sockaddr_ll sender{};
    socklen_t senderSize = sizeof(sender);
    // An adapter that is set down tells so once; the cable may come back.
    const auto size =
        ::recvfrom(mSocket, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr*>(&sender), &senderSize);
    const std::scoped_lock lock(mMutex);
    // What this host sends itself is heard, too.
    if (size > 0 && sender.sll_pkttype != PACKET_OUTGOING)
      TakeFrame(std::span(buffer).first(static_cast<std::size_t>(size)));
    GoOnFlooding();
    isFlooding = mFloodPerSecond != 0 && !mFloodAnswer.payload.empty();
  }
}

void TestDevice::TakeFrame(std::span<const std::uint8_t> aFrame) {
  if (const auto udp = ParseUdpFrame(aFrame); udp && IsForMe(*udp)) {
    ++mHeard[GetCommand(*udp)];
    if (!mIsSilent)
      TakeCommand(*udp);
  } else if (const auto question = ParseAddressQuestion(aFrame);
             question && !mIsSilent && question->address != 0 &&
             question->address == mRegisters.GetAddresses().address) {
    SendFrame(MakeAddressAnswer(*question, mRegisters.GetMac()));
  }
}

void TestDevice::TakeCommand(const UdpFrame& aFrame) {
  const DeviceAddresses before = mRegisters.GetAddresses();
  UdpFrame answer = MakeAnswerTo(aFrame, before);
  answer.payload = mRegisters.Answer(aFrame.payload, {aFrame.sourceAddress, aFrame.sourcePort}, steady_clock::now());
  if (answer.payload.empty())
    return;
  if (GetCommand(aFrame) == kForceIP && mForceIPManner == ForceIPManner::Obey) {
    Bytes acknowledge = std::move(answer.payload);
    answer = MakeAnswerTo(aFrame, mRegisters.GetAddresses());
    answer.payload = std::move(acknowledge);
  }
  if (GetCommand(aFrame) != kDiscovery) {
    SendFrame(MakeUdpFrame(answer));
    ++mSent;
    return;
  }
  if (mFloodPerSecond != 0) {
    mFloodAnswer = answer;
    mFloodStart = steady_clock::now();
    mFlooded = 0;
  }
  for (Bytes& datagram : mChange(answer.payload)) {
    answer.payload = std::move(datagram);
    SendFrame(MakeUdpFrame(answer));
    ++mSent;
  }
}

void TestDevice::GoOnFlooding() {
  if (mFloodPerSecond == 0 || mFloodAnswer.payload.empty() || mIsSilent)
    return;
  // Who cannot send that fast owes nothing, or each pass would take longer than the one before, with the mutex held.
  constexpr std::uint64_t kMostAtOnce = 500;
  const steady_clock::time_point now = steady_clock::now();
  const std::chrono::duration<double> elapsed = now - mFloodStart;
  auto due = static_cast<std::uint64_t>(elapsed.count() * mFloodPerSecond);
  if (due > mFlooded + kMostAtOnce) {
    due = kMostAtOnce;
    mFlooded = 0;
    mFloodStart = now - std::chrono::duration_cast<steady_clock::duration>(
                            std::chrono::duration<double>(static_cast<double>(kMostAtOnce) / mFloodPerSecond));
  }
  UdpFrame answer = mFloodAnswer;
  for (; mFlooded < due; ++mFlooded) {
    for (Bytes& datagram : mChange(mFloodAnswer.payload)) {
      answer.payload = std::move(datagram);
      SendFrame(MakeUdpFrame(answer));
      ++mSent;
    }
  }
}

bool TestDevice::IsForMe(const UdpFrame& aFrame) const {
  const DeviceAddresses mine = mRegisters.GetAddresses();
  const bool isForMyMac = aFrame.targetMac == kEveryMac || aFrame.targetMac == mRegisters.GetMac();
  const bool isForMyAddress = aFrame.targetAddress == kEveryAddress ||
                              (mine.address != 0 && (aFrame.targetAddress == mine.address ||
                                                     aFrame.targetAddress == (mine.address | ~mine.mask)));
  return aFrame.targetPort == kPort && isForMyMac && isForMyAddress;
}

UdpFrame TestDevice::MakeAnswerTo(const UdpFrame& aCommand, const DeviceAddresses& aFrom) const {
  // The commands that are broadcast tell in their flags whether the answer may be, too.
  const bool isAllowed =
      GetCommand(aCommand) <= kForceIP && aCommand.payload.size() > 1 && (aCommand.payload[1] & kBroadcastAllowed) != 0;
  const bool isForeign = !IsInSubnet(aFrom, aCommand.sourceAddress) || aCommand.sourceAddress == 0;
  const bool isBroadcast = mWay == AnswerWay::ByBroadcast || (mWay == AnswerWay::AsCamerasDo && isAllowed && isForeign);
  return {.sourceMac = mRegisters.GetMac(),
          .targetMac = isBroadcast ? kEveryMac : aCommand.sourceMac,
          .sourceAddress = aFrom.address,
          .targetAddress = isBroadcast ? kEveryAddress : aCommand.sourceAddress,
          .sourcePort = kPort,
          .targetPort = aCommand.sourcePort,
          .payload = {}};
}

void TestDevice::SendFrame(std::span<const std::uint8_t> aFrame) const {
  // A frame that cannot be sent, as with the cable pulled, is lost as on any network.
  [[maybe_unused]] const auto sent = ::send(mSocket, aFrame.data(), aFrame.size(), 0);
}

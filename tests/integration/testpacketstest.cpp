// Packets for trial, from a device that sends what it is asked for, something else, or far too much.

#include "gigevision/testpackets.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <atomic>
#include <map>
#include <set>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace krtransport;

constexpr std::uint32_t kLoopback = 0x7F000001;
constexpr std::uint32_t kOwnSetting = 1400;
constexpr std::uint32_t kIpAndUdpBytes = 28;

/// Registers of a device that sends a packet to loopback when one is fired.
class TrialDevice final : public IBootstrapRegisters {
public:
  TrialDevice() { mRegisters[kStreamPacketSizeRegister] = kOwnSetting; }
  ~TrialDevice() override {
    mIsFlooding = false;
    if (mFlood.joinable())
      mFlood.join();
    ::close(mSocket);
  }

  KrResult ReadRegister(std::uint32_t aAddress, std::uint32_t& aValue) override {
    aValue = mRegisters[aAddress];
    return {};
  }
  KrResult WriteRegister(std::uint32_t aAddress, std::uint32_t aValue) override {
    ++mWrites;
    if (mRefusals.erase(aAddress) > 0)
      return mRefusal;
    if (aAddress == kStreamPacketSizeRegister)
      aValue -= (aValue & kPacketSizeMask) % mStep;
    mRegisters[aAddress] = aValue;
    if (aAddress == kStreamPacketSizeRegister && (aValue & kFireTestPacketBit) != 0)
      Send((aValue & kPacketSizeMask) + mSurplus);
    return {};
  }

  /// Sends packets of a size without end.
  void Flood(std::uint32_t aBytes) {
    mFlood = std::thread([this, aBytes, port = mRegisters[kStreamPortRegister]] {
      while (mIsFlooding)
        SendTo(port, aBytes);
    });
  }

  std::map<std::uint32_t, std::uint32_t> mRegisters;
  std::set<std::uint32_t> mRefusals; ///< Registers whose next write fails.
  KrResult mRefusal{KrResult::Code::ProtocolError, "refused"};
  std::uint32_t mStep = 1;    ///< To which the packet size is rounded down.
  std::uint32_t mSurplus = 0; ///< By which packets are larger than they should be.
  int mWrites = 0;

private:
  void Send(std::uint32_t aBytes) { SendTo(mRegisters[kStreamPortRegister], aBytes); }
  void SendTo(std::uint32_t aPort, std::uint32_t aBytes) const {
    const std::vector<std::uint8_t> packet(aBytes - kIpAndUdpBytes);
    sockaddr_in host{};
    host.sin_family = AF_INET;
    host.sin_addr.s_addr = htonl(kLoopback);
    host.sin_port = htons(static_cast<std::uint16_t>(aPort));
    ::sendto(mSocket, packet.data(), packet.size(), 0, reinterpret_cast<const sockaddr*>(&host), sizeof(host));
  }

  const int mSocket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  std::atomic<bool> mIsFlooding{true};
  std::thread mFlood;
};

TEST(TestPackets, ComesThrough_PacketOfTheSize_IsTrue) {
  TrialDevice device;
  TestPackets packets(device);
  ASSERT_TRUE(packets.Prepare(kLoopback).IsOK());

  EXPECT_TRUE(packets.ComesThrough(1500));
}

TEST(TestPackets, ComesThrough_PacketOfAnotherSize_IsFalse) {
  TrialDevice device;
  device.mSurplus = 4;
  TestPackets packets(device);
  ASSERT_TRUE(packets.Prepare(kLoopback).IsOK());

  EXPECT_FALSE(packets.ComesThrough(1500));
  EXPECT_TRUE(packets.IsDeviceAnswering());
}

TEST(TestPackets, ComesThrough_DeviceRoundsTheSize_IsTrueForItsOwnSizesAlone) {
  TrialDevice device;
  device.mStep = 16;
  TestPackets packets(device);
  ASSERT_TRUE(packets.Prepare(kLoopback).IsOK());

  EXPECT_FALSE(packets.ComesThrough(1500));
  EXPECT_TRUE(packets.ComesThrough(1488));
}

TEST(TestPackets, ComesThrough_FloodOfOtherPackets_Returns) {
  TrialDevice device;
  device.mSurplus = 4;
  TestPackets packets(device);
  ASSERT_TRUE(packets.Prepare(kLoopback).IsOK());
  device.Flood(100);

  EXPECT_FALSE(packets.ComesThrough(1500));
}

TEST(TestPackets, ComesThrough_SizeRefused_IsFalseAndAsksOn) {
  TrialDevice device;
  TestPackets packets(device);
  ASSERT_TRUE(packets.Prepare(kLoopback).IsOK());
  device.mRefusals = {kStreamPacketSizeRegister};

  EXPECT_TRUE(packets.ComesThrough(1500)) << "The second try is not refused.";
  EXPECT_TRUE(packets.IsDeviceAnswering());
}

TEST(TestPackets, Destroyed_AfterTrials_ClosesTheChannelAndPutsTheSizeBack) {
  TrialDevice device;
  {
    TestPackets packets(device);
    ASSERT_TRUE(packets.Prepare(kLoopback).IsOK());
    static_cast<void>(packets.ComesThrough(1500)); // Only what is left behind counts.
  }

  EXPECT_EQ(device.mRegisters[kStreamPortRegister], 0u);
  EXPECT_EQ(device.mRegisters[kStreamPacketSizeRegister], kOwnSetting);
}

TEST(TestPackets, Prepare_PortRefused_ClosesTheChannelNevertheless) {
  TrialDevice device;
  device.mRegisters[kStreamPortRegister] = 5000;
  device.mRefusals = {kStreamPortRegister};
  {
    TestPackets packets(device);
    EXPECT_EQ(packets.Prepare(kLoopback), KrResult::Code::ProtocolError);
  }

  EXPECT_EQ(device.mRegisters[kStreamPortRegister], 0u);
}

TEST(TestPackets, Prepare_DeviceSilent_AsksNothingMore) {
  TrialDevice device;
  device.mRefusals = {kStreamPortRegister};
  device.mRefusal = {KrResult::Code::TimeLimitExceeded, "silent"};
  int writes = 0;
  {
    TestPackets packets(device);
    EXPECT_EQ(packets.Prepare(kLoopback), KrResult::Code::TimeLimitExceeded);
    EXPECT_FALSE(packets.IsDeviceAnswering());
    writes = device.mWrites;
  }

  EXPECT_EQ(device.mWrites, writes);
}

} // namespace

#include "gigevision/testpackets.h"

#include "gigevision/gvcpclient.h"

#include <array>

namespace krtransport {
namespace {

constexpr std::chrono::milliseconds kPatience{40};
constexpr int kTries = 2;
// IP and UDP, which the packet size counts and the socket does not show.
constexpr std::size_t kHeaderBytes = 28;
// As many packets are read at once, so that a flood does not keep the reader from looking at the time.
constexpr int kPacketsPerLook = 64;
constexpr std::uint32_t kTrialBits = kFireTestPacketBit | kDoNotFragmentBit;

} // namespace

TestPackets::~TestPackets() {
  if (!mIsPrepared || !mIsAnswering)
    return;
  // What cannot be put back is set anew when the stream is opened.
  static_cast<void>(mRegisters.WriteRegister(kStreamPacketSizeRegister, mSetting));
  static_cast<void>(mRegisters.WriteRegister(kStreamPortRegister, 0));
}

KrResult TestPackets::Prepare(std::uint32_t aLocalAddress) {
  if (KrResult result = GvcpSocket::OpenOnAddress(aLocalAddress, mSocket); !result.IsOK())
    return result;
  if (KrResult result = mRegisters.ReadRegister(kStreamPacketSizeRegister, mSetting); !result.IsOK())
    return result;
  mSetting &= ~kFireTestPacketBit;
  // Before the first write: what failed half-way is put back, too.
  mIsPrepared = true;
  KrResult result = mRegisters.WriteRegister(kStreamDestinationRegister, aLocalAddress);
  if (result.IsOK())
    result = mRegisters.WriteRegister(kStreamPortRegister, mSocket.GetLocalPort());
  NoteSilence(result);
  return result;
}

bool TestPackets::ComesThrough(std::uint32_t aBytes) {
  for (int attempt = 0; attempt < kTries && mIsAnswering; ++attempt)
    if (Fire(aBytes) && AwaitPacket(aBytes, kPatience))
      return true;
  return false;
}

bool TestPackets::Fire(std::uint32_t aBytes) {
  const std::uint32_t kept = mSetting & ~(kTrialBits | kPacketSizeMask);
  const KrResult result = mRegisters.WriteRegister(kStreamPacketSizeRegister, kept | kTrialBits | aBytes);
  // A refused size is one that does not come through.
  NoteSilence(result);
  return result.IsOK();
}

// A silent device is not asked again.
void TestPackets::NoteSilence(const KrResult& aResult) {
  if (aResult == KrResult::Code::TimeLimitExceeded || aResult == KrResult::Code::ConnectionLost)
    mIsAnswering = false;
}

bool TestPackets::AwaitPacket(std::uint32_t aBytes, std::chrono::milliseconds aTimeout) {
  const auto until = std::chrono::steady_clock::now() + aTimeout;
  const std::array<int, 1> descriptors = {mSocket.GetDescriptor()};
  // Only the size counts, which is told even where the content does not fit.
  std::array<std::uint8_t, 16> begin;
  do {
    for (int i = 0; i < kPacketsPerLook; ++i) {
      const auto received = mSocket.Receive(begin);
      if (!received)
        break;
      if (received->size + kHeaderBytes == aBytes)
        return true;
    }
  } while (WaitReadable(descriptors, until));
  return false;
}

} // namespace krtransport

#include "gigevision/testpackets.h"

#include "gigevision/gvcpclient.h"

#include <array>

namespace krtransport {
namespace {

constexpr std::chrono::milliseconds kPatience{40};
constexpr int kTries = 2;
// IP and UDP, which the packet size counts and the socket does not show.
constexpr std::size_t kHeaderBytes = 28;
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
  if (KrResult result = mRegisters.WriteRegister(kStreamDestinationRegister, aLocalAddress); !result.IsOK())
    return result;
  KrResult result = mRegisters.WriteRegister(kStreamPortRegister, mSocket.GetLocalPort());
  mIsPrepared = result.IsOK();
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
  // A refused size is one that does not come through; a silent device is not asked again.
  if (result == KrResult::Code::TimeLimitExceeded || result == KrResult::Code::ConnectionLost)
    mIsAnswering = false;
  return result.IsOK();
}

bool TestPackets::AwaitPacket(std::uint32_t aBytes, std::chrono::milliseconds aTimeout) {
  const auto until = std::chrono::steady_clock::now() + aTimeout;
  const std::array<int, 1> descriptors = {mSocket.GetDescriptor()};
  // Only the size counts, which is told even where the content does not fit.
  std::array<std::uint8_t, 16> begin;
  do {
    while (const auto received = mSocket.Receive(begin))
      if (received->size + kHeaderBytes == aBytes)
        return true;
  } while (WaitReadable(descriptors, until));
  return false;
}

} // namespace krtransport

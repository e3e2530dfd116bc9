#include "gigevision/packetpacing.h"

#include "gigevision/bandwidthshare.h"
#include "krbase/krlogger.h"

#include <algorithm>
#include <utility>

namespace krtransport {
namespace {

void Log(const char* aFunction, const std::string& aText) {
  KrLogger("GigEVision").Log(KrLogLevel::Info, {aFunction, "packetpacing"}, aText);
}

} // namespace

PacketPacing::PacketPacing(IBootstrapRegisters& aRegisters, std::string aAdapterName, LinkSpeedReader aReadSpeed)
    : mRegisters(aRegisters), mAdapterName(std::move(aAdapterName)), mReadSpeed(std::move(aReadSpeed)) {}

void PacketPacing::Apply(std::uint32_t aCameras, std::uint32_t aPacketBytes) {
  const std::uint64_t speed = mReadSpeed ? mReadSpeed(mAdapterName) : 0;
  // A camera alone is not even asked.
  if (mIsLeftAlone || (!mIsKnown && (aCameras < 2 || speed == 0)) || (!mIsKnown && !ReadDevice()))
    return;
  const std::uint32_t share = CalculatePacketDelay({.linkBitsPerSecond = speed,
                                                    .cameras = aCameras,
                                                    .packetBytes = aPacketBytes,
                                                    .ticksPerSecond = mTicksPerSecond});
  Write(std::max(share, mOwnTicks));
}

void PacketPacing::Restore() {
  if (mIsKnown && !mIsLeftAlone)
    Write(mOwnTicks);
  // Until the next stream, the pause may be set by others.
  mIsKnown = false;
}

bool PacketPacing::ReadDevice() {
  std::uint32_t high = 0;
  std::uint32_t low = 0;
  KrResult result = mRegisters.ReadRegister(kTickFrequencyHighRegister, high);
  if (result.IsOK())
    result = mRegisters.ReadRegister(kTickFrequencyLowRegister, low);
  if (result.IsOK())
    result = mRegisters.ReadRegister(kStreamPacketDelayRegister, mOwnTicks);
  mTicksPerSecond = std::uint64_t{high} << 32 | low;
  if (result.IsOK() && mTicksPerSecond == 0)
    result = {KrResult::Code::NotSupported, "The device states no time stamp frequency."};
  if (!result.IsOK()) {
    LeaveAlone(result);
    return false;
  }
  mSetTicks = mOwnTicks;
  mIsKnown = true;
  return true;
}

void PacketPacing::Write(std::uint32_t aTicks) {
  if (aTicks == mSetTicks)
    return;
  if (const KrResult result = mRegisters.WriteRegister(kStreamPacketDelayRegister, aTicks); !result.IsOK()) {
    LeaveAlone(result);
    return;
  }
  mSetTicks = aTicks;
  Log("PacketPacing::Write", "A camera on the adapter " + mAdapterName + " pauses " + std::to_string(aTicks) +
                                 " ticks after each packet, of " + std::to_string(mTicksPerSecond) + " a second.");
}

void PacketPacing::LeaveAlone(const KrResult& aReason) {
  mIsLeftAlone = true;
  Log("PacketPacing::LeaveAlone", "A camera on the adapter " + mAdapterName +
                                      " does not take a share of its link and sends as fast as it does. " +
                                      aReason.GetDescription().ToUtf8());
}

} // namespace krtransport

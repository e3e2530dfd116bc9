#include "simulation/orderedfaults.h"

#include <algorithm>

namespace krtransport {

void OrderedFaults::AddPacketFault(std::uint32_t aFrames, const PacketFault& aFault) {
  const std::lock_guard lock(mMutex);
  if (aFrames > 0)
    mFrameOrders.push_back({aFrames, aFault});
}

void OrderedFaults::AddDrop(std::uint32_t aFrames) {
  const std::lock_guard lock(mMutex);
  if (aFrames > 0)
    mFrameOrders.push_back({aFrames, std::nullopt});
}

void OrderedFaults::EndFrameFaults() {
  const std::lock_guard lock(mMutex);
  mFrameOrders.clear();
}

bool OrderedFaults::TakeDrop() {
  const std::lock_guard lock(mMutex);
  if (mFrameOrders.empty() || mFrameOrders.front().packets)
    return false;
  UseUpFrame();
  return true;
}

std::optional<PacketFault> OrderedFaults::TakePacketFault() {
  const std::lock_guard lock(mMutex);
  if (mFrameOrders.empty() || !mFrameOrders.front().packets)
    return std::nullopt;
  const std::optional<PacketFault> fault = mFrameOrders.front().packets;
  UseUpFrame();
  return fault;
}

void OrderedFaults::UseUpFrame() {
  if (--mFrameOrders.front().frames == 0)
    mFrameOrders.pop_front();
}

void OrderedFaults::SilenceRegister(std::uint64_t aAddress, std::uint32_t aTimes) {
  const std::lock_guard lock(mMutex);
  mSilentRegisters.push_back({aAddress, aTimes});
  UpdateHasRegisterFaults();
}

void OrderedFaults::SilenceRegisters() {
  const std::lock_guard lock(mMutex);
  mIsSilent = true;
  UpdateHasRegisterFaults();
}

void OrderedFaults::SlowRegisters(std::uint32_t aDelayMs) {
  const std::lock_guard lock(mMutex);
  mDelayMs = aDelayMs;
  UpdateHasRegisterFaults();
}

void OrderedFaults::EndRegisterFaults() {
  const std::lock_guard lock(mMutex);
  mSilentRegisters.clear();
  mIsSilent = false;
  mDelayMs = 0;
  UpdateHasRegisterFaults();
}

RegisterAnswer OrderedFaults::TakeAnswer(std::uint64_t aAddress, std::size_t aLength) {
  const std::lock_guard lock(mMutex);
  if (mIsSilent)
    return {.isSilent = true};
  const auto silent = std::ranges::find_if(mSilentRegisters, [&](const SilentRegister& aRegister) {
    return aRegister.address >= aAddress && aRegister.address - aAddress < aLength;
  });
  if (silent == mSilentRegisters.end())
    return {.delayMs = mDelayMs};
  if (silent->times > 0 && --silent->times == 0)
    mSilentRegisters.erase(silent);
  UpdateHasRegisterFaults();
  return {.isSilent = true};
}

void OrderedFaults::UpdateHasRegisterFaults() {
  mHasRegisterFaults = mIsSilent || mDelayMs > 0 || !mSilentRegisters.empty();
}

} // namespace krtransport

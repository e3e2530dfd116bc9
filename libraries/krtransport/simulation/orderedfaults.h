#pragma once
// The faults that a simulated camera is ordered to have, kept until it is time for them. Carrying them out is left to
// the buffer source, the register gate and the camera.

#include "krtransport/krsimulatedfaults.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

namespace krtransport {

/// What happens to some packets of one frame.
struct PacketFault {
  std::uint32_t firstPacket = 0;
  std::uint32_t packets = 0;
  KrPacketGap gap = KrPacketGap::Zeroed;
  bool isLate = false; ///< They come, delayMs later than the others.
  std::uint32_t delayMs = 0;
};

/// How a register access is answered.
struct RegisterAnswer {
  bool isSilent = false; ///< Not at all.
  std::uint32_t delayMs = 0;
};

/// Thread: any.
class OrderedFaults {
public:
  void AddPacketFault(std::uint32_t aFrames, const PacketFault& aFault);
  void AddDrop(std::uint32_t aFrames);
  void EndFrameFaults();
  /// Whether the frame that is due is dropped; uses up one frame of the order.
  bool TakeDrop();
  /// What happens to the frame that is due; uses up one frame of the order.
  std::optional<PacketFault> TakePacketFault();

  void SilenceRegister(std::uint64_t aAddress, std::uint32_t aTimes);
  void SilenceRegisters();
  void SlowRegisters(std::uint32_t aDelayMs);
  void EndRegisterFaults();
  /// False when every access is answered at once. Takes no lock.
  bool HasRegisterFaults() const { return mHasRegisterFaults; }
  /// How an access is answered; uses up one time of a silent register that it touches.
  RegisterAnswer TakeAnswer(std::uint64_t aAddress, std::size_t aLength);

  void RefuseOpening(bool aRefused) { mIsOpeningRefused = aRefused; }
  bool IsOpeningRefused() const { return mIsOpeningRefused; }

private:
  struct FrameOrder {
    std::uint32_t frames;
    std::optional<PacketFault> packets; // Nothing for frames that are dropped.
  };
  struct SilentRegister {
    std::uint64_t address;
    std::uint32_t times; // 0 for ever.
  };

  void UseUpFrame();
  void UpdateHasRegisterFaults();

  std::mutex mMutex; // Guards the members from here to mDelayMs.
  std::deque<FrameOrder> mFrameOrders;
  std::vector<SilentRegister> mSilentRegisters;
  bool mIsSilent = false;
  std::uint32_t mDelayMs = 0;
  std::atomic<bool> mHasRegisterFaults = false;
  std::atomic<bool> mIsOpeningRefused = false;
};

} // namespace krtransport

#pragma once
// Has a device send packets for trial, to find out which sizes come through. Which sizes are tried is decided by the
// search.

#include "gigevision/bootstrapregisters.h"
#include "gigevision/gvcpsocket.h"

#include <chrono>
#include <cstdint>

namespace krtransport {

/// Points the device's stream channel at a socket of its own from Prepare to destruction, which leaves the channel
/// closed and the packet size without the bits of a trial.
///
/// Thread: the link's I/O thread. Ownership: borrows the registers.
class TestPackets {
public:
  explicit TestPackets(IBootstrapRegisters& aRegisters) : mRegisters(aRegisters) {}
  ~TestPackets();
  TestPackets(const TestPackets&) = delete;
  TestPackets& operator=(const TestPackets&) = delete;

  /// Opens the socket on this host's address and tells the device.
  KrResult Prepare(std::uint32_t aLocalAddress);
  /// Whether a packet of a size, headers of IP and above included, comes through without being cut: two tries of 40
  /// milliseconds. False, now and from now on, once the device kept silent.
  bool ComesThrough(std::uint32_t aBytes);
  /// False once the device kept silent.
  bool IsDeviceAnswering() const { return mIsAnswering; }

private:
  bool Fire(std::uint32_t aBytes);
  void NoteSilence(const KrResult& aResult);
  bool AwaitPacket(std::uint32_t aBytes, std::chrono::milliseconds aTimeout);

  IBootstrapRegisters& mRegisters;
  GvcpSocket mSocket;
  bool mIsPrepared = false;
  bool mIsAnswering = true;
  std::uint32_t mSetting = 0; // The packet size register as it was.
};

} // namespace krtransport

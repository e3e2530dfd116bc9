#pragma once
// Hands the orders that come from outside on to one simulated camera.

#include "krtransport/krsimulatedfaults.h"
#include "simulation/serial/linefaults.h"

#include <memory>

namespace krtransport {

class SimulatedCamera;

/// Thread and ownership as KrSimulatedFaults; shares the camera.
class FaultOrders final : public KrSimulatedFaults {
public:
  explicit FaultOrders(std::shared_ptr<SimulatedCamera> aCamera);

  void LosePackets(std::uint32_t aFrames, std::uint32_t aPackets, std::uint32_t aFirstPacket,
                   KrPacketGap aGap) override;
  void DelayPackets(std::uint32_t aFrames, std::uint32_t aPackets, std::uint32_t aDelayMs) override;
  void DropFrames(std::uint32_t aFrames) override;
  void EndFrameFaults() override;
  void SilenceRegister(std::uint64_t aAddress, std::uint32_t aTimes) override;
  void SilenceRegisters() override;
  void SlowRegisters(std::uint32_t aDelayMs) override;
  void EndRegisterFaults() override;
  KrResult LoseSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aEvery) override;
  KrResult LoseNextSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aBytes) override;
  KrResult RepeatSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aEvery) override;
  KrResult RepeatNextSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aBytes) override;
  KrResult CorruptSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aEvery) override;
  KrResult CorruptNextSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aBytes) override;
  KrResult SilenceSerialPort(std::uint32_t aPort, bool aIsSilent) override;
  void EndSerialFaults() override;
  KrResult GetSerialCounts(std::uint32_t aPort, KrSimulatedSerialCounts& aCounts) const override;
  void RefuseOpening(bool aRefused) override;
  void Disappear() override;
  void Return() override;
  void LosePower() override;

private:
  KrResult OrderEvery(std::uint32_t aPort, KrSerialDirection aDirection, ByteOrder LineFaults::*aFault,
                      std::uint32_t aEvery);
  KrResult OrderNext(std::uint32_t aPort, KrSerialDirection aDirection, ByteOrder LineFaults::*aFault,
                     std::uint32_t aBytes);

  const std::shared_ptr<SimulatedCamera> mCamera;
};

} // namespace krtransport

#include "simulation/faultorders.h"

#include "krsystem/transportregistry.h"
#include "simulation/simulatedcamera.h"
#include "simulation/simulationtransport.h"

#include <string>
#include <utility>

namespace krtransport {

namespace {

KrResult MakeNoPort(std::uint32_t aPort) {
  return {KrResult::Code::NotFound,
          "The camera has no serial port of the number " + std::to_string(aPort) + "; its lab says which it has."};
}

} // namespace

FaultOrders::FaultOrders(std::shared_ptr<SimulatedCamera> aCamera) : mCamera(std::move(aCamera)) {}

void FaultOrders::LosePackets(std::uint32_t aFrames, std::uint32_t aPackets, std::uint32_t aFirstPacket,
                              KrPacketGap aGap) {
  mCamera->GetFaults().AddPacketFault(aFrames, {.firstPacket = aFirstPacket, .packets = aPackets, .gap = aGap});
}

void FaultOrders::DelayPackets(std::uint32_t aFrames, std::uint32_t aPackets, std::uint32_t aDelayMs) {
  mCamera->GetFaults().AddPacketFault(aFrames, {.packets = aPackets, .isLate = true, .delayMs = aDelayMs});
}

void FaultOrders::DropFrames(std::uint32_t aFrames) {
  mCamera->GetFaults().AddDrop(aFrames);
}

void FaultOrders::EndFrameFaults() {
  mCamera->GetFaults().EndFrameFaults();
}

void FaultOrders::SilenceRegister(std::uint64_t aAddress, std::uint32_t aTimes) {
  mCamera->GetFaults().SilenceRegister(aAddress, aTimes);
}

void FaultOrders::SilenceRegisters() {
  mCamera->GetFaults().SilenceRegisters();
}

void FaultOrders::SlowRegisters(std::uint32_t aDelayMs) {
  mCamera->GetFaults().SlowRegisters(aDelayMs);
}

void FaultOrders::EndRegisterFaults() {
  mCamera->GetFaults().EndRegisterFaults();
}

KrResult FaultOrders::OrderEvery(std::uint32_t aPort, KrSerialDirection aDirection, ByteOrder LineFaults::*aFault,
                                 std::uint32_t aEvery) {
  const std::shared_ptr<SerialLine> line = mCamera->GetSerialPorts().Find(aPort);
  if (!line)
    return MakeNoPort(aPort);
  line->OrderEvery(aDirection, aFault, aEvery);
  return {};
}

KrResult FaultOrders::OrderNext(std::uint32_t aPort, KrSerialDirection aDirection, ByteOrder LineFaults::*aFault,
                                std::uint32_t aBytes) {
  const std::shared_ptr<SerialLine> line = mCamera->GetSerialPorts().Find(aPort);
  if (!line)
    return MakeNoPort(aPort);
  line->OrderNext(aDirection, aFault, aBytes);
  return {};
}

KrResult FaultOrders::LoseSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aEvery) {
  return OrderEvery(aPort, aDirection, &LineFaults::lost, aEvery);
}

KrResult FaultOrders::LoseNextSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aBytes) {
  return OrderNext(aPort, aDirection, &LineFaults::lost, aBytes);
}

KrResult FaultOrders::RepeatSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aEvery) {
  return OrderEvery(aPort, aDirection, &LineFaults::repeated, aEvery);
}

KrResult FaultOrders::RepeatNextSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aBytes) {
  return OrderNext(aPort, aDirection, &LineFaults::repeated, aBytes);
}

KrResult FaultOrders::CorruptSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aEvery) {
  return OrderEvery(aPort, aDirection, &LineFaults::corrupted, aEvery);
}

KrResult FaultOrders::CorruptNextSerialBytes(std::uint32_t aPort, KrSerialDirection aDirection, std::uint32_t aBytes) {
  return OrderNext(aPort, aDirection, &LineFaults::corrupted, aBytes);
}

KrResult FaultOrders::SilenceSerialPort(std::uint32_t aPort, bool aIsSilent) {
  const std::shared_ptr<SerialLine> line = mCamera->GetSerialPorts().Find(aPort);
  if (!line)
    return MakeNoPort(aPort);
  line->Silence(aIsSilent);
  return {};
}

void FaultOrders::EndSerialFaults() {
  mCamera->GetSerialPorts().EndFaults();
}

KrResult FaultOrders::GetSerialCounts(std::uint32_t aPort, KrSimulatedSerialCounts& aCounts) const {
  const std::shared_ptr<SerialLine> line = mCamera->GetSerialPorts().Find(aPort);
  if (!line)
    return MakeNoPort(aPort);
  aCounts = line->GetCounts();
  return {};
}

void FaultOrders::RefuseOpening(bool aRefused) {
  mCamera->GetFaults().RefuseOpening(aRefused);
}

void FaultOrders::Disappear() {
  mCamera->Lose();
}

void FaultOrders::Return() {
  mCamera->Restore();
}

void FaultOrders::LosePower() {
  mCamera->LosePower();
}

} // namespace krtransport

KrResult KrFindSimulatedFaults(const KrString& aUniqueID, std::shared_ptr<KrSimulatedFaults>& aFaults) {
  for (const std::shared_ptr<krsystem::ITransport>& transport : krsystem::GetTransports()) {
    const auto simulation = std::dynamic_pointer_cast<krtransport::SimulationTransport>(transport);
    std::shared_ptr<KrSimulatedFaults> faults = simulation ? simulation->GetFaults(aUniqueID) : nullptr;
    if (!faults)
      continue;
    aFaults = std::move(faults);
    return {};
  }
  return {KrResult::Code::NotFound, "No simulated camera has the unique ID " + aUniqueID +
                                        "; install the simulation, and give the MAC address or GUID as discovery "
                                        "tells it."};
}

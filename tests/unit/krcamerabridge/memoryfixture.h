#pragma once
// The registers of a GenCP camera on a port, by commands.

#include "gencp/devicememory.h"
#include "gencpfixture.h"

namespace krcamerabridge {

class CommandCycleOnLine : public GenCPOnLine {
protected:
  explicit CommandCycleOnLine(const CycleTimes& aTimes = kPatientTimes) : cycle(line, aTimes) {}

  KrResult Read(std::uint64_t aAddress, std::size_t aSize, const std::stop_token& aStop = {}) {
    bytes.assign(aSize, 0);
    return memory.Read(aAddress, bytes, aStop);
  }
  // Reads 16 bytes and finds them right.
  void ExpectRightRead() {
    const KrResult result = Read(kFeatures + 5, 16);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    EXPECT_EQ(bytes, camera.Peek(kFeatures + 5, 16));
  }

  CommandCycle cycle;
  DeviceMemory memory{cycle};
  std::vector<std::uint8_t> bytes;
};

} // namespace krcamerabridge

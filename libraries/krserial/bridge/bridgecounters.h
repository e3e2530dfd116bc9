#pragma once
// The bytes that a bridge has moved.

#include <atomic>
#include <cstdint>

namespace krserial {

/// Thread: any.
struct BridgeCounters {
  std::atomic<std::uint64_t> sentToDevice = 0;
  std::atomic<std::uint64_t> receivedFromDevice = 0;

  void Reset() {
    sentToDevice = 0;
    receivedFromDevice = 0;
  }
};

} // namespace krserial

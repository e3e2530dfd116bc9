#pragma once
// An echo behind a serial port: every byte that is sent comes back.

#include "simulation/serial/bytequeue.h"
#include "simulation/serial/ilineend.h"

namespace krtransport {

/// Thread and ownership as ILineEnd.
class EchoLineEnd final : public ILineEnd {
public:
  void Open(std::uint32_t, Waker) override { mBytes.Clear(); }
  void Close() override {}
  void SetRate(std::uint32_t) override {}
  std::size_t Take(const std::uint8_t* aBytes, std::size_t aSize, std::uint64_t) override {
    return mBytes.Push(aBytes, aSize);
  }
  std::size_t Give(std::uint8_t* aBytes, std::size_t aSize, std::uint64_t) override {
    return mBytes.Pop(aBytes, aSize);
  }

private:
  static constexpr std::size_t kCapacity = 4096;
  ByteQueue mBytes{kCapacity};
};

} // namespace krtransport

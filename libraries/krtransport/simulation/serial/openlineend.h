#pragma once
// Nothing behind a serial port: what is sent goes nowhere, and nothing comes.

#include "simulation/serial/ilineend.h"

namespace krtransport {

/// Thread and ownership as ILineEnd.
class OpenLineEnd final : public ILineEnd {
public:
  void Open(std::uint32_t, Waker) override {}
  void Close() override {}
  void SetRate(std::uint32_t) override {}
  std::size_t Take(const std::uint8_t*, std::size_t aSize, std::uint64_t) override { return aSize; }
  std::size_t Give(std::uint8_t*, std::size_t, std::uint64_t) override { return 0; }
};

} // namespace krtransport

#pragma once
// Registers that are plain memory, all zero at first: for descriptions that are studied without their device, and for
// tests.

#include "krgenicam/ikrregisterport.h"

#include <memory>

/// A register port over 2^64 bytes of memory, of which only what was written takes room; OutOfRange when more than
/// 256 MiB of it was written.
///
/// Thread: any. Ownership: the application's; must outlive the arrays that stand on it.
class KR_EXPORT KrGenMemoryPort final : public IKrRegisterPort {
public:
  KrGenMemoryPort();
  ~KrGenMemoryPort() override;
  KrGenMemoryPort(const KrGenMemoryPort&) = delete;
  KrGenMemoryPort& operator=(const KrGenMemoryPort&) = delete;

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel = {}) override;
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel = {}) override;

private:
  class Body;
  std::unique_ptr<Body> mBody;
};

#pragma once
// A camera as a benchmark of the feature browser wants it: so many features that a browser shows, over memory, whose
// registers answer at once or as slowly as is asked for.

#include "krgenicam/krgenmemoryport.h"
#include "krgenicam/krgenparameterarray.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace benchmarks {

/// Registers that take their time. Threads and ownership as IKrRegisterPort; borrows the port behind it.
class SlowPort final : public IKrRegisterPort {
public:
  explicit SlowPort(IKrRegisterPort& aPort) : mPort(aPort) {}

  /// From now on each access takes this long; 0 for none.
  void SetDelay(std::uint32_t aDelayMs) { mDelayMs = aDelayMs; }
  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel = {}) override;
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel = {}) override;

private:
  KrResult Delay(const std::stop_token& aCancel) const;

  IKrRegisterPort& mPort;
  std::atomic<std::uint32_t> mDelayMs = 0;
};

/// Thread: as KrGenParameterArray.
class DescribedFeatures {
public:
  /// So many features that users see, and some that they do not.
  explicit DescribedFeatures(std::size_t aVisible);

  KrGenParameterArray& GetArray() { return *mArray; }
  SlowPort& GetPort() { return mPort; }
  /// Reads all values, so that the array remembers what it remembers.
  void ReadAll();

private:
  KrGenMemoryPort mMemory;
  SlowPort mPort{mMemory};
  std::unique_ptr<KrGenParameterArray> mArray;
};

} // namespace benchmarks

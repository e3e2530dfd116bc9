#pragma once
// A port whose accesses may take as long as is set at the moment, whatever their caller says: a parameter array's limit
// stays as it was opened with.

#include "krgenicam/ikrregisterport.h"

#include <atomic>
#include <cstdint>

namespace krdevice {

/// Thread: any. Ownership: borrows the port.
class TimedPort final : public IKrRegisterPort {
public:
  TimedPort(IKrRegisterPort& aPort, std::uint32_t aTimeoutMs) : mPort(aPort), mTimeoutMs(aTimeoutMs) {}

  std::uint32_t GetTimeoutMs() const { return mTimeoutMs; }
  /// At least 1; for accesses that begin from now on.
  void SetTimeoutMs(std::uint32_t aTimeoutMs) { mTimeoutMs = aTimeoutMs; }

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t,
                const std::stop_token& aCancel) override {
    return mPort.Read(aAddress, aData, aLength, mTimeoutMs, aCancel);
  }
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t,
                 const std::stop_token& aCancel) override {
    return mPort.Write(aAddress, aData, aLength, mTimeoutMs, aCancel);
  }

private:
  IKrRegisterPort& mPort;
  std::atomic<std::uint32_t> mTimeoutMs;
};

} // namespace krdevice

#pragma once
// A device's buffer source serves one stream at a time; whoever streams holds its lease.

#include "krsystem/idevicelink.h"

namespace krdevice {

/// Thread: acquired and given back from any thread. Ownership: borrows the source.
class SourceLease {
public:
  /// Holds nothing.
  SourceLease() = default;
  /// Tries to get the source; IsHeld says whether nobody had it.
  explicit SourceLease(krsystem::IBufferSource* aSource);
  ~SourceLease();
  SourceLease(SourceLease&& aOther) noexcept;
  SourceLease& operator=(SourceLease&& aOther) noexcept;

  bool IsHeld() const { return mSource != nullptr; }

private:
  krsystem::IBufferSource* mSource = nullptr;
};

} // namespace krdevice

#pragma once
// Registers in software: each feature of a table has one, which is read and written by the feature's functions. What
// stands in the table, and how it is described, is left to others.

#include "krgenicam/ikrregisterport.h"
#include "krsystem/hostfeature.h"

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace krdevice {

/// A register is read and written as a whole; any other access is refused with InvalidInput. Numbers are
/// little-endian, of 64 bits; texts are cut at the end of their register.
///
/// Thread: any; the features' functions are called one at a time. Ownership: borrows the features.
class HostFeaturePort final : public IKrRegisterPort {
public:
  explicit HostFeaturePort(const krsystem::HostFeatures& aFeatures);

  /// Where the register of the feature at an index is, and how long that of a kind.
  static std::uint64_t GetAddress(std::size_t aIndex);
  static std::size_t GetLength(krsystem::HostFeatureKind aKind);

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override;
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override;

  /// Has all counters begin anew with what they count now. The first failure, having tried all. Not from a feature's
  /// function.
  KrResult ResetCounters();
  /// The counters are what they are again, as their owner has them begin anew itself.
  void ForgetReset();

private:
  KrResult Find(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                std::size_t& aIndex) const;
  KrResult CountFrom(std::size_t aIndex, krsystem::HostFeatureValue& aValue);

  const krsystem::HostFeatures& mFeatures;

  std::mutex mAccessMutex;          // Held for one access, so that features' functions need not know of each other.
  std::mutex mBaseMutex;            // Guards mBases; held while nothing else is called.
  std::vector<std::int64_t> mBases; // What a feature counted when it was made to begin anew.
};

} // namespace krdevice

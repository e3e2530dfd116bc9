#include "sourcelease.h"

#include <mutex>
#include <set>
#include <utility>

namespace krdevice {

namespace {

struct Leases {
  std::mutex mutex; // Guards sources.
  std::set<const krsystem::IBufferSource*> sources;
};

Leases& GetLeases() {
  // Never destroyed: streams may still stop while the process ends.
  static Leases& leases = *new Leases;
  return leases;
}

} // namespace

SourceLease::SourceLease(krsystem::IBufferSource* aSource) {
  Leases& leases = GetLeases();
  const std::lock_guard lock(leases.mutex);
  if (aSource && leases.sources.insert(aSource).second)
    mSource = aSource;
}

SourceLease::~SourceLease() {
  if (!mSource)
    return;
  Leases& leases = GetLeases();
  const std::lock_guard lock(leases.mutex);
  leases.sources.erase(mSource);
}

SourceLease::SourceLease(SourceLease&& aOther) noexcept : mSource(std::exchange(aOther.mSource, nullptr)) {}

SourceLease& SourceLease::operator=(SourceLease&& aOther) noexcept {
  std::swap(mSource, aOther.mSource);
  return *this;
}

} // namespace krdevice

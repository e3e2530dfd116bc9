#include "kernels/linestores.h"

#include <hwy/cache_control.h>

namespace krbuffer {

namespace {

/// More than most processors' caches hold for one of their cores. From here on stores past the cache are faster by up
/// to one half, as the old content is not read. Below it they are up to twice as slow, or equal with the disadvantage
/// that who reads the image next has to fetch it from memory.
constexpr std::uint64_t kLeastStreamedBytes = std::uint64_t{32} << 20;

} // namespace

StoreKind ChooseStores(std::uint64_t aImageBytes) {
  return aImageBytes < kLeastStreamedBytes ? StoreKind::Cached : StoreKind::Streaming;
}

void FinishStores(StoreKind aStores) {
  if (aStores == StoreKind::Streaming)
    hwy::FlushStream();
}

} // namespace krbuffer

#pragma once
// What Aravis counts of a stream, as features that outlive it: the counts of the stream that ended last stay to be
// seen. Which figures there are is left to the kind of link.

#include "aravis/istreamdevice.h"
#include "krsystem/hostfeature.h"

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <string_view>
#include <vector>

namespace krtransport {

struct StreamCounter {
  krsystem::HostFeatureInfo info;
  const char* figure; ///< Aravis' name of it.
};

/// What users see of a counter.
constexpr krsystem::HostFeatureInfo DescribeStreamCounter(std::string_view aName, std::string_view aTip,
                                                          std::string_view aUnit = {}) {
  return {
      .name = aName, .category = "StreamStatistics", .tip = aTip, .isCounter = true, .pollingMs = 500, .unit = aUnit};
}

/// Thread: any. Ownership: borrows the table; outlives the features that it lists.
class StreamCounters {
public:
  explicit StreamCounters(std::span<const StreamCounter> aCounters);

  /// Adds the features, of the stream that aStream lets be used while there is one.
  void List(IStreamUse& aStream, krsystem::HostFeatures& aFeatures);
  /// Forgets the counts of the stream that ended last.
  void Clear();
  /// Keeps the counts of a stream that is about to end.
  void Keep(ArvStream& aStream);

private:
  std::uint64_t Get(IStreamUse& aStream, std::size_t aIndex);

  const std::span<const StreamCounter> mCounters;
  std::mutex mMutex; // Guards mLast; nothing else is called with it held.
  std::vector<std::uint64_t> mLast;
};

} // namespace krtransport

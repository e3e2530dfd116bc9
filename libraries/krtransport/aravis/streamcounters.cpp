#include "aravis/streamcounters.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace krtransport {

namespace {

std::uint64_t Count(ArvStream& aStream, const StreamCounter& aCounter) {
  return arv_stream_get_info_uint64_by_name(&aStream, aCounter.figure);
}

} // namespace

StreamCounters::StreamCounters(std::span<const StreamCounter> aCounters)
    : mCounters(aCounters), mLast(aCounters.size()) {}

void StreamCounters::List(IStreamUse& aStream, krsystem::HostFeatures& aFeatures) {
  for (std::size_t i = 0; i < mCounters.size(); ++i)
    aFeatures.push_back(krsystem::MakeShownFeature(mCounters[i].info, [this, &aStream, i] { return Get(aStream, i); }));
}

std::uint64_t StreamCounters::Get(IStreamUse& aStream, std::size_t aIndex) {
  std::uint64_t count = 0;
  if (aStream.Use([&](ArvStream& aUsed) { count = Count(aUsed, mCounters[aIndex]); }))
    return count;
  const std::lock_guard lock(mMutex);
  return mLast[aIndex];
}

void StreamCounters::Clear() {
  const std::lock_guard lock(mMutex);
  std::ranges::fill(mLast, 0);
}

void StreamCounters::Keep(ArvStream& aStream) {
  std::vector<std::uint64_t> counts;
  std::ranges::transform(mCounters, std::back_inserter(counts),
                         [&aStream](const StreamCounter& aCounter) { return Count(aStream, aCounter); });
  const std::lock_guard lock(mMutex);
  mLast = std::move(counts);
}

} // namespace krtransport

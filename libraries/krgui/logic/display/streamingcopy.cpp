#include "logic/display/streamingcopy.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "logic/display/streamingcopy.cpp"
#include <hwy/foreach_target.h>

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <cstring>

HWY_BEFORE_NAMESPACE();

namespace krgui::HWY_NAMESPACE {

namespace {

namespace hn = hwy::HWY_NAMESPACE;

using ByteTag = hn::CappedTag<std::uint8_t, 64>;

/// What is streamed is whole lines of the cache, as a line that is written in part costs a read.
constexpr std::size_t kLineBytes = 64;
constexpr std::size_t kPageBytes = 4096;
/// Pages that are copied side by side: the processor fetches ahead within each of them.
constexpr std::size_t kPages = 4;

HWY_INLINE void CopyLine(std::uint8_t* HWY_RESTRICT aDestination, const std::uint8_t* HWY_RESTRICT aSource) {
  const ByteTag tag;
  for (std::size_t i = 0; i < kLineBytes; i += hn::Lanes(tag))
    hn::Stream(hn::LoadU(tag, aSource + i), tag, aDestination + i);
}

/// The destination lies on a line; the bytes are whole groups of pages.
void CopyPages(std::uint8_t* aDestination, const std::uint8_t* aSource, std::size_t aBytes) {
  for (std::size_t group = 0; group < aBytes; group += kPages * kPageBytes)
    for (std::size_t line = 0; line < kPageBytes; line += kLineBytes)
      for (std::size_t page = 0; page < kPages; ++page) {
        const std::size_t offset = group + page * kPageBytes + line;
        CopyLine(aDestination + offset, aSource + offset);
      }
  hwy::FlushStream();
}

void CopyPastCache(std::uint8_t* aDestination, const std::uint8_t* aSource, std::size_t aBytes) {
  const std::size_t head = (~reinterpret_cast<std::uintptr_t>(aDestination) + 1) % kLineBytes;
  const std::size_t pages = (aBytes - head) / (kPages * kPageBytes) * (kPages * kPageBytes);
  std::memcpy(aDestination, aSource, head);
  CopyPages(aDestination + head, aSource + head, pages);
  std::memcpy(aDestination + head + pages, aSource + head + pages, aBytes - head - pages);
}

} // namespace

} // namespace krgui::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace krgui {

namespace {

HWY_EXPORT(CopyPastCache);

/// Below it the cache holds source and copy, and the time of a plain copy is the shorter one.
constexpr std::size_t kLeastStreamedBytes = std::size_t{1} << 20;

} // namespace

void CopyStreaming(std::uint8_t* aDestination, const std::uint8_t* aSource, std::size_t aBytes) {
  if (aBytes < kLeastStreamedBytes)
    std::memcpy(aDestination, aSource, aBytes);
  else
    HWY_DYNAMIC_DISPATCH(CopyPastCache)(aDestination, aSource, aBytes);
}

} // namespace krgui

#endif

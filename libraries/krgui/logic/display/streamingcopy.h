#pragma once
// Copies bytes past the cache: for the copy of a frame that is mostly not read again, and that would take the place of
// what is. Who owns the bytes is left to the callers.

#include <cstddef>
#include <cstdint>

namespace krgui {

/// Copies like std::memcpy; past the cache from a size on where that pays. Other threads may read the copy when this
/// has returned, ordered as they are with everything else that the thread has written.
/// Thread: any.
void CopyStreaming(std::uint8_t* aDestination, const std::uint8_t* aSource, std::size_t aBytes);

} // namespace krgui

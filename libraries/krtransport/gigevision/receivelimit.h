#pragma once
// The receive buffer that a stream's socket needs, and whether the system grants it.

#include <cstdint>
#include <optional>

namespace krtransport {

/// Room for two frames, at least 4 MiB: with the system's default nearly every frame is lost where packets come by
/// plain UDP.
std::uint32_t GetSocketBufferSize(std::uint64_t aPayloadBytes);

/// The largest receive buffer that the system grants, in bytes; nothing where it cannot be read, as in some containers.
/// Any thread.
std::optional<std::uint64_t> ReadReceiveLimit();

/// Warns, once in a process, when the system grants less than aWantedBytes. Any thread.
void WarnOfReceiveLimit(std::uint32_t aWantedBytes);

} // namespace krtransport

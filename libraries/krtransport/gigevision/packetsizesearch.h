#pragma once
// Finds the largest stream packet that comes through on the way from a device. How a packet is sent for a trial, and
// how long that may take, is left to the caller.

#include <cstdint>
#include <functional>

namespace krtransport {

/// The packet sizes in question, headers of IP and above included: smallest, smallest + step and so on.
struct PacketSizeRange {
  std::uint32_t smallest = 0;
  std::uint32_t largest = 0;
  std::uint32_t step = 1;
};

/// What a device says of its packet sizes, as it says it.
struct StatedPacketSizes {
  std::int64_t smallest = 0;
  std::int64_t largest = 0;
  std::int64_t step = 0;
};

/// The sizes that the device allows and the adapter's MTU takes whole, at most 16 KiB. A device that states nonsense
/// gets steps of 4 bytes from 576 on; one whose smallest packet is beyond the MTU gets that one.
PacketSizeRange MakePacketSizeRange(const StatedPacketSizes& aStated, std::uint32_t aMtu);

/// Whether a packet of a size comes through.
using PacketTrial = std::function<bool(std::uint32_t aBytes)>;

/// What a search found.
struct PacketSizeChoice {
  std::uint32_t bytes = 0;
  bool isProven = false; ///< A packet of this size came through.
};

/// Tries the smallest size first: where not even that comes through, the device sends no packets for trial, or
/// something else keeps them away, and the largest is chosen, unproven. Otherwise the largest that is found to come
/// through, at most 64 bytes or one step below the limit; a search that aHasTime ends early gives the largest found by
/// then.
PacketSizeChoice SearchPacketSize(const PacketSizeRange& aRange, const PacketTrial& aTry,
                                  const std::function<bool()>& aHasTime);

} // namespace krtransport

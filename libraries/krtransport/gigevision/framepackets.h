#pragma once
// How many stream packets a frame comes in. Aravis takes memory for each of them when a frame begins, by the size that
// the device says its packets have, and divides by what is in one: a size of nonsense is refused before it gets there.

#include "krbase/krresult.h"

#include <cstdint>

namespace krtransport {

/// Leader, payload and trailer of one frame, in packets of a size with the headers of IP, UDP and stream protocol.
std::uint64_t CountPackets(std::uint64_t aPayloadBytes, std::uint32_t aPacketBytes);

/// BadData when packets have no room behind their headers, or a frame takes more of them than the 24 bits of a packet's
/// number can tell apart (GigE Vision 2.x, stream protocol). A size of 0 is not known, and well.
KrResult CheckPackets(std::uint64_t aPayloadBytes, std::uint32_t aPacketBytes);

} // namespace krtransport

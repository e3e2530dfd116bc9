#include "gigevision/framepackets.h"

#include <algorithm>
#include <string>

namespace krtransport {
namespace {

constexpr std::uint32_t kHeaderBytes = 36;
constexpr std::uint64_t kMostPackets = 1u << 24;

} // namespace

std::uint64_t CountPackets(std::uint64_t aPayloadBytes, std::uint32_t aPacketBytes) {
  const std::uint64_t room = std::max(aPacketBytes, kHeaderBytes + 1) - kHeaderBytes;
  return (aPayloadBytes + room - 1) / room + 2;
}

KrResult CheckPackets(std::uint64_t aPayloadBytes, std::uint32_t aPacketBytes) {
  if (aPacketBytes == 0)
    return {};
  const std::string said =
      "Starting a stream: the device says that its packets have " + std::to_string(aPacketBytes) + " bytes, ";
  if (aPacketBytes <= kHeaderBytes)
    return {KrResult::Code::BadData, said + "which their headers take alone; set its packet size."};
  if (const std::uint64_t packets = CountPackets(aPayloadBytes, aPacketBytes); packets > kMostPackets)
    return {KrResult::Code::BadData, said + "of which a frame would take " + std::to_string(packets) +
                                         "; set a larger packet size or a smaller image."};
  return {};
}

} // namespace krtransport

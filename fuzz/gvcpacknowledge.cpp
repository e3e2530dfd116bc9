// Whatever comes on the control channel's port: every parser gets the same bytes, once with the request id that they
// name and once with another. A text that is not valid UTF-8 without control characters would be a fault as well as a
// crash.

#include "gigevision/gvcppacket.h"
#include "gigevision/gvcptext.h"

#include <array>
#include <cstdlib>

namespace {

void CheckText(const std::string& aText) {
  const std::vector<std::uint8_t> bytes(aText.begin(), aText.end());
  if (krtransport::ReadText(bytes) != aText)
    std::abort();
}

void ParseAs(std::span<const std::uint8_t> aDatagram, std::uint16_t aRequestID) {
  krtransport::DiscoveryPayload payload;
  std::uint32_t value = 0;
  std::uint16_t milliseconds = 0;
  std::array<std::uint8_t, krtransport::kMaxReadMemory> memory{};
  if (krtransport::ParseDiscoveryAcknowledge(aDatagram, aRequestID, payload).IsOK())
    for (const auto* text : {&payload.manufacturer, &payload.model, &payload.deviceVersion, &payload.manufacturerInfo,
                             &payload.serialNumber, &payload.userDefinedName})
      CheckText(*text);
  // The parsers' own judgement does not matter here, only that they come to one.
  static_cast<void>(krtransport::ParseForceIPAcknowledge(aDatagram, aRequestID));
  static_cast<void>(krtransport::ParseReadRegisterAcknowledge(aDatagram, aRequestID, value));
  static_cast<void>(krtransport::ParsePendingAcknowledge(aDatagram, aRequestID, milliseconds));
  static_cast<void>(krtransport::ParseReadMemoryAcknowledge(aDatagram, aRequestID, 0x48,
                                                            std::span(memory).first(aDatagram.size() % 512)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const std::span<const std::uint8_t> datagram(aData, aSize);
  const std::uint16_t named = aSize >= 8 ? static_cast<std::uint16_t>((aData[6] << 8) | aData[7]) : 1;
  ParseAs(datagram, named);
  ParseAs(datagram, static_cast<std::uint16_t>(named + 1));
  return 0;
}

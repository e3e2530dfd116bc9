// Whatever comes on the control channel's port: every parser gets the same bytes, once with the request id that they
// name and once with another, by which no parser takes them. What is refused has a reason and leaves the result as it
// was; what is taken is what the datagram says, and its texts are valid UTF-8 without control characters.

#include "gigevision/gvcppacket.h"
#include "gigevision/gvcptext.h"
#include "require.h"

#include <algorithm>
#include <array>
#include <string>

namespace {

using Datagram = std::span<const std::uint8_t>;

constexpr std::size_t kHeaderBytes = 8;
constexpr std::uint32_t kUntouched = 0xA5A5A5A5;

std::uint32_t GetNumber(Datagram aBytes) {
  std::uint32_t number = 0;
  for (const std::uint8_t byte : aBytes)
    number = number << 8 | byte;
  return number;
}

// What every parser promises: it takes a datagram for one request alone, and says why it does not.
bool IsTaken(const KrResult& aResult, bool aIsNamed) {
  Require(aIsNamed || !aResult.IsOK());
  return RequireReason(aResult);
}

void CheckDiscovery(Datagram aDatagram, std::uint16_t aRequestID, bool aIsNamed) {
  krtransport::DiscoveryPayload payload;
  payload.address = kUntouched;
  payload.model = "untouched";
  if (!IsTaken(krtransport::ParseDiscoveryAcknowledge(aDatagram, aRequestID, payload), aIsNamed)) {
    Require(payload.address == kUntouched && payload.model == "untouched");
    return;
  }
  Require(payload.address == GetNumber(aDatagram.subspan(kHeaderBytes + 0x24, 4)));
  for (const auto* text : {&payload.manufacturer, &payload.model, &payload.deviceVersion, &payload.manufacturerInfo,
                           &payload.serialNumber, &payload.userDefinedName})
    Require(krtransport::ReadText(std::vector<std::uint8_t>(text->begin(), text->end())) == *text);
}

void CheckNumbers(Datagram aDatagram, std::uint16_t aRequestID, bool aIsNamed) {
  std::uint32_t value = kUntouched;
  const bool isValue = IsTaken(krtransport::ParseReadRegisterAcknowledge(aDatagram, aRequestID, value), aIsNamed);
  Require(value == (isValue ? GetNumber(aDatagram.subspan(kHeaderBytes, 4)) : kUntouched));

  constexpr std::uint16_t kUntouchedMs = 0xA5A5;
  std::uint16_t milliseconds = kUntouchedMs;
  const bool isPending = IsTaken(krtransport::ParsePendingAcknowledge(aDatagram, aRequestID, milliseconds), aIsNamed);
  Require(milliseconds == (isPending ? GetNumber(aDatagram.subspan(kHeaderBytes + 2, 2)) : kUntouchedMs));
}

// Asked for as much memory as the datagram would hold, and for another size.
void CheckMemory(Datagram aDatagram, std::uint16_t aRequestID, bool aIsNamed, std::size_t aSize) {
  constexpr std::uint32_t kAddress = 0x48;
  constexpr std::size_t kBefore = kHeaderBytes + sizeof kAddress;
  std::array<std::uint8_t, krtransport::kMaxReadMemory> memory;
  memory.fill(0xA5);
  const auto asked = std::span(memory).first(std::min(aSize, memory.size()));
  const bool isTaken =
      IsTaken(krtransport::ParseReadMemoryAcknowledge(aDatagram, aRequestID, kAddress, asked), aIsNamed);
  if (isTaken) {
    Require(aDatagram.size() == kBefore + asked.size());
    Require(GetNumber(aDatagram.subspan(kHeaderBytes, 4)) == kAddress);
    Require(std::ranges::equal(asked, aDatagram.subspan(kBefore)));
  }
  Require(std::ranges::all_of(std::span(memory).subspan(isTaken ? asked.size() : 0),
                              [](std::uint8_t aByte) { return aByte == 0xA5; }));
}

void ParseAs(Datagram aDatagram, std::uint16_t aRequestID, bool aIsNamed) {
  CheckDiscovery(aDatagram, aRequestID, aIsNamed);
  static_cast<void>(IsTaken(krtransport::ParseForceIPAcknowledge(aDatagram, aRequestID), aIsNamed));
  CheckNumbers(aDatagram, aRequestID, aIsNamed);
  const std::size_t held = aDatagram.size() - std::min<std::size_t>(aDatagram.size(), 12);
  CheckMemory(aDatagram, aRequestID, aIsNamed, held);
  CheckMemory(aDatagram, aRequestID, aIsNamed, aDatagram.size() % krtransport::kMaxReadMemory);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const std::span<const std::uint8_t> datagram(aData, aSize);
  const std::uint16_t named = aSize >= 8 ? static_cast<std::uint16_t>((aData[6] << 8) | aData[7]) : 1;
  ParseAs(datagram, named, true);
  ParseAs(datagram, static_cast<std::uint16_t>(named + 1), false);
  return 0;
}

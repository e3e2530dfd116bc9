#include "gigevision/gvcppacket.h"

#include "gigevision/gvcptext.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace krtransport {
namespace {

constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kDiscoveryPayloadSize = 248;
constexpr std::size_t kForceIPPayloadSize = 56;
constexpr std::uint8_t kKey = 0x42;
constexpr std::uint8_t kAcknowledgeRequired = 0x01;
constexpr std::uint8_t kBroadcastAcknowledgeAllowed = 0x10;
constexpr std::uint32_t kIPConfigMask = 0x7;

// Status codes in the device's own words (GigE Vision 2.x, status codes).
struct StatusText {
  std::uint16_t status;
  const char* text;
};

constexpr std::uint16_t kAccessDenied = 0x8006;

constexpr StatusText kStatusTexts[] = {
    {0x0100, "packet resend"},         {0x8001, "not implemented"},
    {0x8002, "invalid parameter"},     {0x8003, "invalid address"},
    {0x8004, "write protected"},       {0x8005, "bad alignment"},
    {0x8006, "access denied"},         {0x8007, "busy"},
    {0x800C, "packet unavailable"},    {0x800D, "data overrun"},
    {0x800E, "invalid header"},        {0x8013, "no reference time"},
    {0x8014, "temporarily no packet"}, {0x8015, "overflow"},
    {0x8016, "action late"},           {0x8FFF, "unspecified error"},
};

std::uint16_t Get16(std::span<const std::uint8_t> aBytes, std::size_t aOffset) {
  return static_cast<std::uint16_t>((aBytes[aOffset] << 8) | aBytes[aOffset + 1]);
}

std::uint32_t Get32(std::span<const std::uint8_t> aBytes, std::size_t aOffset) {
  return (static_cast<std::uint32_t>(Get16(aBytes, aOffset)) << 16) | Get16(aBytes, aOffset + 2);
}

void Put16(std::vector<std::uint8_t>& aBytes, std::size_t aOffset, std::uint32_t aValue) {
  aBytes[aOffset] = static_cast<std::uint8_t>(aValue >> 8);
  aBytes[aOffset + 1] = static_cast<std::uint8_t>(aValue);
}

void Put32(std::vector<std::uint8_t>& aBytes, std::size_t aOffset, std::uint32_t aValue) {
  Put16(aBytes, aOffset, aValue >> 16);
  Put16(aBytes, aOffset + 2, aValue);
}

std::string ToHex(std::uint32_t aValue) {
  std::array<char, 8> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), aValue, 16).ptr;
  return "0x" + std::string(digits.data(), end);
}

std::string DescribeStatus(std::uint16_t aStatus) {
  const auto* row = std::find_if(std::begin(kStatusTexts), std::end(kStatusTexts),
                                 [aStatus](const StatusText& aText) { return aText.status == aStatus; });
  return row == std::end(kStatusTexts) ? "status " + ToHex(aStatus)
                                       : std::string(row->text) + " (" + ToHex(aStatus) + ")";
}

std::vector<std::uint8_t> MakeCommand(GvcpMessage aMessage, std::uint8_t aFlags, std::uint16_t aRequestID,
                                      std::size_t aPayloadSize) {
  std::vector<std::uint8_t> datagram(kHeaderSize + aPayloadSize);
  datagram[0] = kKey;
  datagram[1] = aFlags;
  Put16(datagram, 2, static_cast<std::uint16_t>(aMessage));
  Put16(datagram, 4, static_cast<std::uint32_t>(aPayloadSize));
  Put16(datagram, 6, aRequestID);
  return datagram;
}

KrResult Refuse(const std::string& aReason) {
  return {KrResult::Code::BadData, "A datagram on the control channel was refused: " + aReason + "."};
}

// Checks all that acknowledges have in common. An acknowledge of a refused command may come without its payload, so the
// status is judged before the payload's length.
KrResult CheckHeader(std::span<const std::uint8_t> aDatagram, GvcpMessage aMessage, std::uint16_t aRequestID,
                     std::size_t aPayloadSize) {
  if (aDatagram.size() < kHeaderSize)
    return Refuse("its " + std::to_string(aDatagram.size()) + " bytes are too few for a header");
  if (Get16(aDatagram, 2) != static_cast<std::uint16_t>(aMessage))
    return Refuse("message " + ToHex(Get16(aDatagram, 2)) + " came instead of " +
                  ToHex(static_cast<std::uint16_t>(aMessage)));
  if (Get16(aDatagram, 6) != aRequestID)
    return Refuse("it answers request " + std::to_string(Get16(aDatagram, 6)) + ", not " + std::to_string(aRequestID));
  if (Get16(aDatagram, 4) != aDatagram.size() - kHeaderSize)
    return Refuse("its header states " + std::to_string(Get16(aDatagram, 4)) + " bytes of payload, " +
                  std::to_string(aDatagram.size() - kHeaderSize) + " came");
  if (const std::uint16_t status = Get16(aDatagram, 0); status != 0)
    return {status == kAccessDenied ? KrResult::Code::AccessDenied : KrResult::Code::ProtocolError,
            "The device refused the command: " + DescribeStatus(status) + "."};
  if (aDatagram.size() - kHeaderSize != aPayloadSize)
    return Refuse("its payload has " + std::to_string(aDatagram.size() - kHeaderSize) + " bytes instead of " +
                  std::to_string(aPayloadSize));
  return {};
}

} // namespace

KrResult CheckGvcpSize(std::size_t aBytes) {
  return aBytes <= kMaxGvcpDatagram ? KrResult() : Refuse("its " + std::to_string(aBytes) + " bytes are too many");
}

std::vector<std::uint8_t> MakeDiscoveryCommand(std::uint16_t aRequestID) {
  return MakeCommand(GvcpMessage::DiscoveryCommand, kAcknowledgeRequired | kBroadcastAcknowledgeAllowed, aRequestID, 0);
}

std::vector<std::uint8_t> MakeForceIPCommand(std::uint16_t aRequestID, const krsystem::MACAddress& aMac,
                                             std::uint32_t aAddress, std::uint32_t aMask, std::uint32_t aGateway) {
  auto datagram = MakeCommand(GvcpMessage::ForceIPCommand, kAcknowledgeRequired | kBroadcastAcknowledgeAllowed,
                              aRequestID, kForceIPPayloadSize);
  std::copy(aMac.begin(), aMac.end(), datagram.begin() + kHeaderSize + 2);
  Put32(datagram, kHeaderSize + 20, aAddress);
  Put32(datagram, kHeaderSize + 36, aMask);
  Put32(datagram, kHeaderSize + 52, aGateway);
  return datagram;
}

std::vector<std::uint8_t> MakeReadRegisterCommand(std::uint16_t aRequestID, std::uint32_t aAddress) {
  auto datagram = MakeCommand(GvcpMessage::ReadRegisterCommand, kAcknowledgeRequired, aRequestID, 4);
  Put32(datagram, kHeaderSize, aAddress);
  return datagram;
}

std::vector<std::uint8_t> MakeReadMemoryCommand(std::uint16_t aRequestID, std::uint32_t aAddress,
                                                std::uint16_t aCount) {
  auto datagram = MakeCommand(GvcpMessage::ReadMemoryCommand, kAcknowledgeRequired, aRequestID, 8);
  Put32(datagram, kHeaderSize, aAddress);
  Put16(datagram, kHeaderSize + 6, aCount);
  return datagram;
}

KrResult ParseDiscoveryAcknowledge(std::span<const std::uint8_t> aDatagram, std::uint16_t aRequestID,
                                   DiscoveryPayload& aPayload) {
  if (KrResult result = CheckHeader(aDatagram, GvcpMessage::DiscoveryAcknowledge, aRequestID, kDiscoveryPayloadSize);
      !result.IsOK())
    return result;
  const auto payload = aDatagram.subspan(kHeaderSize);
  DiscoveryPayload parsed;
  parsed.version = Get32(payload, 0x00);
  parsed.deviceMode = Get32(payload, 0x04);
  std::copy_n(payload.begin() + 0x0A, parsed.mac.size(), parsed.mac.begin());
  parsed.ipConfigOptions = Get32(payload, 0x10) & kIPConfigMask;
  parsed.ipConfigCurrent = Get32(payload, 0x14) & kIPConfigMask;
  parsed.address = Get32(payload, 0x24);
  parsed.mask = Get32(payload, 0x34);
  parsed.gateway = Get32(payload, 0x44);
  parsed.manufacturer = ReadText(payload.subspan(0x48, 32));
  parsed.model = ReadText(payload.subspan(0x68, 32));
  parsed.deviceVersion = ReadText(payload.subspan(0x88, 32));
  parsed.manufacturerInfo = ReadText(payload.subspan(0xA8, 48));
  parsed.serialNumber = ReadText(payload.subspan(0xD8, 16));
  parsed.userDefinedName = ReadText(payload.subspan(0xE8, 16));
  aPayload = std::move(parsed);
  return {};
}

KrResult ParseForceIPAcknowledge(std::span<const std::uint8_t> aDatagram, std::uint16_t aRequestID) {
  return CheckHeader(aDatagram, GvcpMessage::ForceIPAcknowledge, aRequestID, 0);
}

KrResult ParseReadRegisterAcknowledge(std::span<const std::uint8_t> aDatagram, std::uint16_t aRequestID,
                                      std::uint32_t& aValue) {
  if (KrResult result = CheckHeader(aDatagram, GvcpMessage::ReadRegisterAcknowledge, aRequestID, 4); !result.IsOK())
    return result;
  aValue = Get32(aDatagram, kHeaderSize);
  return {};
}

KrResult ParseReadMemoryAcknowledge(std::span<const std::uint8_t> aDatagram, std::uint16_t aRequestID,
                                    std::uint32_t aAddress, std::span<std::uint8_t> aData) {
  constexpr std::size_t kAddressSize = 4;
  if (KrResult result =
          CheckHeader(aDatagram, GvcpMessage::ReadMemoryAcknowledge, aRequestID, kAddressSize + aData.size());
      !result.IsOK())
    return result;
  if (const std::uint32_t address = Get32(aDatagram, kHeaderSize); address != aAddress)
    return Refuse("it holds memory from " + ToHex(address) + ", not from " + ToHex(aAddress));
  std::copy_n(aDatagram.begin() + kHeaderSize + kAddressSize, aData.size(), aData.begin());
  return {};
}

KrResult ParsePendingAcknowledge(std::span<const std::uint8_t> aDatagram, std::uint16_t aRequestID,
                                 std::uint16_t& aMilliseconds) {
  if (KrResult result = CheckHeader(aDatagram, GvcpMessage::PendingAcknowledge, aRequestID, 4); !result.IsOK())
    return result;
  aMilliseconds = Get16(aDatagram, kHeaderSize + 2);
  return {};
}

} // namespace krtransport

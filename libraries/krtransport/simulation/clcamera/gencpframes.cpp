#include "simulation/clcamera/gencpframes.h"

#include <algorithm>
#include <cstddef>

namespace krtransport {

namespace {

constexpr std::uint16_t kPreamble = 0x0100;
constexpr std::size_t kHeaderChecksumAt = 2;
constexpr std::size_t kWholeChecksumAt = 4;
constexpr std::size_t kChannelAt = 6; // Both checksums begin here.
constexpr std::size_t kFlagsAt = 8;
constexpr std::size_t kIDAt = 10;
constexpr std::size_t kLengthAt = 12;
constexpr std::size_t kRequestAt = 14;

std::uint16_t GetWord(std::span<const std::uint8_t> aBytes, std::size_t aAt) {
  return static_cast<std::uint16_t>(aBytes[aAt] << 8 | aBytes[aAt + 1]);
}

void SetWord(std::vector<std::uint8_t>& aBytes, std::size_t aAt, std::uint16_t aWord) {
  aBytes[aAt] = static_cast<std::uint8_t>(aWord >> 8);
  aBytes[aAt + 1] = static_cast<std::uint8_t>(aWord);
}

// 0 and 0xFFFF are the same sum.
bool IsRight(std::span<const std::uint8_t> aPacket, std::size_t aChecksumAt) {
  const std::uint16_t difference =
      static_cast<std::uint16_t>(MakeGenCPChecksum(aPacket.subspan(kChannelAt)) ^ GetWord(aPacket, aChecksumAt));
  const bool isZero = GetWord(aPacket, aChecksumAt) == 0 || GetWord(aPacket, aChecksumAt) == 0xFFFF;
  return difference == 0 || (difference == 0xFFFF && isZero);
}

} // namespace

std::uint16_t MakeGenCPChecksum(std::span<const std::uint8_t> aBytes) {
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < aBytes.size(); ++i)
    sum += i % 2 == 0 ? static_cast<std::uint32_t>(aBytes[i]) << 8 : aBytes[i];
  while (sum > 0xFFFF)
    sum = (sum & 0xFFFF) + (sum >> 16);
  return static_cast<std::uint16_t>(~sum);
}

std::vector<std::uint8_t> MakeGenCPPacket(const GenCPAnswer& aAnswer) {
  std::vector<std::uint8_t> packet(kGenCPHeaderBytes);
  SetWord(packet, 0, kPreamble);
  SetWord(packet, kChannelAt, aAnswer.channel);
  SetWord(packet, kFlagsAt, aAnswer.status);
  SetWord(packet, kIDAt, aAnswer.id);
  SetWord(packet, kLengthAt, static_cast<std::uint16_t>(aAnswer.data.size()));
  SetWord(packet, kRequestAt, aAnswer.request);
  const std::span<const std::uint8_t> header(packet);
  SetWord(packet, kHeaderChecksumAt, MakeGenCPChecksum(header.subspan(kChannelAt)));
  packet.insert(packet.end(), aAnswer.data.begin(), aAnswer.data.end());
  SetWord(packet, kWholeChecksumAt, MakeGenCPChecksum(std::span<const std::uint8_t>(packet).subspan(kChannelAt)));
  return packet;
}

// Whether the bytes begin with a header whose checksum is right; drops what stands before it.
bool GenCPListener::SkipToHeader() {
  std::size_t skipped = 0;
  const std::span<const std::uint8_t> all(mBytes);
  const auto isHeader = [&all](std::size_t aAt) {
    const auto header = all.subspan(aAt, kGenCPHeaderBytes);
    return GetWord(header, 0) == kPreamble && IsRight(header, kHeaderChecksumAt);
  };
  while (mBytes.size() - skipped >= kGenCPHeaderBytes && !isHeader(skipped))
    ++skipped;
  mBytes.erase(mBytes.begin(), mBytes.begin() + static_cast<std::ptrdiff_t>(skipped));
  return mBytes.size() >= kGenCPHeaderBytes;
}

std::optional<GenCPCommand> GenCPListener::Take() {
  while (SkipToHeader()) {
    const std::size_t length = GetWord(mBytes, kLengthAt);
    const bool isTooLong = kGenCPHeaderBytes + length > kGenCPPacketBytes;
    const std::size_t size = kGenCPHeaderBytes + (isTooLong ? 0 : length);
    if (mBytes.size() < size)
      return std::nullopt;
    const std::span<const std::uint8_t> packet = std::span<const std::uint8_t>(mBytes).first(size);
    const bool isRight = isTooLong || IsRight(packet, kWholeChecksumAt);
    GenCPCommand command{.channel = GetWord(packet, kChannelAt),
                         .flags = GetWord(packet, kFlagsAt),
                         .id = GetWord(packet, kIDAt),
                         .request = GetWord(packet, kRequestAt),
                         .data = {packet.begin() + kGenCPHeaderBytes, packet.end()},
                         .isTooLong = isTooLong};
    // Behind the first byte of what is broken a command may begin.
    mBytes.erase(mBytes.begin(), mBytes.begin() + static_cast<std::ptrdiff_t>(isRight ? size : 1));
    if (isRight)
      return command;
  }
  return std::nullopt;
}

} // namespace krtransport

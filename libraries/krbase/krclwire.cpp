#include "krbase/krclwire.h"

#include <algorithm>

namespace {

constexpr std::uint32_t kNoValue = 0;
constexpr std::uint32_t kMostAnswer = static_cast<std::uint32_t>(KrCLAnswer::Failed);
constexpr std::uint32_t kAllSpeeds = (1U << kKrCLSpeeds.size()) - 1;

// What a kind of message may be like.
struct KindRow {
  KrCLMessageKind kind;
  KrCLSide from;
  std::uint32_t mostValue;
  std::size_t leastBytes;
  std::size_t mostBytes;
};

constexpr KindRow kKinds[] = {
    {KrCLMessageKind::Welcome, KrCLSide::Bridge, kMostAnswer, 0, kKrCLMostName},
    {KrCLMessageKind::Data, KrCLSide::Bridge, kNoValue, 1, kKrCLMostBytes},
    {KrCLMessageKind::Data, KrCLSide::Program, kNoValue, 1, kKrCLMostBytes},
    {KrCLMessageKind::SetSpeed, KrCLSide::Program, kAllSpeeds, 0, 0},
    {KrCLMessageKind::SpeedSet, KrCLSide::Bridge, kMostAnswer, 0, 0},
    {KrCLMessageKind::Speeds, KrCLSide::Bridge, kAllSpeeds, 0, 0},
    {KrCLMessageKind::Flush, KrCLSide::Program, kNoValue, 0, 0},
    {KrCLMessageKind::Flushed, KrCLSide::Bridge, kNoValue, 0, 0},
};

std::uint32_t ReadValue(const std::uint8_t* aBytes) {
  std::uint32_t value = 0;
  for (int i = 3; i >= 0; --i)
    value = value << 8 | aBytes[i];
  return value;
}

} // namespace

std::optional<KrCLMessage> KrParseCLMessage(std::span<const std::uint8_t> aPacket, KrCLSide aFrom) {
  if (aPacket.size() < kKrCLHeader)
    return std::nullopt;
  const auto* row = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const KindRow& aRow) {
    return static_cast<std::uint8_t>(aRow.kind) == aPacket[0] && aRow.from == aFrom;
  });
  if (row == std::end(kKinds))
    return std::nullopt;
  const std::uint32_t value = ReadValue(aPacket.data() + 1);
  const std::span<const std::uint8_t> bytes = aPacket.subspan(kKrCLHeader);
  if (value > row->mostValue || bytes.size() < row->leastBytes || bytes.size() > row->mostBytes)
    return std::nullopt;
  return KrCLMessage{row->kind, value, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}};
}

std::vector<std::uint8_t> KrMakeCLMessage(const KrCLMessage& aMessage) {
  std::vector<std::uint8_t> packet;
  packet.reserve(kKrCLHeader + aMessage.bytes.size());
  packet.push_back(static_cast<std::uint8_t>(aMessage.kind));
  for (int shift = 0; shift < 32; shift += 8)
    packet.push_back(static_cast<std::uint8_t>(aMessage.value >> shift));
  packet.insert(packet.end(), aMessage.bytes.begin(), aMessage.bytes.end());
  return packet;
}

std::uint32_t KrGetCLSpeedBit(std::uint32_t aBaudRate) {
  const auto* found = std::find(kKrCLSpeeds.begin(), kKrCLSpeeds.end(), aBaudRate);
  return found == kKrCLSpeeds.end() ? 0 : 1U << (found - kKrCLSpeeds.begin());
}

std::uint32_t KrGetCLSpeed(std::uint32_t aBit) {
  for (std::size_t i = 0; i < kKrCLSpeeds.size(); ++i)
    if (aBit == 1U << i)
      return kKrCLSpeeds[i];
  return 0;
}

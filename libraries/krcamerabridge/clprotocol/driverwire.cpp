#include "clprotocol/driverwire.h"

#include <algorithm>
#include <iterator>

namespace krcamerabridge {

namespace {

// Who sends a kind, and how many bytes it takes along at most; of a length that is asked for, too.
struct KindRow {
  WireKind kind;
  WireSide from;
  std::size_t mostBytes;
  std::size_t mostLength;
};

constexpr WireSide kApplication = WireSide::Application;
constexpr WireSide kDriver = WireSide::Driver;
constexpr KindRow kKinds[] = {
    {WireKind::Load, kApplication, kWireMaxText, 0},
    {WireKind::GetTemplates, kApplication, 0, 0},
    {WireKind::Probe, kApplication, kWireMaxText, 0},
    {WireKind::GetXMLIDs, kApplication, 0, 0},
    {WireKind::GetXMLDescription, kApplication, kWireMaxText, 0},
    {WireKind::ReadRegister, kApplication, 0, kWireMaxAccess},
    {WireKind::WriteRegister, kApplication, kWireMaxAccess, 0},
    {WireKind::ContinueWrite, kApplication, 0, 1},
    {WireKind::GetErrorText, kApplication, 0, 0},
    {WireKind::Disconnect, kApplication, 0, 0},
    {WireKind::GetParam, kApplication, 0, kWireMaxText},
    {WireKind::SetParam, kApplication, kWireMaxText, 0},
    {WireKind::Close, kApplication, 0, 0},
    {WireKind::StopProbe, kApplication, 0, 0},
    {WireKind::LineAnswer, kApplication, kWireMaxAccess, 0},
    {WireKind::Answer, kDriver, kWireMaxDescription, UINT32_MAX},
    {WireKind::Refusal, kDriver, kWireMaxText, 0},
    {WireKind::LineRead, kDriver, 0, kWireMaxAccess},
    {WireKind::LineWrite, kDriver, kWireMaxAccess, 0},
    {WireKind::LineGetRates, kDriver, 0, 0},
    {WireKind::LineSetRate, kDriver, 0, 0},
    {WireKind::Log, kDriver, kWireMaxText, 0},
};

template <typename Number>
void AddNumber(std::vector<std::uint8_t>& aBytes, Number aNumber) {
  for (std::size_t i = 0; i < sizeof(Number); ++i)
    aBytes.push_back(static_cast<std::uint8_t>(aNumber >> (8 * i)));
}

template <typename Number>
Number TakeNumber(std::span<const std::uint8_t>& aBytes) {
  Number number = 0;
  for (std::size_t i = 0; i < sizeof(Number); ++i)
    number |= static_cast<Number>(aBytes[i]) << (8 * i);
  aBytes = aBytes.subspan(sizeof(Number));
  return number;
}

} // namespace

std::vector<std::uint8_t> MakeWireBytes(const WireFrame& aFrame) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(kWireHeader + aFrame.bytes.size());
  bytes.push_back(static_cast<std::uint8_t>(aFrame.kind));
  AddNumber(bytes, static_cast<std::uint32_t>(aFrame.code));
  AddNumber(bytes, aFrame.cookie);
  AddNumber(bytes, aFrame.length);
  AddNumber(bytes, aFrame.timeoutMs);
  AddNumber(bytes, aFrame.address);
  AddNumber(bytes, static_cast<std::uint32_t>(aFrame.bytes.size()));
  bytes.insert(bytes.end(), aFrame.bytes.begin(), aFrame.bytes.end());
  return bytes;
}

void WireReader::Add(std::span<const std::uint8_t> aBytes) {
  if (mIsBroken)
    return;
  mBytes.erase(mBytes.begin(), mBytes.begin() + static_cast<std::ptrdiff_t>(mTaken));
  mTaken = 0;
  mBytes.insert(mBytes.end(), aBytes.begin(), aBytes.end());
}

std::optional<WireFrame> WireReader::Take() {
  std::span<const std::uint8_t> rest = std::span(mBytes).subspan(mTaken);
  if (mIsBroken || rest.size() < kWireHeader)
    return std::nullopt;
  WireFrame frame{static_cast<WireKind>(TakeNumber<std::uint8_t>(rest))};
  frame.code = static_cast<std::int32_t>(TakeNumber<std::uint32_t>(rest));
  frame.cookie = TakeNumber<std::uint32_t>(rest);
  frame.length = TakeNumber<std::uint32_t>(rest);
  frame.timeoutMs = TakeNumber<std::uint32_t>(rest);
  frame.address = TakeNumber<std::uint64_t>(rest);
  const std::size_t size = TakeNumber<std::uint32_t>(rest);

  const auto* const row = std::ranges::find(kKinds, frame.kind, &KindRow::kind);
  mIsBroken = row == std::end(kKinds) || row->from != mFrom || size > row->mostBytes || frame.length > row->mostLength;
  if (mIsBroken || rest.size() < size)
    return std::nullopt;
  frame.bytes.assign(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(size));
  mTaken += kWireHeader + size;
  return frame;
}

} // namespace krcamerabridge

#include "krsystem/ipv4address.h"

#include <charconv>

namespace krsystem {

namespace {

constexpr int kFieldCount = 4;
constexpr std::uint32_t kLargestField = 255;
constexpr std::ptrdiff_t kLongestField = 3;

} // namespace

std::optional<std::uint32_t> ParseIPv4(const KrString& aText) {
  const std::string& text = aText.ToUtf8();
  const char* position = text.data();
  const char* const end = position + text.size();
  std::uint32_t address = 0;
  for (int field = 0; field < kFieldCount; ++field) {
    if (field > 0 && (position == end || *position++ != '.'))
      return std::nullopt;
    std::uint32_t value = 0;
    const auto [next, error] = std::from_chars(position, end, value);
    if (error != std::errc() || value > kLargestField || next - position > kLongestField)
      return std::nullopt;
    address = address << 8 | value;
    position = next;
  }
  if (position != end)
    return std::nullopt;
  return address;
}

KrString FormatIPv4(std::uint32_t aAddress) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    text += std::to_string(aAddress >> shift & 0xFFu);
    if (shift > 0)
      text += '.';
  }
  return KrString(std::move(text));
}

bool IsForDevice(std::uint32_t aAddress, std::uint32_t aMask) {
  const std::uint32_t host = aAddress & ~aMask;
  const bool keepsAddresses = ~aMask > 1;
  return !keepsAddresses || (host != 0 && host != ~aMask);
}

bool IsReachedFrom(std::uint32_t aHostAddress, std::uint32_t aHostMask, std::uint32_t aDevice) {
  return aHostAddress != 0 && aHostMask != 0 && aDevice != 0 && ((aHostAddress ^ aDevice) & aHostMask) == 0 &&
         IsForDevice(aDevice, aHostMask);
}

} // namespace krsystem

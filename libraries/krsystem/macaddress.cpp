#include "krsystem/macaddress.h"

#include <charconv>
#include <string>
#include <utility>

namespace krsystem {

namespace {

constexpr std::size_t kTextLength = 17; // "aa:bb:cc:dd:ee:ff".

} // namespace

std::optional<MACAddress> ParseMAC(const KrString& aText) {
  const std::string& text = aText.ToUtf8();
  if (text.size() != kTextLength)
    return std::nullopt;
  MACAddress address{};
  for (std::size_t i = 0; i < address.size(); ++i) {
    const char* const pair = text.data() + i * 3;
    const auto [end, error] = std::from_chars(pair, pair + 2, address[i], 16);
    if (error != std::errc() || end != pair + 2 || (i + 1 < address.size() && pair[2] != ':'))
      return std::nullopt;
  }
  return address;
}

KrString FormatMAC(const MACAddress& aAddress) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : aAddress) {
    if (!text.empty())
      text += ':';
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0x0Fu];
  }
  return KrString(std::move(text));
}

} // namespace krsystem

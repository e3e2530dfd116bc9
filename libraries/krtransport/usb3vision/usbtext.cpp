#include "usb3vision/usbtext.h"

#include "krbase/krstring.h"
#include "krbase/utf8cut.h"
#include "krsystem/formatmark.h"

#include <algorithm>

namespace krtransport {
namespace {

constexpr std::uint8_t kStringDescriptor = 0x03;
constexpr std::size_t kHeaderLength = 2;
constexpr char16_t kReplacement = 0xFFFD;

bool IsUnfit(char16_t aUnit) {
  return aUnit < 0x20 || (aUnit >= 0x7F && aUnit < 0xA0) || krsystem::IsFormatMark(aUnit);
}

std::string Clean(std::u16string aText) {
  std::ranges::replace_if(aText, IsUnfit, kReplacement);
  return std::string(krbase::CutUtf8(KrString(std::u16string_view(aText)).ToUtf8(), kMaxUsbText));
}

// The units behind the header of a string descriptor; none where the bytes are no such descriptor.
std::u16string ReadUnits(std::span<const std::uint8_t> aBytes) {
  if (aBytes.size() < kHeaderLength || aBytes[1] != kStringDescriptor)
    return {};
  const std::size_t length = std::min<std::size_t>(aBytes[0], aBytes.size());
  std::u16string units;
  for (std::size_t at = kHeaderLength; at + 1 < length; at += 2)
    units += static_cast<char16_t>(aBytes[at] | (aBytes[at + 1] << 8));
  return units;
}

} // namespace

std::string CleanUsbText(std::string_view aText) {
  // A unit of UTF-16 comes of three bytes at most, so that nothing which could be kept is cut here.
  return Clean(KrString(aText.substr(0, kMaxUsbText + 4)).ToWide());
}

std::string ParseStringDescriptor(std::span<const std::uint8_t> aBytes) {
  std::u16string units = ReadUnits(aBytes);
  // Some devices count terminating zeros in; they are no part of the text.
  units.resize(std::min(units.find(u'\0'), units.size()));
  return Clean(std::move(units));
}

std::uint16_t ParseFirstLanguage(std::span<const std::uint8_t> aBytes) {
  const std::u16string languages = ReadUnits(aBytes);
  return languages.empty() ? std::uint16_t{0} : static_cast<std::uint16_t>(languages.front());
}

} // namespace krtransport

#include "gigevision/gvcptext.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string_view>

namespace krtransport {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::size_t kMacTextLength = 17;

// The form of one UTF-8 sequence by its first byte, and the range of its second byte, which excludes overlong forms,
// surrogates and what is beyond U+10FFFF (Unicode, table 3-7).
struct SequenceForm {
  std::uint8_t firstFrom;
  std::uint8_t firstTo;
  std::uint8_t secondFrom;
  std::uint8_t secondTo;
  std::uint8_t length;
};

constexpr SequenceForm kForms[] = {
    {0xC2, 0xC2, 0xA0, 0xBF, 2}, // Without U+0080 to U+009F, which are control characters.
    {0xC3, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3},
    {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

bool IsContinuation(std::uint8_t aByte) {
  return (aByte & 0xC0u) == 0x80u;
}

// The length of the well-formed, printable character at the start; 0 where there is none.
std::size_t GetCharacterLength(std::span<const std::uint8_t> aBytes) {
  const std::uint8_t first = aBytes[0];
  if (first < 0x80)
    return first >= 0x20 && first != 0x7F ? 1 : 0;
  const auto* form = std::find_if(std::begin(kForms), std::end(kForms), [first](const SequenceForm& aForm) {
    return first >= aForm.firstFrom && first <= aForm.firstTo;
  });
  if (form == std::end(kForms) || aBytes.size() < form->length)
    return 0;
  if (aBytes[1] < form->secondFrom || aBytes[1] > form->secondTo)
    return 0;
  const auto rest = aBytes.subspan(2, form->length - 2u);
  return std::all_of(rest.begin(), rest.end(), IsContinuation) ? form->length : 0;
}

} // namespace

std::string FormatMac(const MacBytes& aMac) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : aMac) {
    if (!text.empty())
      text += ':';
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0x0Fu];
  }
  return text;
}

bool ParseMac(const std::string& aText, MacBytes& aMac) {
  if (aText.size() != kMacTextLength)
    return false;
  MacBytes mac{};
  for (std::size_t i = 0; i < mac.size(); ++i) {
    const char* pair = aText.data() + i * 3;
    const auto [end, error] = std::from_chars(pair, pair + 2, mac[i], 16);
    if (error != std::errc() || end != pair + 2 || (i + 1 < mac.size() && pair[2] != ':'))
      return false;
  }
  aMac = mac;
  return true;
}

std::string ReadText(std::span<const std::uint8_t> aField) {
  const auto end = std::find(aField.begin(), aField.end(), std::uint8_t{0});
  auto rest = aField.first(static_cast<std::size_t>(end - aField.begin()));
  std::string text;
  while (!rest.empty()) {
    const std::size_t length = GetCharacterLength(rest);
    if (length == 0)
      text += kReplacement;
    else
      text.append(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(length));
    rest = rest.subspan(std::max<std::size_t>(length, 1));
  }
  return text;
}

} // namespace krtransport

#include "gigevision/gvcptext.h"

#include "krsystem/formatmark.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace krtransport {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

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

// The number of a well-formed character.
char32_t Decode(std::span<const std::uint8_t> aCharacter) {
  constexpr std::uint8_t kFirstBits[] = {0x7F, 0x1F, 0x0F, 0x07};
  char32_t number = aCharacter[0] & kFirstBits[aCharacter.size() - 1];
  for (const std::uint8_t byte : aCharacter.subspan(1))
    number = number << 6 | (byte & 0x3Fu);
  return number;
}

} // namespace

std::string ReadText(std::span<const std::uint8_t> aField) {
  const auto end = std::find(aField.begin(), aField.end(), std::uint8_t{0});
  auto rest = aField.first(static_cast<std::size_t>(end - aField.begin()));
  std::string text;
  while (!rest.empty()) {
    const std::size_t length = GetCharacterLength(rest);
    if (length == 0 || krsystem::IsFormatMark(Decode(rest.first(length))))
      text += kReplacement;
    else
      text.append(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(length));
    rest = rest.subspan(std::max<std::size_t>(length, 1));
  }
  return text;
}

} // namespace krtransport

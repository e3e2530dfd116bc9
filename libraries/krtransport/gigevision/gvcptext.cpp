#include "gigevision/gvcptext.h"

#include "krbase/utf8sequence.h"
#include "krsystem/formatmark.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace krtransport {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool IsControl(char32_t aPoint) {
  return aPoint < 0x20 || (aPoint >= 0x7F && aPoint < 0xA0);
}

} // namespace

std::string ReadText(std::span<const std::uint8_t> aField) {
  const auto end = std::find(aField.begin(), aField.end(), std::uint8_t{0});
  const std::string field(aField.begin(), end);
  std::string text;
  for (std::string_view rest = field; !rest.empty();) {
    const krbase::Utf8Sequence character = krbase::ReadUtf8(rest);
    const bool isText = character.isWellFormed && !IsControl(character.point);
    const std::size_t length = isText ? character.length : 1;
    text += isText && !krsystem::IsFormatMark(character.point) ? rest.substr(0, length) : kReplacement;
    rest.remove_prefix(length);
  }
  return text;
}

} // namespace krtransport

#include "logic/serial/senddata.h"

#include <algorithm>

namespace krgui {

namespace {

#define KR_HEX_HELP                                                                                                    \
  u"Bytes must be provided as pairs of hexadecimal digits\r\nseparated by spaces.\r\n\r\n"                             \
  u"Example: 03 64 70 6D AB 43 72 01 02"

// No character beyond ASCII is a digit in upper case, so that these letters are all that matter.
ParsedBytes ParseAnyCase(std::u16string_view aText) {
  std::u16string upperCase(aText);
  for (char16_t& unit : upperCase) {
    if (unit >= u'a' && unit <= u'f')
      unit = static_cast<char16_t>(unit - u'a' + u'A');
  }
  return ParseHexString(upperCase);
}

ParsedBytes TakeLowBytes(std::u16string_view aText) {
  ParsedBytes taken{true, std::vector<std::uint8_t>(aText.size())};
  std::transform(aText.begin(), aText.end(), taken.bytes.begin(),
                 [](char16_t aUnit) { return static_cast<std::uint8_t>(aUnit & 0xFF); });
  return taken;
}

} // namespace

const std::u16string_view kSendDataError = u"Error parsing send data string.\r\n\r\n" KR_HEX_HELP;
const std::u16string_view kOtherTrailerError = u"Error parsing other trailer string.\r\n\r\n" KR_HEX_HELP;

ParsedBytes EncodeSendData(std::u16string_view aText, SendFormat aFormat) {
  return aFormat == SendFormat::Hexadecimal ? ParseAnyCase(aText) : TakeLowBytes(aText);
}

ParsedBytes BuildTrailer(const TrailerChoice& aChoice) {
  ParsedBytes trailer{true, {}};
  if (aChoice.cr)
    trailer.bytes.push_back(0x0D);
  if (aChoice.lf)
    trailer.bytes.push_back(0x0A);
  if (aChoice.null)
    trailer.bytes.push_back(0x00);
  if (!aChoice.other)
    return trailer;
  const ParsedBytes other = ParseAnyCase(aChoice.otherText);
  trailer.ok = other.ok;
  trailer.bytes.insert(trailer.bytes.end(), other.bytes.begin(), other.bytes.end());
  return trailer;
}

} // namespace krgui

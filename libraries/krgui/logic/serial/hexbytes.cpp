#include "logic/serial/hexbytes.h"

namespace krgui {

namespace {

constexpr int kNoDigit = -1;

int GetDigit(char16_t aUnit) {
  if (aUnit >= u'0' && aUnit <= u'9')
    return aUnit - u'0';
  if (aUnit >= u'A' && aUnit <= u'F')
    return aUnit - u'A' + 10;
  return kNoDigit;
}

} // namespace

ParsedBytes ParseHexString(std::u16string_view aUpperCase) {
  ParsedBytes parsed{true, {}};
  int held = kNoDigit;
  for (const char16_t unit : aUpperCase) {
    const int digit = GetDigit(unit);
    if (digit == kNoDigit && unit != u' ')
      return {};
    if (held == kNoDigit) {
      held = digit;
      continue;
    }
    parsed.bytes.push_back(static_cast<std::uint8_t>(digit == kNoDigit ? held : held << 4 | digit));
    held = kNoDigit;
  }
  if (held != kNoDigit)
    parsed.bytes.push_back(static_cast<std::uint8_t>(held));
  return parsed;
}

} // namespace krgui

// Whatever may be typed or pasted into the terminal's "Data" and "Other" fields: the first character chooses the
// "Append" boxes by its low four bits, the rest is the field's text in UTF-8. Hexadecimal text is read as a whole or
// refused, and what was read reads the same when it is written as pairs.

#include "krbase/krstring.h"
#include "logic/serial/senddata.h"
#include "require.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

std::u16string WriteAsPairs(const std::vector<std::uint8_t>& aBytes) {
  constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
  std::u16string pairs;
  for (const std::uint8_t byte : aBytes)
    pairs += {kDigits[byte >> 4], kDigits[byte & 0x0F], u' '};
  return pairs;
}

void CheckASCII(const std::u16string& aText) {
  const krgui::ParsedBytes data = krgui::EncodeSendData(aText, krgui::SendFormat::ASCII);
  Require(data.ok);
  Require(std::equal(data.bytes.begin(), data.bytes.end(), aText.begin(), aText.end(),
                     [](std::uint8_t aByte, char16_t aUnit) { return aByte == aUnit % 256; }));
}

krgui::ParsedBytes CheckHexadecimal(const std::u16string& aText) {
  const krgui::ParsedBytes data = krgui::EncodeSendData(aText, krgui::SendFormat::Hexadecimal);
  Require(data.ok || data.bytes.empty());
  Require(data.bytes.size() <= aText.size());
  Require(krgui::ParseHexString(WriteAsPairs(data.bytes)).bytes == data.bytes);
  // Upper case alone is read without the help of the send rules, and to the same end.
  const krgui::ParsedBytes strict = krgui::ParseHexString(aText);
  Require(!strict.ok || (data.ok && strict.bytes == data.bytes));
  return data;
}

void CheckTrailer(const krgui::TrailerChoice& aChoice, const krgui::ParsedBytes& aOther) {
  const krgui::ParsedBytes trailer = krgui::BuildTrailer(aChoice);
  const std::size_t chosen = std::size_t{aChoice.cr} + std::size_t{aChoice.lf} + std::size_t{aChoice.null};
  Require(trailer.ok == (!aChoice.other || aOther.ok));
  Require(trailer.bytes.size() == chosen + (aChoice.other ? aOther.bytes.size() : 0));
  if (aChoice.other)
    Require(std::equal(aOther.bytes.rbegin(), aOther.bytes.rend(), trailer.bytes.rbegin()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0)
    return 0;
  const std::string_view input(reinterpret_cast<const char*>(aData), aSize);
  const std::u16string text = KrString(input.substr(1)).ToWide();
  const int boxes = aData[0];

  CheckASCII(text);
  const krgui::ParsedBytes data = CheckHexadecimal(text);
  CheckTrailer({(boxes & 1) != 0, (boxes & 2) != 0, (boxes & 4) != 0, (boxes & 8) != 0, text}, data);
  return 0;
}

#include "textescape.h"

#include "utf8sequence.h"
#include "xmlentities.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace krpersistence {

namespace {

// Backslashes have an escape of their own; control characters are changed on reading, forbidden, or hard to see.
bool NeedsEscape(const Utf8Sequence& aSequence) {
  const bool isControl = aSequence.point < 0x20 || (aSequence.point >= 0x7F && aSequence.point < 0xA0);
  return aSequence.length == 0 || isControl || !IsXmlCharacter(aSequence.point);
}

// Most texts are little else than bytes that stand for themselves.
bool IsPlain(char aByte) {
  return IsPrintable(aByte) && std::string_view("&<>\"'\\").find(aByte) == std::string_view::npos;
}

void AppendBytes(std::string& aEscaped, std::string_view aBytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (const char byte : aBytes) {
    const auto value = static_cast<unsigned char>(byte);
    aEscaped += {'\\', 'x', kDigits[value >> 4], kDigits[value & 0xFU]};
  }
}

// Reads the digits of a character reference, "65" or "x41".
std::optional<char32_t> ReadCharacterNumber(std::string_view aDigits) {
  const bool isHex = aDigits.starts_with('x');
  if (isHex)
    aDigits.remove_prefix(1);
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(aDigits.data(), aDigits.data() + aDigits.size(), number, isHex ? 16 : 10);
  const bool isNumber = error == std::errc() && end == aDigits.data() + aDigits.size();
  return isNumber && IsXmlCharacter(number) ? std::optional<char32_t>(number) : std::nullopt;
}

// Appends the character of a reference with its "&" and ";".
bool AppendReference(std::string& aText, std::string_view aReference) {
  const auto* const entity = std::ranges::find(kXmlEntities, aReference, &XmlEntity::reference);
  if (entity != kXmlEntities.end()) {
    aText += entity->character;
    return true;
  }
  if (!aReference.starts_with("&#") || !aReference.ends_with(';'))
    return false;
  const auto point = ReadCharacterNumber(aReference.substr(2, aReference.size() - 3));
  if (point)
    krbase::AppendUtf8(aText, *point);
  return point.has_value();
}

// What XML makes of an attribute's value (XML 1.0, 3.3.3): references resolved, line ends and tabs as blanks.
std::optional<std::string> NormalizeValue(std::string_view aValue, std::string& aReason) {
  std::string text;
  for (;;) {
    const std::string_view plain = aValue.substr(0, aValue.find_first_of("<&\t\r\n"));
    text += plain;
    aValue.remove_prefix(plain.size());
    if (aValue.empty())
      return text;
    std::size_t length = aValue.starts_with("\r\n") ? 2 : 1;
    const char first = aValue.front();
    if (first == '<') {
      aReason = "a \"<\" must be written as &lt;";
      return std::nullopt;
    }
    if (first == '&') {
      length = std::min(aValue.find(';'), aValue.size() - 1) + 1;
      if (!AppendReference(text, aValue.substr(0, length))) {
        aReason = "a \"&\" begins no reference to a character that may be here";
        return std::nullopt;
      }
    } else {
      text += ' ';
    }
    aValue.remove_prefix(length);
  }
}

// The byte of "xHH".
std::optional<char> ReadByte(std::string_view aEscape) {
  unsigned value = 0;
  if (aEscape.size() != 3 || aEscape.front() != 'x')
    return std::nullopt;
  const auto [end, error] = std::from_chars(aEscape.data() + 1, aEscape.data() + 3, value, 16);
  return error == std::errc() && end == aEscape.data() + 3 ? std::optional(static_cast<char>(value)) : std::nullopt;
}

} // namespace

std::string EscapeText(std::string_view aText) {
  std::string escaped;
  for (;;) {
    const auto special = std::find_if_not(aText.begin(), aText.end(), IsPlain);
    escaped.append(aText.begin(), special);
    aText.remove_prefix(static_cast<std::size_t>(special - aText.begin()));
    if (aText.empty())
      return escaped;
    const Utf8Sequence sequence = ReadUtf8(aText);
    const std::string_view bytes = aText.substr(0, std::max<std::size_t>(sequence.length, 1));
    const std::string_view reference = GetXmlReference(bytes.front());
    if (NeedsEscape(sequence))
      AppendBytes(escaped, bytes);
    else if (bytes == "\\")
      escaped += "\\\\";
    else
      escaped += reference.empty() ? bytes : reference;
    aText.remove_prefix(bytes.size());
  }
}

std::optional<std::string> UnescapeText(std::string_view aValue, std::string& aReason) {
  const std::optional<std::string> normalized = NormalizeValue(aValue, aReason);
  if (!normalized)
    return std::nullopt;
  std::string text;
  std::string_view rest = *normalized;
  for (std::size_t backslash = rest.find('\\'); backslash != rest.npos; backslash = rest.find('\\')) {
    text += rest.substr(0, backslash);
    rest.remove_prefix(backslash + 1);
    const auto byte = rest.starts_with('\\') ? std::optional('\\') : ReadByte(rest.substr(0, 3));
    if (!byte) {
      aReason = "a backslash begins neither \\\\ nor \\x and two hexadecimal digits";
      return std::nullopt;
    }
    text += *byte;
    rest.remove_prefix(rest.starts_with('\\') ? 1 : 3);
  }
  return text + std::string(rest);
}

} // namespace krpersistence

#include "description/textencoding.h"

#include "description/lexical.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace krgenicam {

namespace {

constexpr const char* kExpected = " Cameras' descriptions are expected in UTF-8; UTF-16 and ISO-8859-1 are taken, too.";

bool IsAscii(std::string_view aText) {
  return std::ranges::all_of(aText, [](char aByte) { return static_cast<unsigned char>(aByte) < 0x80; });
}

std::string FromUtf16(std::string_view aBytes, bool aIsBigEndian) {
  std::u16string units(aBytes.size() / 2, u'\0');
  for (std::size_t index = 0; index < units.size(); ++index) {
    const auto first = static_cast<unsigned char>(aBytes[2 * index]);
    const auto second = static_cast<unsigned char>(aBytes[2 * index + 1]);
    units[index] = static_cast<char16_t>(aIsBigEndian ? first << 8 | second : second << 8 | first);
  }
  return KrString(std::u16string_view(units)).ToUtf8();
}

std::string FromLatin1(std::string_view aBytes) {
  std::string text;
  text.reserve(aBytes.size());
  for (const char byte : aBytes) {
    const auto code = static_cast<unsigned char>(byte);
    if (code >= 0x80)
      text += static_cast<char>(0xC0 | code >> 6);
    text += code < 0x80 ? byte : static_cast<char>(0x80 | (code & 0x3F));
  }
  return text;
}

// The encoding that an XML declaration names; empty where there is none.
std::string_view FindDeclaredEncoding(std::string_view aText) {
  constexpr std::string_view kWord = "encoding";
  const std::string_view declaration = aText.substr(0, aText.find("?>"));
  const std::size_t word = declaration.find(kWord);
  if (!declaration.starts_with("<?xml") || word == std::string_view::npos)
    return {};
  const std::string_view rest = declaration.substr(word + kWord.size());
  const std::size_t begin = rest.find_first_of("\"'");
  if (begin == std::string_view::npos)
    return {};
  return rest.substr(begin + 1, rest.find(rest[begin], begin + 1) - begin - 1);
}

KrResult DecodeBytes(std::string_view aBytes, std::string& aText) {
  constexpr std::array<std::string_view, 3> kUtf8Names{"UTF-8", "UTF8", ""};
  constexpr std::array<std::string_view, 4> kLatin1Names{"ISO-8859-1", "ISO8859-1", "Latin1", "windows-1252"};
  constexpr std::size_t kLongestQuote = 40;
  const std::string_view encoding = Trim(FindDeclaredEncoding(aBytes));
  if (!FindWord(kUtf8Names, encoding) && !IsAscii(aBytes)) {
    if (!FindWord(kLatin1Names, encoding))
      return {KrResult::Code::BadData,
              "it is written in " + std::string(encoding.substr(0, kLongestQuote)) + "." + kExpected};
    aText = FromLatin1(aBytes);
    return {};
  }
  aText = aBytes;
  return {};
}

KrResult Decode(std::string_view aBytes, std::string& aText) {
  using namespace std::string_view_literals;
  if (aBytes.starts_with("\xFF\xFE\0\0"sv) || aBytes.starts_with("\0\0\xFE\xFF"sv) || aBytes.starts_with("<\0\0\0"sv) ||
      aBytes.starts_with("\0\0\0<"sv))
    return {KrResult::Code::BadData, std::string("it is written in UTF-32.") + kExpected};
  const bool hasLittleMark = aBytes.starts_with("\xFF\xFE");
  const bool hasBigMark = aBytes.starts_with("\xFE\xFF");
  if (hasLittleMark || hasBigMark || aBytes.starts_with("<\0"sv) || aBytes.starts_with("\0<"sv)) {
    aText = FromUtf16(aBytes.substr(hasLittleMark || hasBigMark ? 2 : 0), hasBigMark || aBytes.front() == '\0');
    return {};
  }
  return DecodeBytes(aBytes.substr(aBytes.starts_with("\xEF\xBB\xBF") ? 3 : 0), aText);
}

} // namespace

KrResult TakeAsUtf8(std::string_view aBytes, std::string& aText) {
  std::string text;
  if (KrResult result = Decode(aBytes, text); !result.IsOK())
    return result;
  // Cameras fill their memory up with zeros.
  text.erase(text.find_last_not_of('\0') + 1);
  const std::string_view trimmed = Trim(text);
  if (trimmed.empty())
    return {KrResult::Code::BadData, "it is empty."};
  if (!trimmed.starts_with('<'))
    return {KrResult::Code::BadData, "it is no XML, nor a ZIP archive with any in it."};
  aText = std::move(text);
  return {};
}

} // namespace krgenicam

#include "camerafile/filemap.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

namespace krcamerabridge {

namespace {

bool IsLetter(char aCharacter) {
  return (aCharacter >= 'a' && aCharacter <= 'z') || (aCharacter >= 'A' && aCharacter <= 'Z') || aCharacter == '_';
}

bool IsNameText(std::string_view aText) {
  return !aText.empty() && aText.size() <= kMostNameBytes && IsLetter(aText.front()) &&
         aText.find("__") == std::string_view::npos && std::ranges::all_of(aText, [](char aCharacter) {
           return IsLetter(aCharacter) || (aCharacter >= '0' && aCharacter <= '9');
         });
}

// The placeholders that may stand somewhere, for people.
std::string List(std::initializer_list<TemplatePart::Kind> aAllowed) {
  std::string list;
  for (const TemplatePart::Kind kind : aAllowed) {
    constexpr std::string_view kWords[] = {"",         "{value}", "{NameOfAFeature}", "{check}",
                                           "{length}", "{skip}",  "{text}",           "{code}"};
    list += (list.empty() ? "" : ", ") + std::string(kWords[static_cast<std::size_t>(kind)]);
  }
  return list.empty() ? "none" : list;
}

} // namespace

std::optional<std::int64_t> ParseWhole(std::string_view aText) {
  const bool isHex = aText.starts_with("0x") || aText.starts_with("0X");
  const std::string_view digits = isHex ? aText.substr(2) : aText;
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, isHex ? 16 : 10);
  if (error != std::errc() || end != digits.data() + digits.size() || (isHex && number < 0))
    return std::nullopt;
  return number;
}

void ReadVisibility(FileMap& aMap, std::string& aVisibility) {
  constexpr YamlWord kWords[] = {{"beginner", 0}, {"expert", 1}, {"guru", 2}, {"invisible", 3}};
  constexpr std::string_view kSpelt[] = {"Beginner", "Expert", "Guru", "Invisible"};
  std::size_t visibility = 0;
  aMap.TakeWord("visibility", kWords, visibility);
  aVisibility = kSpelt[visibility];
}

void FileMap::TakeLine(std::string_view aKey, std::string& aText) {
  KrString text;
  TakeText(aKey, kMostTextBytes, text);
  if (!text.IsEmpty())
    aText = text.ToUtf8();
}

bool FileMap::CheckName(const TextPlace& aPlace, std::string_view aName) {
  if (!IsNameText(aName)) {
    Report(aPlace, Quote(aName) +
                       " is no name; names have letters, digits and single underscores, begin with a "
                       "letter, and have " +
                       std::to_string(kMostNameBytes) + " characters at most");
    return false;
  }
  if (aName != "Root" && aName != "Device")
    return true;
  Report(aPlace, "the name " + Quote(aName) + " is used by every description already");
  return false;
}

bool FileMap::TakeName(std::string_view aKey, std::string& aName) {
  const YamlNode* const node = FindNeeded(aKey);
  if (!node || !IsScalar(*node, aKey) || !CheckName(node->place, node->text))
    return false;
  aName = node->text;
  return true;
}

std::optional<CommandTemplate> FileMap::TakeTemplate(std::string_view aKey, bool aIsBinary,
                                                     std::initializer_list<TemplatePart::Kind> aAllowed) {
  const YamlNode* node = nullptr;
  const std::string* const text = FindScalar(aKey, node);
  if (!text)
    return std::nullopt;
  const auto report = [&](const std::string& aReason) {
    Report(node->place, "\"" + std::string(aKey) + "\": " + aReason);
  };
  if (text->size() > kMostTemplateBytes) {
    report("the template has more than " + std::to_string(kMostTemplateBytes) + " bytes");
    return std::nullopt;
  }
  std::vector<std::string> problems;
  CommandTemplate read = ParseCommandTemplate(*text, aIsBinary, problems);
  for (const TemplatePart& part : read)
    if (part.kind != TemplatePart::Kind::Literal && std::ranges::find(aAllowed, part.kind) == aAllowed.end()) {
      const std::string name = part.kind == TemplatePart::Kind::Feature ? "{" + part.text + "} " : std::string();
      problems.push_back("the placeholder " + name + "cannot stand here; of placeholders there can be " +
                         List(aAllowed));
    } else if (!aIsBinary && IsBinary(part.format)) {
      problems.push_back("binary formats need the protocol's key \"data\" to be binary");
    }
  for (const std::string& problem : problems)
    report(problem);
  return problems.empty() ? std::optional(read) : std::nullopt;
}

std::optional<std::int64_t> FileMap::ReadWhole(const YamlNode& aNode, std::string_view aKey) {
  if (!IsScalar(aNode, aKey))
    return std::nullopt;
  const std::optional<std::int64_t> number = ParseWhole(aNode.text);
  if (!number)
    Report(aNode.place, "\"" + std::string(aKey) + "\" has to be a whole number, not " + Quote(aNode.text));
  return number;
}

std::optional<double> FileMap::ReadNumber(const YamlNode& aNode, std::string_view aKey) {
  if (!IsScalar(aNode, aKey))
    return std::nullopt;
  const std::string& text = aNode.text;
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc() && end == text.data() + text.size() && std::isfinite(number))
    return number;
  Report(aNode.place, "\"" + std::string(aKey) + "\" has to be a number, not " + Quote(text));
  return std::nullopt;
}

} // namespace krcamerabridge

#include "clprotocol/clidentifiers.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <functional>
#include <tuple>

namespace krcamerabridge {

namespace {

constexpr std::size_t kMostListed = 1000;
constexpr std::size_t kMostWords = 1000;
constexpr std::size_t kMostShortID = 1000;
constexpr std::size_t kMostNames = 5;
constexpr std::uint32_t kSchemaMajor = 1;
constexpr std::uint32_t kMostSchemaMinor = 1;

std::string_view CutAtZero(std::string_view aText) {
  return aText.substr(0, aText.find('\0'));
}

bool IsControl(char aCharacter) {
  return static_cast<unsigned char>(aCharacter) < 0x20 || aCharacter == 0x7F;
}

std::vector<std::string_view> Split(std::string_view aText, char aSeparator) {
  std::vector<std::string_view> parts;
  for (std::size_t at = 0; at <= aText.size();) {
    const std::size_t end = std::min(aText.find(aSeparator, at), aText.size());
    parts.push_back(aText.substr(at, end - at));
    at = end + 1;
  }
  return parts;
}

// "<word>.<number>.<number>…", with as many numbers as there are places.
template <std::size_t Count>
bool ParseVersion(std::string_view aText, std::string_view aWord, std::uint32_t (&aNumbers)[Count]) {
  const std::vector<std::string_view> parts = Split(aText, '.');
  if (parts.size() != Count + 1 || parts[0] != aWord)
    return false;
  for (std::size_t i = 0; i < Count; ++i) {
    const char* const end = parts[i + 1].data() + parts[i + 1].size();
    const auto [stop, error] = std::from_chars(parts[i + 1].data(), end, aNumbers[i]);
    if (error != std::errc() || stop != end)
      return false;
  }
  return true;
}

} // namespace

std::optional<CLFullID> ParseCLFullID(std::string_view aText) {
  // A directory may have the separator in its own name: the last part that is a library's name ends it.
  std::vector<std::string_view> parts = Split(aText, '#');
  for (std::size_t i = parts.size(); i-- > 1;) {
    if (!parts[i].starts_with("lib") || !parts[i].ends_with(".so") || i + 1 == parts.size())
      continue;
    const auto at = static_cast<std::size_t>(parts[i].data() - aText.data());
    CLFullID id{std::string(aText.substr(0, at - 1)), std::string(parts[i]),
                std::string(aText.substr(at + parts[i].size() + 1))};
    return IsCLShortID(id.shortID) ? std::optional(id) : std::nullopt;
  }
  return std::nullopt;
}

std::string MakeCLFullID(const CLFullID& aID) {
  return aID.directory + '#' + aID.fileName + '#' + aID.shortID;
}

bool IsCLShortID(std::string_view aText) {
  const std::vector<std::string_view> names = Split(aText, '#');
  return aText.size() <= kMostShortID && names.size() <= kMostNames && aText.find('@') == std::string_view::npos &&
         std::ranges::none_of(aText, IsControl) && std::ranges::none_of(names, &std::string_view::empty);
}

bool MatchesCLTemplate(std::string_view aShortID, std::string_view aTemplate) {
  return aShortID.starts_with(aTemplate) && (aShortID.size() == aTemplate.size() || aShortID[aTemplate.size()] == '#');
}

std::optional<CLXMLID> ParseCLXMLID(std::string_view aText) {
  const std::vector<std::string_view> parts = Split(aText, '@');
  std::uint32_t schema[2];
  CLXMLID id;
  if (parts.size() != 3 || !ParseVersion(parts[0], "SchemaVersion", schema) || !IsCLShortID(parts[1]) ||
      !ParseVersion(parts[2], "XMLVersion", id.versions))
    return std::nullopt;
  id.schemaMajor = schema[0];
  id.schemaMinor = schema[1];
  id.device = parts[1];
  return id;
}

std::vector<std::string> SelectCLXMLIDs(const std::vector<std::string>& aXMLIDs, std::string_view aShortID) {
  using Row = std::tuple<std::uint32_t, std::size_t, std::uint32_t, std::uint32_t, std::uint32_t, std::string>;
  std::vector<Row> rows;
  for (const std::string& text : aXMLIDs) {
    const std::optional<CLXMLID> id = ParseCLXMLID(text);
    if (!id || id->schemaMajor != kSchemaMajor || id->schemaMinor > kMostSchemaMinor ||
        !MatchesCLTemplate(aShortID, id->device))
      continue;
    rows.emplace_back(id->schemaMinor, id->device.size(), id->versions[0], id->versions[1], id->versions[2], text);
  }
  std::sort(rows.begin(), rows.end(), std::greater<Row>());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  std::vector<std::string> selected;
  for (const Row& row : rows)
    selected.push_back(std::get<std::string>(row));
  return selected;
}

std::vector<std::string> SplitCLList(std::string_view aText) {
  std::vector<std::string> texts;
  for (const std::string_view part : Split(CutAtZero(aText), '\t')) {
    if (!part.empty() && texts.size() < kMostListed)
      texts.emplace_back(part);
  }
  return texts;
}

std::string MakeCLWords(std::string_view aText) {
  std::string words(CutAtZero(aText).substr(0, kMostWords));
  std::ranges::replace_if(words, IsControl, ' ');
  while (words.ends_with(' '))
    words.pop_back();
  return words;
}

} // namespace krcamerabridge

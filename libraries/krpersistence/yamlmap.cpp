#include "krpersistence/yamlmap.h"

#include "krbase/utf8cut.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <numeric>

namespace krpersistence {

namespace {

constexpr std::size_t kMostQuotedBytes = 64;

std::string ToText(double aNumber) {
  std::array<char, 32> place;
  const auto end = std::to_chars(place.data(), place.data() + place.size(), aNumber).ptr;
  return {place.data(), end};
}

// How many letters have to be put in, left out or replaced.
std::size_t GetDistance(std::string_view aLeft, std::string_view aRight) {
  std::vector<std::size_t> row(aRight.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < aLeft.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < aRight.size(); ++j) {
      const std::size_t replaced = diagonal + (aLeft[i] == aRight[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({row[j + 1] + 1, row[j] + 1, replaced});
    }
  }
  return row.back();
}

// A question after the word that may have been meant; nothing where none comes near.
std::string GuessMeant(std::string_view aWord, const std::vector<std::string_view>& aKnown) {
  const std::string_view word = aWord.substr(0, kMostQuotedBytes);
  const auto measure = [word](std::string_view aOther) { return GetDistance(word, aOther); };
  const auto nearest = std::ranges::min_element(aKnown, {}, measure);
  // A slip of the finger changes a third of the letters at most.
  if (nearest == aKnown.end() || measure(*nearest) * 3 > std::max(word.size(), nearest->size()) + 1)
    return {};
  return "; is \"" + std::string(*nearest) + "\" meant?";
}

} // namespace

std::string YamlMap::Quote(std::string_view aText) {
  std::string quoted = "\"";
  for (const char character : krbase::CutUtf8(aText, kMostQuotedBytes))
    quoted += static_cast<unsigned char>(character) < ' ' || character == '\x7F' ? '?' : character;
  return quoted + (aText.size() > kMostQuotedBytes ? "…\"" : "\"");
}

std::optional<std::uint64_t> YamlMap::ParseNumber(std::string_view aText) {
  const bool isHex = aText.starts_with("0x") || aText.starts_with("0X");
  const std::string_view digits = isHex ? aText.substr(2) : aText;
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, isHex ? 16 : 10);
  if (error != std::errc() || end != digits.data() + digits.size())
    return std::nullopt;
  return number;
}

YamlMap::YamlMap(const YamlNode& aNode, std::string_view aWhat, TextProblems& aProblems)
    : mNode(aNode), mWhat(aWhat), mProblems(aProblems) {
  if (mNode.kind != YamlKind::Map && !(mNode.kind == YamlKind::Null && mNode.isCut))
    Report(mNode.place, std::string(mWhat) + " has to be keys with values");
}

const YamlNode* YamlMap::Find(std::string_view aKey) {
  mKnown.push_back(aKey);
  const auto key = std::ranges::find(mNode.keys, aKey, &std::pair<std::string, TextPlace>::first);
  return key == mNode.keys.end() ? nullptr : &mNode.items[static_cast<std::size_t>(key - mNode.keys.begin())];
}

const YamlNode* YamlMap::FindNeeded(std::string_view aKey) {
  const YamlNode* const node = Find(aKey);
  if (!node)
    ReportMissing(mNode.place, std::string(mWhat) + " needs the key \"" + std::string(aKey) + "\"");
  return node;
}

bool YamlMap::IsScalar(const YamlNode& aNode, std::string_view aKey) {
  if (aNode.kind == YamlKind::Scalar)
    return true;
  Report(aNode.place, "\"" + std::string(aKey) + "\" has to be one value");
  return false;
}

const std::string* YamlMap::FindScalar(std::string_view aKey, const YamlNode*& aNode) {
  aNode = Find(aKey);
  return aNode && IsScalar(*aNode, aKey) ? &aNode->text : nullptr;
}

void YamlMap::TakeText(std::string_view aKey, std::size_t aMostBytes, KrString& aText) {
  const YamlNode* node = nullptr;
  const std::string* const text = FindScalar(aKey, node);
  if (text && text->size() > aMostBytes)
    Report(node->place,
           "\"" + std::string(aKey) + "\" has more than " + std::to_string(aMostBytes) + " bytes: " + Quote(*text));
  else if (text)
    aText = *text;
}

void YamlMap::TakeFlag(std::string_view aKey, bool& aFlag) {
  const YamlNode* node = nullptr;
  const std::string* const text = FindScalar(aKey, node);
  if (text && *text != "true" && *text != "false")
    Report(node->place, "\"" + std::string(aKey) + "\" has to be true or false, not " + Quote(*text));
  else if (text)
    aFlag = *text == "true";
}

bool YamlMap::FindNumber(std::string_view aKey, std::uint64_t aLeast, std::uint64_t aMost, std::uint64_t& aNumber) {
  const YamlNode* const node = Find(aKey);
  return node && ReadNumber(*node, aKey, aLeast, aMost, aNumber);
}

bool YamlMap::ReadNumber(const YamlNode& aNode, std::string_view aKey, std::uint64_t aLeast, std::uint64_t aMost,
                         std::uint64_t& aNumber) {
  if (!IsScalar(aNode, aKey))
    return false;
  const std::optional<std::uint64_t> number = ParseNumber(aNode.text);
  if (!number || *number < aLeast || *number > aMost) {
    Report(aNode.place, "\"" + std::string(aKey) + "\" has to be a whole number from " + std::to_string(aLeast) +
                            " to " + std::to_string(aMost) + ", not " + Quote(aNode.text));
    return false;
  }
  aNumber = *number;
  return true;
}

void YamlMap::TakeReal(std::string_view aKey, double aLeast, double aMost, double& aNumber) {
  const YamlNode* node = nullptr;
  const std::string* const text = FindScalar(aKey, node);
  if (!text)
    return;
  double number = 0;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
  // Written so that a value that is no number is refused too.
  if (error == std::errc() && end == text->data() + text->size() && number >= aLeast && number <= aMost)
    aNumber = number;
  else
    Report(node->place, "\"" + std::string(aKey) + "\" has to be a number from " + ToText(aLeast) + " to " +
                            ToText(aMost) + ", not " + Quote(*text));
}

const YamlWord* YamlMap::ReadWord(const YamlNode& aNode, std::string_view aKey, std::span<const YamlWord> aWords) {
  if (!IsScalar(aNode, aKey))
    return nullptr;
  const auto row = std::ranges::find(aWords, aNode.text, &YamlWord::word);
  if (row != aWords.end())
    return &*row;
  std::string words;
  for (const YamlWord& word : aWords)
    words += (words.empty() ? "" : ", ") + std::string(word.word);
  Report(aNode.place, "\"" + std::string(aKey) + "\" has to be one of " + words + "; not " + Quote(aNode.text));
  return nullptr;
}

std::span<const YamlNode> YamlMap::TakeItems(std::string_view aKey, std::size_t aMost) {
  const YamlNode* const node = Find(aKey);
  if (!node)
    return {};
  if (node->kind != YamlKind::Sequence) {
    Report(node->place, "\"" + std::string(aKey) + "\" has to be a list");
    return {};
  }
  if (node->items.size() <= aMost)
    return node->items;
  Report(node->items[aMost].place, "\"" + std::string(aKey) + "\" has more than " + std::to_string(aMost) + " items");
  return {};
}

void YamlMap::Finish() {
  for (const auto& [key, place] : mNode.keys) {
    if (std::ranges::find(mKnown, key) != mKnown.end())
      continue;
    Report(place, std::string(mWhat) + " has no key " + Quote(key) + GuessMeant(key, mKnown));
  }
}

} // namespace krpersistence

#include "simulation/labfile/labmap.h"

#include "krsystem/ipv4address.h"
#include "krsystem/macaddress.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numeric>
#include <optional>

namespace krtransport {

namespace {

constexpr double kMostSeconds = 1e9;
constexpr double kNanosecondsPerSecond = 1e9;
constexpr std::size_t kMostQuotedBytes = 64;

// A value in a message, as short as can be told.
std::string Quote(std::string_view aText) {
  std::string quoted = "\"";
  for (const char character : aText.substr(0, kMostQuotedBytes))
    quoted += static_cast<unsigned char>(character) < ' ' || character == '\x7F' ? '?' : character;
  return quoted + (aText.size() > kMostQuotedBytes ? "…\"" : "\"");
}

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

std::string_view FindNearest(std::string_view aWord, const std::vector<std::string_view>& aKnown) {
  return *std::ranges::min_element(
      aKnown, {}, [aWord](std::string_view aOther) { return GetDistance(aWord.substr(0, kMostQuotedBytes), aOther); });
}

std::optional<std::uint64_t> ParseNumber(std::string_view aText) {
  const bool isHex = aText.starts_with("0x") || aText.starts_with("0X");
  const std::string_view digits = isHex ? aText.substr(2) : aText;
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, isHex ? 16 : 10);
  if (error != std::errc() || end != digits.data() + digits.size())
    return std::nullopt;
  return number;
}

} // namespace

LabMap::LabMap(const YamlNode& aNode, std::string_view aWhat, LabProblem& aProblem)
    : mNode(aNode), mWhat(aWhat), mProblem(aProblem) {
  if (mNode.kind != YamlKind::Map)
    Report(mNode.place, std::string(mWhat) + " has to be keys with values");
}

const YamlNode* LabMap::Find(std::string_view aKey) {
  mKnown.push_back(aKey);
  const auto key = std::ranges::find(mNode.keys, aKey, &std::pair<std::string, TextPlace>::first);
  return key == mNode.keys.end() ? nullptr : &mNode.items[static_cast<std::size_t>(key - mNode.keys.begin())];
}

const YamlNode* LabMap::FindNeeded(std::string_view aKey) {
  const YamlNode* const node = Find(aKey);
  if (!node)
    Report(mNode.place, std::string(mWhat) + " needs the key \"" + std::string(aKey) + "\"");
  return node;
}

bool LabMap::IsScalar(const YamlNode& aNode, std::string_view aKey) {
  if (aNode.kind == YamlKind::Scalar)
    return true;
  Report(aNode.place, "\"" + std::string(aKey) + "\" has to be one value");
  return false;
}

const std::string* LabMap::FindScalar(std::string_view aKey, const YamlNode*& aNode) {
  aNode = Find(aKey);
  return aNode && IsScalar(*aNode, aKey) ? &aNode->text : nullptr;
}

void LabMap::TakeText(std::string_view aKey, std::size_t aMostBytes, KrString& aText) {
  const YamlNode* node = nullptr;
  const std::string* const text = FindScalar(aKey, node);
  if (text && text->size() > aMostBytes)
    Report(node->place,
           "\"" + std::string(aKey) + "\" has more than " + std::to_string(aMostBytes) + " bytes: " + Quote(*text));
  else if (text)
    aText = *text;
}

void LabMap::TakeFlag(std::string_view aKey, bool& aFlag) {
  const YamlNode* node = nullptr;
  const std::string* const text = FindScalar(aKey, node);
  if (text && *text != "true" && *text != "false")
    Report(node->place, "\"" + std::string(aKey) + "\" has to be true or false, not " + Quote(*text));
  else if (text)
    aFlag = *text == "true";
}

bool LabMap::ReadNumber(std::string_view aKey, std::uint64_t aLeast, std::uint64_t aMost, std::uint64_t& aNumber) {
  const YamlNode* node = nullptr;
  const std::string* const text = FindScalar(aKey, node);
  if (!text)
    return false;
  const std::optional<std::uint64_t> number = ParseNumber(*text);
  if (!number || *number < aLeast || *number > aMost) {
    Report(node->place, "\"" + std::string(aKey) + "\" has to be a whole number from " + std::to_string(aLeast) +
                            " to " + std::to_string(aMost) + ", not " + Quote(*text));
    return false;
  }
  aNumber = *number;
  return true;
}

void LabMap::TakeReal(std::string_view aKey, double aLeast, double aMost, double& aNumber) {
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

void LabMap::TakeSeconds(std::string_view aKey, std::uint64_t& aNanoseconds) {
  double seconds = -1;
  TakeReal(aKey, 0, kMostSeconds, seconds);
  if (seconds >= 0)
    aNanoseconds = static_cast<std::uint64_t>(std::llround(seconds * kNanosecondsPerSecond));
}

bool LabMap::IsAddress(const YamlNode& aNode, std::string_view aKey) {
  if (!IsScalar(aNode, aKey))
    return false;
  if (krsystem::ParseIPv4(aNode.text))
    return true;
  Report(aNode.place,
         "\"" + std::string(aKey) + "\" has to be an address as in 192.168.1.20, not " + Quote(aNode.text));
  return false;
}

void LabMap::TakeAddress(std::string_view aKey, KrString& aAddress) {
  const YamlNode* const node = Find(aKey);
  if (node && IsAddress(*node, aKey))
    aAddress = node->text;
}

void LabMap::TakeMask(std::string_view aKey, KrString& aMask) {
  const YamlNode* const node = Find(aKey);
  if (!node || !IsAddress(*node, aKey))
    return;
  const std::uint32_t mask = krsystem::ParseIPv4(node->text).value_or(0);
  if (!krsystem::IsContiguousMask(mask))
    Report(node->place,
           "\"" + std::string(aKey) + "\" has to be a subnet mask, ones and then zeros, not " + Quote(node->text));
  else
    aMask = node->text;
}

void LabMap::TakeMAC(std::string_view aKey, KrString& aMAC) {
  const YamlNode* node = nullptr;
  const std::string* const text = FindScalar(aKey, node);
  if (!text)
    return;
  if (const auto address = krsystem::ParseMAC(*text))
    aMAC = krsystem::FormatMAC(*address);
  else
    Report(node->place,
           "\"" + std::string(aKey) + "\" has to be a MAC address as in 00:11:22:aa:bb:cc, not " + Quote(*text));
}

void LabMap::TakeVersion(std::string_view aKey, std::uint32_t aMost, std::uint32_t& aVersion) {
  const YamlNode* node = nullptr;
  const std::string* const text = FindScalar(aKey, node);
  if (!text)
    return;
  const std::size_t dot = std::min(text->find('.'), text->size());
  const std::optional<std::uint64_t> major = ParseNumber(text->substr(0, dot));
  const std::optional<std::uint64_t> minor =
      dot < text->size() ? ParseNumber(text->substr(dot + 1)) : std::optional<std::uint64_t>();
  if (major && minor && *major <= aMost && *minor <= aMost)
    aVersion = static_cast<std::uint32_t>(*major << 16 | *minor);
  else
    Report(node->place, "\"" + std::string(aKey) + "\" has to be a version as in 2.0, each part up to " +
                            std::to_string(aMost) + ", not " + Quote(*text));
}

const LabWord* LabMap::ReadWord(const YamlNode& aNode, std::string_view aKey, std::span<const LabWord> aWords) {
  if (!IsScalar(aNode, aKey))
    return nullptr;
  const auto row = std::ranges::find(aWords, aNode.text, &LabWord::word);
  if (row != aWords.end())
    return &*row;
  std::string words;
  for (const LabWord& word : aWords)
    words += (words.empty() ? "" : ", ") + std::string(word.word);
  Report(aNode.place, "\"" + std::string(aKey) + "\" has to be one of " + words + "; not " + Quote(aNode.text));
  return nullptr;
}

std::span<const YamlNode> LabMap::TakeItems(std::string_view aKey, std::size_t aMost) {
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

void LabMap::Finish() {
  for (const auto& [key, place] : mNode.keys) {
    if (std::ranges::find(mKnown, key) != mKnown.end())
      continue;
    Report(place, std::string(mWhat) + " has no key " + Quote(key) + "; is \"" + std::string(FindNearest(key, mKnown)) +
                      "\" meant?");
    return;
  }
}

} // namespace krtransport

#include "featurelookup.h"

#include "plaintext.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <numeric>
#include <optional>
#include <utility>

namespace krtool {

namespace {

constexpr std::size_t kMostNames = 5;
// Longer ones, of hostile descriptions, are compared with nothing.
constexpr std::size_t kLongestName = 256;

std::string ToLower(std::string aText) {
  std::transform(aText.begin(), aText.end(), aText.begin(),
                 [](char aByte) { return static_cast<char>(std::tolower(static_cast<unsigned char>(aByte))); });
  return aText;
}

// How many letters have to be changed, added or taken away to get from one text to the other (Levenshtein).
std::size_t GetDistance(const std::string& aLeft, const std::string& aRight) {
  std::vector<std::size_t> row(aRight.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < aLeft.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < aRight.size(); ++j) {
      const std::size_t changed = diagonal + (aLeft[i] == aRight[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

// How many letters two names of a length may differ by: two are exchanged easily, and in a name of three all count.
std::size_t GetMostChanges(std::size_t aLength) {
  constexpr std::size_t kShortName = 3;
  return aLength <= kShortName ? 1 : std::max<std::size_t>(2, aLength / 4);
}

// The smaller the nearer; nothing for names that have little to do with one another.
std::optional<std::size_t> GetRemoteness(const std::string& aLeft, const std::string& aRight) {
  const std::size_t distance = GetDistance(aLeft, aRight);
  if (distance <= GetMostChanges(std::min(aLeft.size(), aRight.size())))
    return distance;
  constexpr std::size_t kShortestPart = 3;
  const bool isPart = aLeft.size() >= kShortestPart && aRight.find(aLeft) != std::string::npos;
  return isPart ? std::optional(kLongestName + aRight.size()) : std::nullopt;
}

} // namespace

KrResult FindFeature(const KrGenParameterArray& aArray, const std::string& aName, KrGenParameter*& aFeature) {
  aFeature = aArray.Get(aName);
  if (aFeature != nullptr)
    return {};
  if (aArray.GetCategory(aName) != nullptr)
    return {KrResult::Code::NotFound, "\"" + aName + "\" is a category, which has no value."};
  std::vector<std::string> names;
  for (std::size_t i = 0; i < aArray.GetCount(); ++i)
    names.push_back(aArray[i]->GetName().ToUtf8());
  const std::vector<std::string> near = FindNearNames(names, aName);
  std::string text = "there is no feature \"" + aName + "\".";
  for (std::size_t i = 0; i < near.size(); ++i)
    text += (i == 0 ? " Is one of these meant: " : ", ") + krapps::MakeField(near[i]);
  return {KrResult::Code::NotFound, text + (near.empty() ? "" : "?")};
}

std::vector<std::string> FindNearNames(const std::vector<std::string>& aNames, const std::string& aName) {
  std::vector<std::pair<std::size_t, std::string>> found;
  for (const std::string& name : aNames) {
    if (std::max(name.size(), aName.size()) > kLongestName)
      continue;
    if (const auto remoteness = GetRemoteness(ToLower(aName), ToLower(name)))
      found.emplace_back(*remoteness, name);
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const auto& aLeft, const auto& aRight) { return aLeft.first < aRight.first; });
  std::vector<std::string> names;
  for (std::size_t i = 0; i < std::min(found.size(), kMostNames); ++i)
    names.push_back(found[i].second);
  return names;
}

} // namespace krtool

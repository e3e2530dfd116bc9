#include "featurewords.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>

namespace krtool {

namespace {

// By the numbers of the enumerations, which are fixed.
constexpr std::array<std::string_view, 8> kTypes = {"Integer", "Enumeration", "Boolean",  "String",
                                                    "Command", "Float",       "Register", "Other"};
constexpr std::array<std::string_view, 4> kVisibilities = {"Beginner", "Expert", "Guru", "Invisible"};
constexpr std::array<std::string_view, 5> kAccesses = {"NI", "NA", "WO", "RO", "RW"};

template <typename Words, typename Enumerator>
std::string_view GetWord(const Words& aWords, Enumerator aEnumerator) {
  const auto index = static_cast<std::size_t>(aEnumerator);
  return index < aWords.size() ? aWords[index] : std::string_view();
}

} // namespace

std::string_view GetTypeWord(KrGenType aType) {
  return GetWord(kTypes, aType);
}

std::string_view GetVisibilityWord(KrGenVisibility aVisibility) {
  return GetWord(kVisibilities, aVisibility);
}

std::string_view GetAccessWord(KrGenAccessMode aAccess) {
  return GetWord(kAccesses, aAccess);
}

std::optional<KrGenVisibility> FindVisibility(std::string_view aWord) {
  const auto word = std::find_if(kVisibilities.begin(), kVisibilities.end(),
                                 [aWord](std::string_view aOther) { return IsSameWord(aOther, aWord); });
  if (word == kVisibilities.end())
    return std::nullopt;
  return static_cast<KrGenVisibility>(word - kVisibilities.begin());
}

bool IsSameWord(std::string_view aLeft, std::string_view aRight) {
  return std::equal(aLeft.begin(), aLeft.end(), aRight.begin(), aRight.end(), [](char aOne, char aOther) {
    return std::tolower(static_cast<unsigned char>(aOne)) == std::tolower(static_cast<unsigned char>(aOther));
  });
}

} // namespace krtool

#include "logic/serial/hostportlist.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

namespace krgui {

namespace {

constexpr std::string_view kPrefix = "COM";
constexpr std::size_t kMostCharacters = 5;
constexpr std::uint32_t kMostNumber = 99;

bool HasPrefix(std::string_view aName) {
  return std::equal(kPrefix.begin(), kPrefix.end(), aName.begin(),
                    [](char aLetter, char aOther) { return aLetter == aOther || aLetter - 'A' + 'a' == aOther; });
}

} // namespace

std::vector<std::uint32_t> GetCOMPortNumbers(const KrStringList& aNames) {
  std::vector<std::uint32_t> numbers;
  for (const KrString& name : aNames) {
    const std::string_view text = name.ToUtf8();
    if (text.size() <= kPrefix.size() || text.size() > kMostCharacters || !HasPrefix(text))
      continue;
    std::uint32_t number = 0;
    if (std::from_chars(text.data() + kPrefix.size(), text.data() + text.size(), number).ec == std::errc())
      numbers.push_back(number);
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

std::uint32_t FindFreeCOMPortNumber(const std::set<std::uint32_t>& aTaken) {
  for (std::uint32_t number = 1; number <= kMostNumber; ++number) {
    if (!aTaken.contains(number))
      return number;
  }
  return 0;
}

KrString FormatCOMPort(std::uint32_t aNumber) {
  return std::string(kPrefix) + std::to_string(aNumber);
}

} // namespace krgui

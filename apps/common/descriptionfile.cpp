#include "descriptionfile.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace krapps {

namespace {

// Whatever the locale says of letters.
bool EqualsLetter(char aLeft, char aLowerCase) {
  return aLeft == aLowerCase || (aLowerCase >= 'a' && aLowerCase <= 'z' && aLeft == aLowerCase - 'a' + 'A');
}

bool EndsWith(const std::string& aName, std::string_view aLowerCase) {
  return aName.size() > aLowerCase.size() && std::equal(aName.end() - static_cast<std::ptrdiff_t>(aLowerCase.size()),
                                                        aName.end(), aLowerCase.begin(), EqualsLetter);
}

} // namespace

bool IsDescriptionFile(const std::string& aName) {
  constexpr std::array<std::string_view, 2> kExtensions = {".xml", ".zip"};
  if (std::any_of(kExtensions.begin(), kExtensions.end(),
                  [&](std::string_view aExtension) { return EndsWith(aName, aExtension); }))
    return true;
  std::error_code error;
  return std::filesystem::is_regular_file(aName, error);
}

} // namespace krapps

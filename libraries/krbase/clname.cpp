#include "clname.h"

#include "krbase/krclwire.h"
#include "krbase/utf8cut.h"

#include <algorithm>

namespace krbase {

namespace {

bool IsControl(char aCharacter) {
  const auto code = static_cast<unsigned char>(aCharacter);
  return code < ' ' || code == 0x7F;
}

} // namespace

std::string CleanCLName(std::string_view aName) {
  std::string name(aName);
  if (std::all_of(name.begin(), name.end(), [](char aOne) { return IsControl(aOne) || aOne == ' '; }))
    return {};
  // The sign parts an identifier from its manufacturer in lists of others; a control character parts the entries.
  std::replace_if(
      name.begin(), name.end(), [](char aOne) { return IsControl(aOne) || aOne == '#'; }, '-');
  name.resize(CutUtf8(name, kKrCLMostName).size());
  return name;
}

std::string MakeUniqueCLName(const std::string& aName, const std::vector<std::string>& aTaken) {
  std::string name = aName;
  for (std::size_t number = 2; std::find(aTaken.begin(), aTaken.end(), name) != aTaken.end(); ++number) {
    const std::string ending = " (" + std::to_string(number) + ")";
    name = std::string(CutUtf8(aName, kKrCLMostName - ending.size())) + ending;
  }
  return name;
}

} // namespace krbase

#include "clname.h"

#include "krbase/krclwire.h"

#include <algorithm>

namespace krbase {

namespace {

bool IsControl(char aCharacter) {
  const auto code = static_cast<unsigned char>(aCharacter);
  return code < ' ' || code == 0x7F;
}

// Cuts text to a number of bytes, not within a character.
void CutUtf8(std::string& aText, std::size_t aMost) {
  if (aText.size() <= aMost)
    return;
  std::size_t length = aMost;
  while (length > 0 && (static_cast<unsigned char>(aText[length]) & 0xC0) == 0x80)
    --length;
  aText.resize(length);
}

} // namespace

std::string CleanCLName(std::string_view aName) {
  std::string name(aName);
  if (std::all_of(name.begin(), name.end(), [](char aOne) { return IsControl(aOne) || aOne == ' '; }))
    return {};
  // The sign parts an identifier from its manufacturer in lists of others; a control character parts the entries.
  std::replace_if(
      name.begin(), name.end(), [](char aOne) { return IsControl(aOne) || aOne == '#'; }, '-');
  CutUtf8(name, kKrCLMostName);
  return name;
}

std::string MakeUniqueCLName(const std::string& aName, const std::vector<std::string>& aTaken) {
  std::string name = aName;
  for (std::size_t number = 2; std::find(aTaken.begin(), aTaken.end(), name) != aTaken.end(); ++number) {
    const std::string ending = " (" + std::to_string(number) + ")";
    name = aName;
    CutUtf8(name, kKrCLMostName - ending.size());
    name += ending;
  }
  return name;
}

} // namespace krbase

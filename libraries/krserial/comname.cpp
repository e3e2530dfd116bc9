#include "comname.h"

#include <charconv>
#include <string>

namespace krserial {

namespace {

bool StartsWithCom(std::string_view aName) {
  return aName.size() > 3 && (aName[0] == 'C' || aName[0] == 'c') && (aName[1] == 'O' || aName[1] == 'o') &&
         (aName[2] == 'M' || aName[2] == 'm');
}

} // namespace

std::optional<std::uint32_t> ParseComName(std::string_view aName) {
  if (!StartsWithCom(aName) || aName[3] == '0')
    return std::nullopt;
  std::uint32_t number = 0;
  const char* const end = aName.data() + aName.size();
  const auto [rest, error] = std::from_chars(aName.data() + 3, end, number);
  const bool isNumber = error == std::errc() && rest == end && number <= kMostComNumber;
  return isNumber ? std::optional(number) : std::nullopt;
}

KrString MakeComName(std::uint32_t aNumber) {
  return "COM" + std::to_string(aNumber);
}

KrResult MakeNoComName(const KrString& aName) {
  return {KrResult::Code::InvalidInput, "\"" + aName.ToUtf8() + "\" is no serial port's name; those are COM1 to COM" +
                                            std::to_string(kMostComNumber) + "."};
}

} // namespace krserial

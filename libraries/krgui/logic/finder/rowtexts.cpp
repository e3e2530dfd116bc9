#include "logic/finder/rowtexts.h"

#include <string>

namespace krgui {

KrString WriteHex(std::uint32_t aNumber, int aFewestDigits) {
  std::string digits;
  for (std::uint32_t rest = aNumber; rest != 0; rest >>= 4)
    digits.insert(digits.begin(), "0123456789ABCDEF"[rest & 0xF]);
  while (static_cast<int>(digits.size()) < aFewestDigits)
    digits.insert(digits.begin(), '0');
  return "0x" + KrString(std::move(digits));
}

KrString WriteVersion(std::uint32_t aVersion) {
  return KrString(std::to_string(aVersion >> 16) + "." + std::to_string(aVersion & 0xFFFF));
}

KrString WriteDecimal(std::int64_t aNumber) {
  return KrString(std::to_string(aNumber));
}

KrString WriteBool(bool aValue) {
  return aValue ? "True" : "False";
}

} // namespace krgui

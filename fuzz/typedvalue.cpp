// Whatever may be typed or pasted as a value or an address: what is read of it is read again when it is written
// plainly.

#include "krsystem/ipv4address.h"
#include "krsystem/macaddress.h"
#include "logic/browser/valueparsing.h"
#include "logic/browser/valuetext.h"
#include "require.h"

#include <cmath>
#include <string>
#include <string_view>

namespace {

void CheckIntegers(const KrString& aText) {
  if (const auto value = krgui::ParseInteger(aText, false))
    Require(krgui::ParseInteger(std::to_string(*value), false) == value);
  if (const auto value = krgui::ParseInteger(aText, true))
    Require(krgui::ParseInteger(krgui::FormatInteger(*value, true), true) == value);
}

void CheckAddresses(const KrString& aText) {
  const auto typed = krgui::ParseIPAddress(aText);
  if (typed)
    Require(krgui::ParseIPAddress(krsystem::FormatIPv4(*typed)) == typed);
  if (const auto strict = krsystem::ParseIPv4(aText))
    Require(krsystem::ParseIPv4(krsystem::FormatIPv4(*strict)) == strict);
  if (const auto adapter = krsystem::ParseMAC(aText))
    Require(krsystem::ParseMAC(krsystem::FormatMAC(*adapter)) == adapter);
}

void CheckFloat(const KrString& aText) {
  // What the grid shows has six digits: shown and read again it is the number that these digits are.
  const double value = krgui::ParseFloat(aText);
  const KrString shown = krgui::FormatFloat(value);
  const double again = krgui::ParseFloat(shown);
  Require(std::isnan(value) == std::isnan(again) && std::signbit(value) == std::signbit(again));
  Require(std::isinf(value) ? again == value : krgui::FormatFloat(again) == shown);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const KrString text(std::string_view(reinterpret_cast<const char*>(aData), aSize));
  CheckIntegers(text);
  CheckAddresses(text);
  CheckFloat(text);
  return 0;
}

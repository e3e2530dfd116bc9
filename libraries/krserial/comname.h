#pragma once
// The names of serial ports: "COM" and a number.

#include "krbase/krresult.h"
#include "krbase/krstring.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace krserial {

constexpr std::uint32_t kMostComNumber = 4096;

/// The number of "COM1" to "COM4096" in any case, without leading zeros; nothing for any other text.
std::optional<std::uint32_t> ParseComName(std::string_view aName);
/// The name of a number, as it is listed.
KrString MakeComName(std::uint32_t aNumber);
/// The result for a text that is no such name.
KrResult MakeNoComName(const KrString& aName);

} // namespace krserial

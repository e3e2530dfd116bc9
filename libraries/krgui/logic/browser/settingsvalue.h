#pragma once
// A settings file's values as what they mean: read as restoring reads them, but that a whole number may not be written
// with a point. What is done with them is left to those who compare and judge them.

#include <cstdint>
#include <optional>
#include <string_view>

namespace krgui {

/// Decimal, or all bits in hexadecimal behind "0x"; nothing for any other text.
std::optional<std::int64_t> ReadSettingInteger(std::string_view aText);
/// In any usual form, infinity and what is no number among it.
std::optional<double> ReadSettingFloat(std::string_view aText);
/// 0, 1, false and true in any case.
std::optional<bool> ReadSettingBoolean(std::string_view aText);
/// The digits of bytes, without "0x" before them.
std::string_view ReadSettingDigits(std::string_view aText);
/// Whether two texts are equal but for the case of their ASCII letters.
bool EqualsIgnoringCase(std::string_view aLeft, std::string_view aRight);

} // namespace krgui

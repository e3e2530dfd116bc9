#pragma once
// Any bytes as the value of an XML attribute and back. XML cannot hold every character, and changes some on reading;
// what it would lose is written as \xHH, one for each byte, and a backslash as two.

#include <optional>
#include <string>
#include <string_view>

namespace krpersistence {

/// The text as it stands between the double quotes of an attribute.
std::string EscapeText(std::string_view aText);

/// The bytes of an attribute's value as it stands between its quotes in the file, with references resolved. Nothing,
/// with the reason, for a value that no document may hold, or with a backslash that begins none of our escapes.
std::optional<std::string> UnescapeText(std::string_view aValue, std::string& aReason);

} // namespace krpersistence

#pragma once
// Values that a line of a settings file cannot hold as they are: with line ends, tabs, other control characters or
// blanks at an end. Only those are escaped, as readers that know no escapes take backslashes for what they are.

#include <string>
#include <string_view>

namespace krgenicam {

/// True for the ASCII characters that move a cursor or end a line rather than show.
constexpr bool IsControl(char aByte) {
  return static_cast<unsigned char>(aByte) < 0x20 || aByte == 0x7F;
}

/// Whether a line can begin with a name: not empty, no comment, without blanks and control characters.
bool IsSettingName(std::string_view aName);

/// Whether a value does not survive in a line.
bool NeedsEscape(std::string_view aValue);
/// The value in one line: \n, \r, \t, \\ and \xHH for other control characters and for blanks at the ends.
std::string EscapeSetting(std::string_view aValue);
/// Takes the escapes away again, in place; false, and an undefined value, for a backslash that begins none.
bool UnescapeSetting(std::string& aValue);

} // namespace krgenicam

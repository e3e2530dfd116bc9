#pragma once
// The transcript's text as a control can show it: whatever the line brings stands there as plain characters, one for
// each UTF-16 unit but the carriage returns, which show in nothing.

#include <cstddef>
#include <string>
#include <string_view>

namespace krgui {

/// Line feeds begin lines; control characters are dots in the middle of the line, which every font has; what has no
/// shape, turns the writing direction or is no character at all is shown as U+FFFD. Thread: any.
std::u16string MakeShownText(std::u16string_view aText);
/// How many units MakeShownText gives for a text. Thread: any.
std::size_t CountShownUnits(std::u16string_view aText);
/// The unit of the text that a place in its shown text stands for; the text's size for one behind the end. Thread: any.
std::size_t FindUnit(std::u16string_view aText, std::size_t aShown);
/// The text with line feeds alone at its line ends and without NUL, as other programs take it. Thread: any.
std::u16string MakeForeignText(std::u16string_view aText);

} // namespace krgui

#pragma once
// How the transcript shows bytes.

namespace krgui {

/// The "Display format" choices, by their control ids.
enum class DisplayFormat { ASCII = 1051, Hexadecimal = 1053, Hybrid = 1054 };

} // namespace krgui

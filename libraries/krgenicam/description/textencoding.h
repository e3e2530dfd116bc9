#pragma once
// A description's bytes as UTF-8 text, whatever they were written in. What the text says is left to the reader.

#include "krbase/krresult.h"

#include <string>
#include <string_view>

namespace krgenicam {

/// Takes UTF-8, UTF-16 of both byte orders, with and without byte order mark, and ISO-8859-1 (also when it calls itself
/// windows-1252) where the XML declaration says so; a text that is nothing but ASCII may call itself what it likes.
/// Zero bytes at the end are cut off. BadData, with a reason that is the end of a sentence, for what does not begin
/// with "<" then, and for other encodings.
KrResult TakeAsUtf8(std::string_view aBytes, std::string& aText);

} // namespace krgenicam

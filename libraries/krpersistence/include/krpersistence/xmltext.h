#pragma once
// A text as it stands in an XML document that is written as text. Texts that must come back byte for byte, as those of
// configuration files, are left to TextEscape.

#include "krbase/krexport.h"

#include <string>
#include <string_view>

namespace krpersistence {

/// The text as it stands in an element, or between the quotes of an attribute. What a document cannot hold or would not
/// keep becomes a blank each: control characters but line feeds, bytes that are no UTF-8, U+FFFE and U+FFFF. Any
/// thread.
KR_EXPORT std::string WriteXmlText(std::string_view aText);

} // namespace krpersistence

#pragma once
// The text of a failed operation as the serial windows tell it.

#include "krbase/krresult.h"
#include "krbase/krstring.h"

namespace krgui {

/// aText alone where the result is OK, else aText, a new line, the result's code string, ": " and its description,
/// without a source location at its front. Thread: any.
KrString FormatResultError(const KrString& aText, const KrResult& aResult);

} // namespace krgui

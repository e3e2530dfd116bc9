#pragma once
// The message box of a failed operation, as the serial windows show it.

#include "krbase/krresult.h"
#include "krbase/krstring.h"

namespace krgui {

class Wnd;

/// Shows FormatResultError's text under the window's own title and waits for its answer: a nested loop, after which the
/// window may have gone. Thread: user interface.
void ShowResultError(Wnd& aWindow, const KrString& aText, const KrResult& aResult);

} // namespace krgui

#pragma once
// The toolkit's application object, which windows need and which a host without a Qt loop does not have.

#include "krbase/krresult.h"

namespace krgui {

/// Sees that windows can be made on this thread: creates the application object when there is none, for the rest of the
/// process' life. Failed, with a description, when no display can be opened, when the host's application object is one
/// without widgets, or on another thread than its.
///
/// Thread: user interface. The first call without an application object makes its thread that one.
KrResult EnsureApplication();

} // namespace krgui

#pragma once
// The toolkit's application object for hosts that have none. Hosts with a QApplication need nothing of this.

#include "krbase/krresult.h"

/// Sees that windows can be shown: creates the application object when there is none, for the rest of the process'
/// life. The first show of a window does the same; calling it before tells a program early whether there is a display.
/// Failed, with a description, when no display can be opened, when the host's application object is one without
/// widgets, or on another thread than its.
///
/// Thread: user interface. The first call without an application object makes its thread that one.
KR_EXPORT KrResult KrEnsureApplication();

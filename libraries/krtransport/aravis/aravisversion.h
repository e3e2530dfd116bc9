#pragma once
// Which Aravis is loaded, for people.

#include "krbase/krstring.h"

namespace krtransport {

/// "Aravis" and its version. Any thread.
KrString GetAravisVersion();

} // namespace krtransport

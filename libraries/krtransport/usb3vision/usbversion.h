#pragma once
// Which libusb is loaded, for people.

#include "krbase/krstring.h"

namespace krtransport {

/// "libusb" and its version. Any thread.
KrString GetUsbVersion();

} // namespace krtransport

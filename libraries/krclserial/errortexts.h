#pragma once
// The words for the codes of the Camera Link serial functions.

#include "krclserial/clserkrg.h"

#include <string_view>

namespace krclserial {

/// The words for a code; empty for a code that is none.
std::string_view FindErrorText(CLINT32 aCode);

} // namespace krclserial

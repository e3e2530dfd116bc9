#pragma once
// Which way the lines of an image are written: through the cache or past it.

#include "linesource.h"

#include <cstdint>

namespace krbuffer {

/// The best way for all lines of an image in this many bytes. Any thread.
StoreKind ChooseStores(std::uint64_t aImageBytes);

/// Lets what this thread has written be seen by others that it tells of it. Called after a thread's last line.
void FinishStores(StoreKind aStores);

} // namespace krbuffer

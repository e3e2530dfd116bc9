#pragma once
// Whether anybody still reads what the program writes.

namespace krtool {

/// True when standard output is a pipe whose reader has gone, as head goes when it has seen enough. Any thread.
bool IsReaderGone();

} // namespace krtool

#pragma once
// From the call that closes a window, whose threads are busy, until the user interface is free again. What fails throws
// std::runtime_error.

namespace benchmarks {

/// The worst of some closings of each busy window, at moments all over a register time-out.
void MeasureClosings();

} // namespace benchmarks

#pragma once
// How long the finder's passes over its tree take, and what a device costs in memory, beside a tree that is filled with
// the same items plainly.

#include <cstddef>

namespace benchmarks {

/// Prints the figures for so many devices. The application must be there; false when something could not be measured.
bool MeasureFinderPasses(std::size_t aDevices);

} // namespace benchmarks

#pragma once
// What a line of bytes does: how many it moves in a second, and how long one of them takes.

#include "lines.h"

#include <cstddef>
#include <vector>

namespace benchmarks {

/// Moves so many bytes from one descriptor to another, and looks at each of them; megabytes a second.
double MeasureOneWay(int aFrom, int aTo, std::size_t aBytes);
/// The same in both directions at once; megabytes a second of both together.
double MeasureBothWays(const Line& aLine, std::size_t aBytes);
/// The times of single bytes to the device's end and back to the host's, in turn, in microseconds.
std::vector<double> MeasureLatencies(const Line& aLine, int aBytes);

} // namespace benchmarks

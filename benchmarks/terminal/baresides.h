#pragma once
// What can be had of a pseudo-terminal without a port and a window: the physical limit of both directions.

#include <cstddef>
#include <string>

namespace benchmarks {

/// Megabytes a second that a bare loop reads of a pseudo-terminal into which socat sends these bytes.
double MeasureBareReading(const std::string& aPath, const std::string& aBytes);
/// Megabytes a second that a bare loop writes, until socat has them all.
double MeasureBareWriting(const std::string& aPath, const std::string& aBytes);

} // namespace benchmarks

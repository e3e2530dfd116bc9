#pragma once
// From the making of a window to its first painting, on the built-in lab. What fails throws std::runtime_error.

#include <vector>

namespace benchmarks {

std::vector<const char*> GetOpeningNames();
/// The first opening of the process; false for a name that no window has.
bool MeasureFirstOpening(const char* aName);
/// The worst and the median of further ones, of all windows.
void MeasureOpenings();

} // namespace benchmarks

#pragma once
// How long the finder's passes over its tree take, and what a device costs in memory, beside a tree that is filled with
// the same items plainly.

#include "growth.h"

#include <cstddef>

namespace benchmarks {

/// The medians of the passes over so many devices, and the heap's growth.
struct FinderCosts {
  SizedCost refresh;
  SizedCost reports;
  SizedCost rebuild;
  SizedCost painted; ///< Rebuilt and painted.
  SizedCost memory;
};

/// Prints the figures for so many devices. The application must be there.
FinderCosts MeasureFinderPasses(std::size_t aDevices);
void PrintFinderGrowth(const FinderCosts& aFew, const FinderCosts& aMany);

} // namespace benchmarks

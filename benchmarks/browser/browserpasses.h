#pragma once
// What the feature browser's passes over its features cost, beside a plain tree view of the same features.

#include "growth.h"

#include <cstddef>

namespace benchmarks {

/// What grows with the features.
struct BrowserCosts {
  SizedCost build;
  SizedCost pass; ///< The first one over all values.
  SizedCost scrolling;
  SizedCost search;
  SizedCost memory;
};

/// Prints the figures for so many features. The application must be there.
BrowserCosts MeasureBrowserPasses(std::size_t aFeatures);
void PrintBrowserGrowth(const BrowserCosts& aFew, const BrowserCosts& aMany);

} // namespace benchmarks

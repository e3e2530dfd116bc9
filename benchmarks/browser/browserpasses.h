#pragma once
// What the feature browser's passes over its features cost, beside a plain tree view of the same features.

#include <cstddef>

namespace benchmarks {

/// What grows with the features; in milliseconds.
struct BrowserTimes {
  double buildMs = 0;
  double passMs = 0;
  double searchMs = 0;
};

/// Prints the figures for so many features. The application must be there; false when something could not be measured.
bool MeasureBrowserPasses(std::size_t aFeatures, BrowserTimes& aTimes);

} // namespace benchmarks

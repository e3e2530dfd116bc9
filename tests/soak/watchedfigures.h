#pragma once
// What a soak holds of the system's means, sampled again and again, and what it may grow by. How growth is told is left
// to FigureSeries.

#include "growth.h"

#include <functional>
#include <string>
#include <vector>

/// Thread: one.
class WatchedFigures {
public:
  /// Watches this process, and an X server besides.
  explicit WatchedFigures(const std::string& aServerProcess);

  /// Measures all of them, and prints them in a line that begins with a text.
  void Sample(const std::string& aBegin);
  /// Prints a line for each; whether all are flat.
  bool AreFlat() const;
  /// The threads of the process that there are now.
  static std::ptrdiff_t CountThreads();

private:
  struct Figure {
    const char* name;
    double allowed; ///< Growth from the middle third of the samples to the last.
    std::function<double()> measure;
    FigureSeries samples = {};
  };
  std::vector<Figure> mFigures;
};

#pragma once
// How a benchmark prints what it measured, one line a figure:
//   figure=<name> value=<number> unit=<unit> [peer=<name> peer_value=<number> ratio=<number>]
//     [limit=<name> limit_value=<number> limit_ratio=<number>]
// A peer is something else that did the same in the same run, a limit is a constant. The ratios are those of the value;
// what is beside nothing at all, as the frames that were lost may be, has none.

#include "failing.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>

namespace benchmarks {

struct Peer {
  std::string name;
  double value = 0;
};

struct Limit {
  std::string name;
  double value = 0;
};

struct Figure {
  std::string name;
  double value = 0;
  std::string unit;
  std::optional<Peer> peer = {};
  std::optional<Limit> limit = {};
};

/// Whether all of it are numbers that a measurement can have: times, rates and counts are not negative.
inline bool IsMeasured(const Figure& aFigure) {
  const auto isNumber = [](double aValue) { return std::isfinite(aValue) && aValue >= 0; };
  return isNumber(aFigure.value) && (!aFigure.peer || isNumber(aFigure.peer->value)) &&
         (!aFigure.limit || isNumber(aFigure.limit->value));
}

/// To four digits or to whole numbers, in which a person reads large ones more easily than in powers of ten.
inline std::string FormatNumber(double aValue) {
  constexpr double kWhole = 1000;
  std::array<char, 400> text{};
  if (aValue < kWhole)
    std::snprintf(text.data(), text.size(), "%.4g", aValue);
  else
    std::snprintf(text.data(), text.size(), "%.0f", aValue);
  return text.data();
}

inline std::string FormatLine(const Figure& aFigure) {
  std::string line = "figure=" + aFigure.name + " value=" + FormatNumber(aFigure.value) + " unit=" + aFigure.unit;
  const auto addBeside = [&](const std::string& aKind, const char* aRatio, const std::string& aName, double aValue) {
    line += " " + aKind + "=" + aName + " " + aKind + "_value=" + FormatNumber(aValue);
    if (aValue != 0)
      line += " " + std::string(aRatio) + "=" + FormatNumber(aFigure.value / aValue);
  };
  if (aFigure.peer)
    addBeside("peer", "ratio", aFigure.peer->name, aFigure.peer->value);
  if (aFigure.limit)
    addBeside("limit", "limit_ratio", aFigure.limit->name, aFigure.limit->value);
  return line;
}

/// Ends the program where a figure was not measured.
inline void PrintFigure(const Figure& aFigure) {
  if (!IsMeasured(aFigure))
    Fail(aFigure.name + " has no value.");
  std::printf("%s\n", FormatLine(aFigure).c_str());
  std::fflush(stdout);
}

} // namespace benchmarks

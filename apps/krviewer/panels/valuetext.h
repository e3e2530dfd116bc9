#pragma once
// Numbers of pixels and plots as text, whatever the locale says of them.

#include <string>
#include <vector>

namespace krviewer {

/// A value with all digits where it is whole, with six significant ones otherwise.
std::string FormatValue(double aValue);

/// Percent so that a part that is there never reads as none, nor all but a little as all: "0 %", "< 0.1 %", "12.3 %".
std::string FormatPercent(double aPercent);

/// Where a scale from aLow to aHigh has lines: at most so many multiples of 1, 2, 2.5 or 5 times a power of ten,
/// rising. None where high is not above low or aMost is below 1.
std::vector<double> ChooseTicks(double aLow, double aHigh, int aMost);

/// A tick with as many digits behind the point as ticks this far apart need.
std::string FormatTick(double aTick, double aDistance);

} // namespace krviewer

#pragma once
// News of the watch as lines for people or as JSON objects, one a line.

#include "watchbook.h"

#include <chrono>
#include <string>

namespace krtool {

/// When news came.
using NewsTime = std::chrono::system_clock::time_point;

/// Cells parted by two blanks: date and time in local time, what happened, then those of a listing's line; behind the
/// line of what changed stands what it was.
std::string FormatNews(const News& aNews, NewsTime aTime);
/// {"time":"…","event":"…","device":{…}} or with "interface"; "changes" for what changed. The time is UTC.
std::string FormatNewsJson(const News& aNews, NewsTime aTime);

} // namespace krtool

#pragma once
// Frame intervals as a table that a spreadsheet reads.

#include "panels/frameintervals.h"

#include <string>

namespace krviewer {

/// Lines of comma-separated values under a line of names, one for each step in which something happened: the step's
/// begin in seconds before the end of the view, its frames, the least, mean and greatest interval by arrival and by the
/// camera's time stamps in milliseconds (empty where there is none), and its losses. Any thread.
std::string FormatIntervalTable(const IntervalView& aView);

/// Writes the table to a file that is there as a whole or not at all. As KrAtomicFile.
KrResult SaveIntervalTable(const KrString& aFileName, const IntervalView& aView);

} // namespace krviewer

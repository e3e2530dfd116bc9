#pragma once
// Reads a lab from a file (docs/simulation.md). Nothing in a file is trusted; a mistake is told with its place.

#include "krbase/krresult.h"
#include "simulation/lab.h"

#include <string_view>

namespace krtransport {

/// Reads a file. As KrReadWholeFile where it cannot be read, but BadData for one that is too long; BadData, with
/// "file:line:column: reason", where it is no good. aLab is set on success only. Any thread.
KrResult ReadLab(const KrString& aFile, Lab& aLab);
/// The same of a text; aName stands for the file in messages.
KrResult ParseLab(std::string_view aText, const KrString& aName, Lab& aLab);

} // namespace krtransport

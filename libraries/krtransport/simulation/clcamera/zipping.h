#pragma once
// A ZIP archive in memory, as cameras store their descriptions.

#include <string>

namespace krtransport {

/// An archive of one deflated file; the same bytes each time. Throws std::runtime_error where the archive cannot be
/// made, for want of memory. Any thread.
std::string MakeZip(const std::string& aName, const std::string& aContent);

} // namespace krtransport

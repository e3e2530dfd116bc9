#pragma once
// Whether an argument of a program is the file of a camera description or names a device. Reading it is left to
// KrGenDescription.

#include <string>

namespace krapps {

/// True when it ends in .xml or .zip in any case, or a file of the name is there. Any thread.
bool IsDescriptionFile(const std::string& aName);

} // namespace krapps

#pragma once
// Which libraries write pictures, for people.

#include <string>
#include <vector>

namespace krapps {

/// Their names with the versions that are loaded. Any thread.
std::vector<std::string> GetPictureLibraries();

} // namespace krapps

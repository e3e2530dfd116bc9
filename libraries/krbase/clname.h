#pragma once
// What a port's name becomes before it is published for Camera Link programs. Where names are kept is left to others.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace krbase {

/// The name as an identifier may be; empty for a name of blanks and control characters alone.
std::string CleanCLName(std::string_view aName);

/// The name itself, or with the first number behind it that nobody has.
std::string MakeUniqueCLName(const std::string& aName, const std::vector<std::string>& aTaken);

} // namespace krbase

#pragma once
// Where the user's configuration is kept.

#include <filesystem>

namespace krserial {

/// Empty for a process without a home (XDG Base Directory Specification, 0.8). Thread: any.
std::filesystem::path GetConfigurationDirectory();

} // namespace krserial

#pragma once
// What a user has set of this host's side of a camera: parameters of its stream and of the connection, by name. Where
// they are kept between two runs is left to the viewer's settings.

#include "krgenicam/krgensettings.h"

#include <array>
#include <cstddef>
#include <vector>

namespace krviewer {

/// Which of the parameters.
enum class HostSide { Stream, Connection };
inline constexpr std::size_t kHostSides = 2;

/// Of each side those that are not as the host begins with, by their names alone: none of them has selectors.
using HostSettings = std::array<std::vector<KrGenSetting>, kHostSides>;

} // namespace krviewer

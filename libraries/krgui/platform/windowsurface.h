#pragma once
// Which drawing surface gets pixels into a window of an X server, found by trying them in their order. No toolkit is
// needed for it: what the window belongs to is left to others.

#include "platform/drawingsurface.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace krgui {

/// The best surface for a window, from aBest on. aDisplayName as FindX11DisplayName gives it. Null when there is no
/// such window, when its pixels are laid out otherwise than ours, or when the server does not answer until aEnd. (A
/// server that stops just when it is asked for the connection makes that wait: ask it something else before.)
std::unique_ptr<DrawingSurface> MakeWindowSurface(const std::string& aDisplayName, std::uint32_t aWindow,
                                                  SurfaceKind aBest, std::chrono::steady_clock::time_point aEnd);

} // namespace krgui

#include "platform/windowsurface.h"

#include "platform/brokenpipeguard.h"
#include "platform/plainsurface.h"
#include "platform/sharedsurface.h"
#include "platform/windowconnection.h"

#include <utility>

namespace krgui {

std::unique_ptr<DrawingSurface> MakeWindowSurface(const std::string& aDisplayName, std::uint32_t aWindow,
                                                  SurfaceKind aBest, std::chrono::steady_clock::time_point aEnd) {
  const BrokenPipeGuard guard;
  for (const SurfaceKind kind : {SurfaceKind::SharedDescriptor, SurfaceKind::SharedSystemV, SurfaceKind::PlainPut}) {
    if (kind < aBest) {
      continue;
    }
    // One that was refused something is of no use for the next: each kind has a connection of its own.
    auto connection = WindowConnection::Open(aDisplayName, aWindow, aEnd);
    if (!connection) {
      return nullptr;
    }
    std::unique_ptr<DrawingSurface> surface;
    if (kind == SurfaceKind::PlainPut) {
      surface = PlainSurface::Make(std::move(connection));
    } else {
      surface = SharedSurface::Make(std::move(connection), kind, aEnd);
    }
    if (surface) {
      return surface;
    }
  }
  return nullptr;
}

} // namespace krgui

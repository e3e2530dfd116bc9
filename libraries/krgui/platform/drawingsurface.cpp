#include "platform/drawingsurface.h"

#include "platform/picturesurface.h"
#include "platform/sharedsurface.h"
#include "platform/windowsurface.h"
#include "platform/x11connection.h"

#include <QWidget>

#include <xcb/xcb.h>

namespace krgui {

std::unique_ptr<DrawingSurface> MakeDrawingSurface(QWidget& aWidget, SurfaceKind aBest) {
  constexpr std::chrono::seconds kLimit(3);
  const auto end = std::chrono::steady_clock::now() + kLimit;
  std::unique_ptr<DrawingSurface> surface;
  xcb_connection_t* toolkit = GetX11Connection();
  if (toolkit != nullptr && aBest != SurfaceKind::Invalidation) {
    const auto window = static_cast<std::uint32_t>(aWidget.winId());
    // The server answers, and has heard of the window, before another connection names it.
    if (AwaitReply<xcb_get_input_focus_reply_t>(toolkit, xcb_get_input_focus(toolkit), end)) {
      surface = MakeWindowSurface(FindX11DisplayName(), window, aBest, end);
    }
  }
  return surface ? std::move(surface) : std::make_unique<PictureSurface>();
}

bool CanDrawNatively() {
  return GetX11Connection() != nullptr;
}

} // namespace krgui

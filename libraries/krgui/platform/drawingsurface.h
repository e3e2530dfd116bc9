#pragma once
// Where a display's pixels go from any thread: memory to draw a frame in, and its way onto the screen. On X11 that is a
// connection of its own with two buffers that the server reads; elsewhere the window is invalidated and paints a
// picture. What is drawn is left to the owner.

#include "logic/display/framerenderer.h"
#include "logic/pixelrect.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

class QImage;
class QWidget;

namespace krgui {

/// How a surface reaches the screen, in the order in which they are tried.
enum class SurfaceKind {
  SharedDescriptor, ///< MIT-SHM 1.2: memory shared by file descriptor.
  SharedSystemV,    ///< MIT-SHM: a System V segment.
  PlainPut,         ///< Pixels through the connection, by a thread of the surface's own.
  Invalidation,     ///< A picture that the widget paints.
};

/// Thread: any, one at a time (the owner's display lock); made and destroyed on the user-interface thread.
/// No operation waits for the server longer than its limit.
class DrawingSurface {
public:
  DrawingSurface() = default;
  virtual ~DrawingSurface() = default;
  DrawingSurface(const DrawingSurface&) = delete;
  DrawingSurface& operator=(const DrawingSurface&) = delete;

  virtual SurfaceKind GetKind() const = 0;

  /// Memory for the next frame.
  struct Target {
    Canvas canvas;
    /// Numbers the buffers' contents: a buffer that still holds what was drawn into it says so by the number that the
    /// owner gave it by Present; 0 for one with unknown content.
    std::uint64_t contentTag = 0;
  };
  /// Memory of this size, waiting up to aLimit until the server has read one of the buffers; with 0 it looks only. Of a
  /// size above what the screen can name (32767) the canvas is the upper left part. Nothing for an empty size, and
  /// where none became free, no memory is to be had or the window is gone.
  virtual std::optional<Target> Begin(std::int32_t aWidth, std::int32_t aHeight, std::chrono::milliseconds aLimit) = 0;
  /// Sends a part of the memory last begun to the screen; the whole of it stays as drawn. aContentTag as above. False
  /// where it cannot get there.
  virtual bool Present(const PixelRect& aRect, std::uint64_t aContentTag) = 0;
  /// True for good when nothing gets to the screen any more: the window or the connection is gone, or the server
  /// refused something. Begin then gives nothing; the owner makes another surface if its window still lives. Any
  /// thread, at any time.
  virtual bool IsLost() const { return false; }
  /// For the invalidation kind: the picture last presented, with the size it was begun with. Null for all others.
  virtual const QImage* GetPicture() const { return nullptr; }
};

/// The best surface for a widget, from aBest on. On X11 the widget is native, paints on screen and has no paint engine:
/// CanDrawNatively tells before the widget is made. Checks with the server once that pixels can get there, for a few
/// seconds at most. The surface draws into the native window that the widget has now: when that changes
/// (QEvent::WinIdChange) the owner makes another. Never null. User-interface thread.
std::unique_ptr<DrawingSurface> MakeDrawingSurface(QWidget& aWidget, SurfaceKind aBest = SurfaceKind::SharedDescriptor);

/// True where widgets can be drawn into from any thread: on X11. User-interface thread.
bool CanDrawNatively();

} // namespace krgui

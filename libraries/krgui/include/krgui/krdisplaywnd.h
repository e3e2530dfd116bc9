#pragma once
// A window that shows camera images. How images are acquired is left to KrStream, what is drawn over them to the
// application.

#include "krbuffer/krbuffer.h"
#include "krbuffer/krbufferconverter.h"
#include "krgui/krdisplaymapping.h"
#include "krgui/krdisplaystatistics.h"
#include "krgui/krwnd.h"

#include <memory>
#include <optional>

namespace krgui {
class DisplayWnd;
}

/// Shows images live, at the camera's pace: on X11 each image of unchanged size is drawn by the thread that gives it,
/// whatever the user-interface thread does. The user zooms by the keys + and -, the wheel and the context menu, about
/// the middle of the view, and pans by the scroll bars (Tab leads to them) and by "Center Here" in that menu.
///
/// Escape, Enter and the close box close a window that is no child; a child closes with its widget (QWidget::close).
///
/// Thread: Display, DisplayHeld, Clear, SetTextOverlay, GetTextOverlay, GetConverter, GetInternalBuffer and the
/// statistics from any thread; everything else on the user-interface thread. Display, Clear and painting are done one
/// after the other, in the order of the calls. A screen that takes no pixels, or takes them slowly, costs frames: of a
/// call of Display, the time spent waiting for it is never more than a tenth of a second, what other threads before it
/// wait included.
/// Ownership: the image given to Display may be freed when Display returns.
///
///     KrDisplayWnd window;
///     KrResult shown = window.ShowModeless(0);
///     while (stream.Retrieve(buffer, 1000).IsOK()) { // on the acquisition thread
///       KrResult displayed = window.Display(*buffer, false);
///       KrResult released = stream.Release(buffer);
///     }
class KR_EXPORT KrDisplayWnd : public KrWnd {
public:
  KrDisplayWnd();
  ~KrDisplayWnd() override;

  /// Shows a buffer's image. InvalidInput for a payload that is no image or an image without width, height or size,
  /// Failed for a pixel type that cannot be shown; what was shown before then stays. aFlag is accepted and not used.
  /// An image with fewer bytes than it says, or that there is no memory for, gives OK: it counts as dropped, the first
  /// of several is logged, and the image before stays or, where that had another size, a black one is shown.
  KrResult Display(const KrBuffer& aBuffer, bool aFlag);
  /// Shows an image; as above. Width and height are taken modulo 65536 when they are checked. The image's operations
  /// are called in this call alone, once each and without a lock held. What they throw becomes Failed.
  KrResult Display(const IKrImage* aImage, bool aFlag);
  /// Shows a buffer's image without keeping a copy of it: the window holds the buffer until another image, Clear or its
  /// own end takes its place, and nobody changes its bytes meanwhile. The cheapest way for large images: what is not
  /// shown is neither copied nor converted. Results as above, InvalidInput for null. The last owner's deleter may run
  /// on any thread that calls Display, DisplayHeld, Clear or GetInternalBuffer, without a lock held.
  KrResult DisplayHeld(std::shared_ptr<const KrBuffer> aBuffer, bool aFlag);
  /// Drops image and overlay text: the window shows its background. It does not wait for a conversion that
  /// GetInternalBuffer does on another thread.
  void Clear();

  /// The window's own converter, for settings of the conversion.
  KrBufferConverter& GetConverter();
  /// The whole image that the window shows, or would if it were open, as BGRa8, converted with the settings that the
  /// converter had when it was displayed; empty without one. The conversion is done by this call where it is not done
  /// yet; when Clear comes meanwhile, its result is dropped and the buffer is empty. The buffer changes by this call
  /// and by Clear alone, so that it may be read while another thread displays.
  KrBuffer& GetInternalBuffer();

  /// The colour around the image and of the empty window; each 0 to 255, mid grey until it is set. Shown at the next
  /// drawing. Always OK.
  KrResult SetBackgroundColor(unsigned char aRed, unsigned char aGreen, unsigned char aBlue);

  /// Sets the text drawn over the images that come from now on; line breaks are honoured. What there is no room for in
  /// the window is not looked at.
  void SetTextOverlay(const KrString& aText);
  /// The text last set, whether or not an image has come since.
  KrString GetTextOverlay() const;
  /// The text's colour; each 0 to 255, green until it is set.
  void SetTextOverlayColor(unsigned char aRed, unsigned char aGreen, unsigned char aBlue);
  /// The colour in use.
  void GetTextOverlayColor(unsigned char& aRed, unsigned char& aGreen, unsigned char& aBlue) const;
  /// The text's size in pixels: above 0 the height of a line, below 0 that of the characters, 0 a default. 20 until it
  /// is set. Always OK.
  KrResult SetTextOverlaySize(int aSize);
  /// The size in use.
  int GetTextOverlaySize() const;
  /// The text's distance from the image's left and top edge in pixels; 10 until it is set.
  void SetTextOverlayOffsetX(unsigned int aOffset);
  /// The same from the top edge.
  void SetTextOverlayOffsetY(unsigned int aOffset);
  /// The offset in use.
  int GetTextOverlayOffsetX() const;
  /// The offset in use.
  int GetTextOverlayOffsetY() const;

  /// One pixel of the image on one pixel of the screen, scaled screens included.
  void Zoom1_1();
  /// The whole image, as large as the window allows. So begins every window object; closing and reopening it changes no
  /// zoom.
  void ZoomFit();
  /// Enlarges by 1.5.
  void ZoomIn();
  /// Reduces by 1.5; an image that then fits the window is fitted to it.
  void ZoomOut();

  /// The native handle of the horizontal scroll bar; 0 while the window is not open.
  HWND GetHScrollHandle() const;
  /// The same of the vertical bar.
  HWND GetVScrollHandle() const;
  /// The scroll bar's position, in zoomed pixels.
  int GetHScrollPos() const;
  /// The same of the vertical bar.
  int GetVScrollPos() const;
  /// The scroll bar's range: from 0 to the scrollable extent and the page, in zoomed pixels.
  void GetHScrollRange(int& aMin, int& aMax) const;
  /// The same of the vertical bar.
  void GetVScrollRange(int& aMin, int& aMax) const;
  /// Moves the bar's thumb alone: the image follows at the next use of the bar. OutOfRange for a position outside the
  /// range.
  KrResult SetHScrollPos(int aPosition);
  /// The same of the vertical bar.
  KrResult SetVScrollPos(int aPosition);

  /// What became of the frames given to the window, since its making or the last reset.
  KrDisplayStatistics GetStatistics() const;
  /// Counts from 0 on again.
  void ResetStatistics();

  /// The pixel of the image under the mouse cursor; nothing while the cursor or the image is elsewhere.
  std::optional<KrDisplayPixel> GetCursorPixel() const;
  /// Where the image is shown in the window's widget, as of the last painting; nothing without an image, or while the
  /// window is not open.
  std::optional<KrDisplayMapping> GetMapping() const;
  /// Has a line about that pixel drawn in the window's lower left corner; off until it is set.
  void SetCursorLineEnabled(bool aEnabled);
  /// Whether the line is drawn.
  bool IsCursorLineEnabled() const;

private:
  krgui::DisplayWnd& GetWnd() const;
};

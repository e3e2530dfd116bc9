#pragma once
// A window that shows camera images. How images are acquired is left to KrStream, what is drawn over them to the
// application.

#include "krbuffer/krbuffer.h"
#include "krbuffer/krbufferconverter.h"
#include "krgui/krwnd.h"

namespace krgui {
class DisplayWnd;
}

/// Shows images live, fitted into the window, with an optional text in the image's top left corner.
///
/// Escape, Enter and the close box close a window that is no child.
///
/// Thread: Display, Clear, SetTextOverlay and GetTextOverlay from any thread; everything else on the user-interface thread.
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

  /// Shows a buffer's image. InvalidInput for a payload that is no image or an image without width, height or size, Failed
  /// for a pixel type that cannot be shown; what was shown before then stays. aFlag is accepted and not used.
  KrResult Display(const KrBuffer& aBuffer, bool aFlag);
  /// Shows an image; as above. Width and height are taken modulo 65536 when they are checked. The image's operations are
  /// called with the display lock held: an image of an own class must not call this window from them. What they throw
  /// becomes Failed.
  KrResult Display(const IKrImage* aImage, bool aFlag);
  /// Drops image and overlay text: the window shows its background.
  void Clear();

  /// The window's own converter, for settings of the conversion.
  KrBufferConverter& GetConverter();
  /// The image last shown, as BGRa8. Not while another thread calls Display.
  KrBuffer& GetInternalBuffer();

  /// The colour around the image and of the empty window; each 0 to 255, mid grey until it is set. Shown at the next
  /// drawing. Always OK.
  KrResult SetBackgroundColor(unsigned char aRed, unsigned char aGreen, unsigned char aBlue);

  /// Sets the text drawn over the images that come from now on; line breaks are honoured.
  void SetTextOverlay(const KrString& aText);
  /// The text last set, whether or not an image has come since.
  KrString GetTextOverlay() const;
  /// The text's colour; each 0 to 255, green until it is set.
  void SetTextOverlayColor(unsigned char aRed, unsigned char aGreen, unsigned char aBlue);
  void GetTextOverlayColor(unsigned char& aRed, unsigned char& aGreen, unsigned char& aBlue) const;
  /// The text's size in pixels: above 0 the height of a line, below 0 that of the characters, 0 a default. 20 until it is
  /// set. Always OK.
  KrResult SetTextOverlaySize(int aSize);
  int GetTextOverlaySize() const;
  /// The text's distance from the image's left and top edge in pixels; 10 until it is set.
  void SetTextOverlayOffsetX(unsigned int aOffset);
  void SetTextOverlayOffsetY(unsigned int aOffset);
  int GetTextOverlayOffsetX() const;
  int GetTextOverlayOffsetY() const;

private:
  krgui::DisplayWnd& GetWnd() const;
};

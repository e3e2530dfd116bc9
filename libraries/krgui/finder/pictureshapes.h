#pragma once
// The shapes of which the finder's pictures are made, on a grid of 16 by 16 units. Which picture has which shapes is
// decided by the strip.

#include <QColor>

class QPainter;

namespace krgui {

/// What a picture shows.
enum class PictureShape {
  GEVCamera,
  TolvanCamera,
  U3VCamera,
  Adapter,
  USB,
  USBHub,
  Network,
  Computer,
};

/// What is the matter with it, at the lower right.
enum class PictureBadge {
  None,
  Good,
  Warning,
  Error,
  Question,
  Waiting,
};

/// How a picture stands on its background.
enum class PictureTone {
  Normal,   ///< Colours of middle brightness, which stand out from light and from dark backgrounds.
  Faded,    ///< Grey that lets the background through: what cannot be chosen.
  Selected, ///< In the colours of selected text.
};

void PaintPictureShape(QPainter& aPainter, PictureShape aShape, PictureTone aTone);
/// Paints a badge over a shape, with a gap around it.
void PaintPictureBadge(QPainter& aPainter, PictureBadge aBadge);
/// Paints the mark of an installed driver, at the upper left.
void PaintDriverMark(QPainter& aPainter);
/// Paints the mark of a value that is doubtful over the whole grid.
void PaintErrorMark(QPainter& aPainter);

} // namespace krgui

#pragma once
// Where the controls of a dialog go: dialog units to pixels, following a resize, making room for texts. What a control
// is and how much room its text needs is told by whoever has the toolkit.

#include "logic/pixelrect.h"

#include <cstdint>
#include <vector>

namespace krgui {

/// How a control follows a resize of its dialog; the flags add up. Without any it stays at the top left.
enum Follow : std::uint8_t {
  kStay = 0,
  kMoveRight = 1, ///< Keeps its distance from the right edge.
  kMoveDown = 2,
  kGrowRight = 4, ///< Its right edge keeps its distance from the dialog's.
  kGrowDown = 8,
};

/// A rectangle in dialog units.
struct UnitRect {
  int x, y, width, height;
};

/// A size in dialog units.
struct UnitSize {
  int width = 0;
  int height = 0;
};

struct PixelSize {
  int width = 0;
  int height = 0;
  friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

/// A font as dialog units need it, in pixels: the average advance over the 52 letters and the height of a line.
struct DialogFont {
  double averageWidth = 0;
  double height = 0;
};

/// Pixels per dialog unit.
struct DialogUnit {
  double horizontal = 0;
  double vertical = 0;
};

/// The smaller of the font's average width / 4 and the maximum width / the template's, and of the font's height / 8 and
/// the maximum height / the template's: whatever the font, the template fits into the maximum. A template without
/// extent is bound by the font alone.
DialogUnit ComputeDialogUnit(const DialogFont& aFont, const UnitSize& aTemplate, const PixelSize& aMaximum);

/// Whether one control is drawn around the other, as a group box is around what it groups.
constexpr bool Encloses(const UnitRect& aOuter, const UnitRect& aInner) {
  const bool isLarger = aOuter.width > aInner.width || aOuter.height > aInner.height;
  return isLarger && aOuter.x <= aInner.x && aOuter.y <= aInner.y &&
         aOuter.x + aOuter.width >= aInner.x + aInner.width && aOuter.y + aOuter.height >= aInner.y + aInner.height;
}

struct LayoutControl {
  UnitRect rect = {};
  std::uint8_t follow = kStay; ///< Flags of Follow.
  PixelSize textSize;          ///< The room that its text needs; 0 where it has none or none that could be clipped.
  bool isKeptWhole = false;    ///< The dialog is never so narrow that it would be clipped or overlap another such one.
};

/// The layout of one dialog at one font.
///
/// A control whose text needs more room than its rectangle gives grows right into free space, up to its neighbour, the
/// frame around it or the dialog's edge; and likewise down, then up.
class DialogLayout {
public:
  DialogLayout(const UnitSize& aTemplate, const DialogUnit& aUnit, std::vector<LayoutControl> aControls);

  /// The template's size in pixels.
  PixelSize GetTemplateSize() const;
  /// The rectangle of each control, in the order given, in a dialog of this size. Starts from the template's rectangles
  /// every time, so that no resize leaves a trace. No rectangle has a negative size.
  std::vector<PixelRect> Arrange(const PixelSize& aDialog) const;
  /// The least width from aLeast to aMost that keeps whole what is to be, as far as aMost does; aLeast where no width
  /// does.
  int FindLeastWidth(int aLeast, int aMost) const;

private:
  PixelRect ToPixels(const UnitRect& aRect) const;
  bool KeepsWhole(int aWidth, const std::vector<PixelRect>& aWidest) const;

  UnitSize mTemplate;
  DialogUnit mUnit;
  std::vector<LayoutControl> mControls;
};

} // namespace krgui

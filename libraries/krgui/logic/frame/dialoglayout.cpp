#include "logic/frame/dialoglayout.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

namespace krgui {

namespace {

constexpr double kUnitsPerAverageWidth = 4;
constexpr double kUnitsPerFontHeight = 8;

/// The sides of a rectangle along the direction of growth and across it.
struct Axis {
  int PixelRect::*begin;
  int PixelRect::*end;
  int PixelRect::*acrossBegin;
  int PixelRect::*acrossEnd;
  /// What a grown text keeps from its neighbour. Lines of text have space of their own above and below; words have none
  /// beside them.
  int gap;
};

constexpr Axis kHorizontal = {&PixelRect::left, &PixelRect::right, &PixelRect::top, &PixelRect::bottom, 2};
constexpr Axis kVertical = {&PixelRect::top, &PixelRect::bottom, &PixelRect::left, &PixelRect::right, 0};

int ToPixel(double aUnits, double aUnit) {
  return static_cast<int>(std::lround(aUnits * aUnit));
}

double LimitUnit(double aFontUnit, int aTemplate, int aMaximum) {
  return aTemplate > 0 ? std::min(aFontUnit, static_cast<double>(aMaximum) / aTemplate) : aFontUnit;
}

PixelRect FollowDialog(const PixelRect& aRect, std::uint8_t aFollow, int aRightwards, int aDownwards) {
  PixelRect rect = aRect;
  if ((aFollow & kMoveRight) != 0) {
    rect.left += aRightwards;
  }
  if ((aFollow & (kMoveRight | kGrowRight)) != 0) {
    rect.right += aRightwards;
  }
  if ((aFollow & kMoveDown) != 0) {
    rect.top += aDownwards;
  }
  if ((aFollow & (kMoveDown | kGrowDown)) != 0) {
    rect.bottom += aDownwards;
  }
  rect.right = std::max(rect.right, rect.left);
  rect.bottom = std::max(rect.bottom, rect.top);
  return rect;
}

bool Overlap(const PixelRect& aOne, const PixelRect& aOther) {
  return aOne.left < aOther.right && aOther.left < aOne.right && aOne.top < aOther.bottom && aOther.top < aOne.bottom;
}

/// Gives one control after the other the room that its text needs, as far as there is some.
class TextGrowth {
public:
  TextGrowth(const std::vector<LayoutControl>& aControls, std::vector<PixelRect>& aRects)
      : mControls(aControls), mRects(aRects) {}

  void GrowForwards(const Axis& aAxis, int PixelSize::*aExtent, int aDialogEnd) {
    for (std::size_t index = 0; index < mRects.size(); ++index) {
      PixelRect& rect = mRects[index];
      const int wanted = rect.*aAxis.begin + mControls[index].textSize.*aExtent;
      rect.*aAxis.end = std::max(rect.*aAxis.end, std::min(wanted, FindEndOfSpace(index, aAxis, aDialogEnd)));
    }
  }

  void GrowBackwards(const Axis& aAxis, int PixelSize::*aExtent) {
    for (std::size_t index = 0; index < mRects.size(); ++index) {
      PixelRect& rect = mRects[index];
      const int wanted = rect.*aAxis.end - mControls[index].textSize.*aExtent;
      rect.*aAxis.begin = std::min(rect.*aAxis.begin, std::max(wanted, FindBeginOfSpace(index, aAxis)));
    }
  }

private:
  /// How far a control can extend before it meets another that lies beside it on this axis.
  int FindEndOfSpace(std::size_t aIndex, const Axis& aAxis, int aDialogEnd) const {
    int end = aDialogEnd;
    for (std::size_t other = 0; other < mRects.size(); ++other) {
      if (other == aIndex || !AreLevel(aIndex, other, aAxis)) {
        continue;
      }
      if (Encloses(mControls[other].rect, mControls[aIndex].rect)) {
        end = std::min(end, mRects[other].*aAxis.end - aAxis.gap);
      } else if (mRects[other].*aAxis.begin >= mRects[aIndex].*aAxis.end) {
        end = std::min(end, mRects[other].*aAxis.begin - aAxis.gap);
      }
    }
    return end;
  }

  int FindBeginOfSpace(std::size_t aIndex, const Axis& aAxis) const {
    int begin = 0;
    for (std::size_t other = 0; other < mRects.size(); ++other) {
      if (other == aIndex || !AreLevel(aIndex, other, aAxis)) {
        continue;
      }
      if (Encloses(mControls[other].rect, mControls[aIndex].rect)) {
        begin = std::max(begin, mRects[other].*aAxis.begin + aAxis.gap);
      } else if (mRects[other].*aAxis.end <= mRects[aIndex].*aAxis.begin) {
        begin = std::max(begin, mRects[other].*aAxis.end + aAxis.gap);
      }
    }
    return begin;
  }

  bool AreLevel(std::size_t aOne, std::size_t aOther, const Axis& aAxis) const {
    return mRects[aOne].*aAxis.acrossBegin < mRects[aOther].*aAxis.acrossEnd &&
           mRects[aOther].*aAxis.acrossBegin < mRects[aOne].*aAxis.acrossEnd;
  }

  const std::vector<LayoutControl>& mControls;
  std::vector<PixelRect>& mRects;
};

} // namespace

DialogUnit ComputeDialogUnit(const DialogFont& aFont, const UnitSize& aTemplate, const PixelSize& aMaximum) {
  return {LimitUnit(aFont.averageWidth / kUnitsPerAverageWidth, aTemplate.width, aMaximum.width),
          LimitUnit(aFont.height / kUnitsPerFontHeight, aTemplate.height, aMaximum.height)};
}

DialogLayout::DialogLayout(const UnitSize& aTemplate, const DialogUnit& aUnit, std::vector<LayoutControl> aControls)
    : mTemplate(aTemplate), mUnit(aUnit), mControls(std::move(aControls)) {}

PixelSize DialogLayout::GetTemplateSize() const {
  return {ToPixel(mTemplate.width, mUnit.horizontal), ToPixel(mTemplate.height, mUnit.vertical)};
}

std::vector<PixelRect> DialogLayout::Arrange(const PixelSize& aDialog) const {
  const PixelSize templateSize = GetTemplateSize();
  std::vector<PixelRect> rects;
  rects.reserve(mControls.size());
  for (const LayoutControl& control : mControls) {
    rects.push_back(FollowDialog(ToPixels(control.rect), control.follow, aDialog.width - templateSize.width,
                                 aDialog.height - templateSize.height));
  }
  TextGrowth growth(mControls, rects);
  growth.GrowForwards(kHorizontal, &PixelSize::width, aDialog.width);
  growth.GrowForwards(kVertical, &PixelSize::height, aDialog.height);
  growth.GrowBackwards(kVertical, &PixelSize::height);
  return rects;
}

/// By how it is in the widest dialog.
bool DialogLayout::KeepsWhole(int aWidth, const std::vector<PixelRect>& aWidest) const {
  const std::vector<PixelRect> rects = Arrange({aWidth, GetTemplateSize().height});
  std::vector<PixelRect> kept;
  for (std::size_t index = 0; index < rects.size(); ++index) {
    const PixelRect& rect = rects[index];
    if (!mControls[index].isKeptWhole) {
      continue;
    }
    const auto overlaps = [&rect](const PixelRect& aOther) { return Overlap(rect, aOther); };
    const int needed = std::min(mControls[index].textSize.width, aWidest[index].GetWidth());
    if (rect.GetWidth() < needed || rect.left < 0 || rect.right > aWidth || std::ranges::any_of(kept, overlaps)) {
      return false;
    }
    kept.push_back(rect);
  }
  return true;
}

/// What a wider dialog clips, a narrower one clips too.
int DialogLayout::FindLeastWidth(int aLeast, int aMost) const {
  const std::vector<PixelRect> widest = Arrange({aMost, GetTemplateSize().height});
  if (!KeepsWhole(aMost, widest)) {
    return aLeast;
  }
  int clipping = aLeast - 1;
  int whole = aMost;
  while (clipping + 1 < whole) {
    const int middle = std::midpoint(clipping, whole);
    (KeepsWhole(middle, widest) ? whole : clipping) = middle;
  }
  return whole;
}

/// Edges are rounded, not extents: controls that touch in the template touch in pixels.
PixelRect DialogLayout::ToPixels(const UnitRect& aRect) const {
  return {ToPixel(aRect.x, mUnit.horizontal), ToPixel(aRect.y, mUnit.vertical),
          ToPixel(aRect.x + aRect.width, mUnit.horizontal), ToPixel(aRect.y + aRect.height, mUnit.vertical)};
}

} // namespace krgui

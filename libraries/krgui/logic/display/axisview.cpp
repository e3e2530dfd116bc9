#include "logic/display/axisview.h"

#include "krbase/krlogger.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace krgui {

namespace {

constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();

/// In what the axes differ.
struct AxisRules {
  double rangeRounding;    ///< Added before the range's integer part is taken.
  double positionRounding; ///< Added before the position's integer part is taken.
  bool isSourceReversed;   ///< The source counts from the end at which the bar has its maximum.
  const char* beginText;   ///< Texts of the warnings.
  const char* endText;
  const char* sizeText;
  const char* invalidText;
  const char* invalidEndText;
};
constexpr AxisRules kHorizontalRules{0.0,
                                     0.0,
                                     false,
                                     "Coordinates out of bounds left=",
                                     "Coordinates out of bounds right=",
                                     " mBufferWidth=",
                                     "Invalid rect: left=",
                                     ", right="};
constexpr AxisRules kVerticalRules{0.5,
                                   0.5,
                                   true,
                                   "Coordinates out of bounds top=",
                                   "Coordinates out of bounds bottom=",
                                   " mBufferHeight=",
                                   "Invalid rect. top=",
                                   " bottom="};

constexpr const AxisRules& GetRules(ViewAxis aAxis) {
  return aAxis == ViewAxis::Horizontal ? kHorizontalRules : kVerticalRules;
}

/// The integer part, cut to what 32 bits hold; 0 of what is no number.
std::int32_t Truncate(double aValue) {
  if (std::isnan(aValue))
    return 0;
  return static_cast<std::int32_t>(
      std::clamp(aValue, static_cast<double>(AxisView::kNoPosition), static_cast<double>(kGreatest)));
}

/// The integer part as a position: none of what is not finite, as without a range to divide by.
std::int32_t TruncatePosition(double aValue) {
  return std::isfinite(aValue) ? Truncate(aValue) : AxisView::kNoPosition;
}

void Warn(const std::string& aText) {
  KrLogger("KrGUILib").Log(KrLogLevel::Warning, {"DisplayWnd::UpdateViewArea", "displaywnd", 0}, aText);
}

/// Centres the zoomed image in the view.
AxisView::Interval Centre(const AxisView::Sizes& aSizes) {
  const double middle = aSizes.view * 0.5;
  const double half = aSizes.image * aSizes.factor * 0.5;
  return {Truncate(middle - half + 0.5), Truncate(middle + half + 0.5)};
}

} // namespace

double AxisView::Sizes::GetZoomedSize() const {
  return std::trunc(image * factor + 0.5);
}

AxisView::Layout AxisView::Update(const Sizes& aSizes, bool aIsRangeDue) {
  Layout layout;
  if (aSizes.GetZoomedSize() <= aSizes.view) {
    layout.isBarHidden = true;
    layout.destination = Centre(aSizes);
    layout.source = {0, static_cast<std::int32_t>(aSizes.image)};
  } else {
    layout.isBarPlaced = aIsRangeDue;
    if (aIsRangeDue)
      UpdateRange(aSizes);
    layout.destination = {0, aSizes.view};
    layout.source = CheckSource(ComputeSource(aSizes), aSizes.image);
  }
  mIsBarShown = aSizes.IsBarNeeded();
  return layout;
}

void AxisView::UpdateRange(const Sizes& aSizes) {
  const AxisRules& rules = GetRules(mAxis);
  const std::int32_t page = aSizes.view / 4;
  // The bar's greatest value is the range's and the page: it, too, must be one of 32 bits.
  mRangeMaximum = std::min(Truncate(aSizes.image * aSizes.factor - aSizes.view + rules.rangeRounding),
                           kGreatest - std::max(page, 0));
  const bool hadPosition = mPosition != kNoPosition;
  mPosition = TruncatePosition(mRangeMaximum * mRelativePosition + rules.positionRounding);
  mBar.SetRange(mRangeMaximum, page, mPosition);
  if ((!mIsBarShown && aSizes.IsBarNeeded()) || !hadPosition || mPosition == kNoPosition)
    MoveTo(mRangeMaximum / 2);
}

AxisView::Interval AxisView::ComputeSource(const Sizes& aSizes) const {
  const double range = mRangeMaximum;
  // Away from the image's middle, in zoomed pixels. Of an odd range the halves are not the same on both axes.
  const double offset = GetRules(mAxis).isSourceReversed ? range - std::trunc(range * 0.5) - mPosition
                                                         : std::trunc(mPosition - range * 0.5);
  const double halfImage = aSizes.image * aSizes.factor * 0.5;
  const double halfView = aSizes.view * 0.5;
  return {Truncate((halfImage - halfView + offset) / aSizes.factor + 0.5),
          Truncate((halfView + halfImage + offset) / aSizes.factor + 0.5)};
}

AxisView::Interval AxisView::CheckSource(Interval aSource, std::uint32_t aImageSize) const {
  const AxisRules& rules = GetRules(mAxis);
  const auto size = static_cast<std::int32_t>(aImageSize);
  Interval source = aSource;
  if (source.begin < 0 || source.begin > size) {
    Warn(rules.beginText + std::to_string(source.begin));
    source.begin = 0;
  }
  if (source.end < 0 || source.end > size) {
    Warn(rules.endText + std::to_string(source.end) + rules.sizeText + std::to_string(size));
    source.end = size;
  }
  if (source.end < source.begin) {
    Warn(rules.invalidText + std::to_string(source.begin) + rules.invalidEndText + std::to_string(source.end));
    source = {0, size};
  }
  return source;
}

void AxisView::Scroll(ScrollCode aCode, std::int32_t aThumbPosition) {
  if (mRangeMaximum != 0)
    MoveTo(ComputePosition(aCode, aThumbPosition));
}

std::int32_t AxisView::ComputePosition(ScrollCode aCode, std::int32_t aThumbPosition) const {
  const std::int32_t position = mBar.GetPosition();
  switch (aCode) {
  case ScrollCode::LineLess:
    return position > 0 ? position - 1 : position;
  case ScrollCode::LineMore:
    return position < mRangeMaximum ? position + 1 : position;
  case ScrollCode::PageLess:
    return position - mBar.GetPage();
  case ScrollCode::PageMore: {
    // As numbers without a sign, which a page from the greatest position does not leave.
    const auto next = static_cast<std::uint32_t>(position) + static_cast<std::uint32_t>(mBar.GetPage());
    return static_cast<std::int32_t>(std::min(next, static_cast<std::uint32_t>(mRangeMaximum)));
  }
  case ScrollCode::ThumbPosition:
  case ScrollCode::ThumbTrack:
    return aThumbPosition;
  case ScrollCode::Least:
    return 0;
  case ScrollCode::Most:
    return mRangeMaximum;
  }
  return position;
}

void AxisView::CentreOn(std::int32_t aClientPoint, std::int32_t aClientSize) {
  const std::int64_t position = std::int64_t{aClientPoint} - aClientSize / 2 + mBar.GetPosition();
  MoveTo(Truncate(static_cast<double>(position)));
}

bool AxisView::SetBarPosition(std::int32_t aPosition) {
  if (!mBar.Contains(aPosition))
    return false;
  mBar.SetPosition(aPosition);
  return true;
}

void AxisView::MoveTo(std::int32_t aPosition) {
  mBar.SetPosition(aPosition);
  mPosition = aPosition;
  mRelativePosition = static_cast<double>(aPosition) / mRangeMaximum;
}

} // namespace krgui

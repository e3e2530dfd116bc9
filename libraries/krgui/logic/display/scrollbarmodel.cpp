#include "logic/display/scrollbarmodel.h"

#include <algorithm>
#include <limits>

namespace krgui {

void ScrollBarModel::SetRange(std::int32_t aMaximum, std::int32_t aPage, std::int32_t aPosition) {
  mPage = std::max(aPage, 0);
  mMaximum = std::clamp(aMaximum, 0, std::numeric_limits<std::int32_t>::max() - mPage) + mPage;
  SetPosition(aPosition);
}

void ScrollBarModel::SetPosition(std::int32_t aPosition) {
  mPosition = std::clamp(aPosition, GetMinimum(), GetMaximum());
}

} // namespace krgui

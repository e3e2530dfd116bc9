#include "page/sidewidth.h"

#include <algorithm>
#include <cstdlib>

namespace krviewer {

namespace {

/// Of a page, for the panels of one side.
constexpr double kMostShare = 0.5;
/// So much the window may make of a width that it is given.
constexpr int kSlack = 8;

} // namespace

void SideWidth::NoteMove(int aSide) {
  mLast = aSide;
  if (std::abs(aSide - mGiven) > kSlack)
    mWanted = 0;
}

void SideWidth::NoteRestored(int aSide, int aUseful) {
  mLast = aSide;
  mGiven = aSide;
  mWanted = aSide < aUseful ? aUseful : 0;
}

std::optional<int> SideWidth::Fit(int aSide, int aPageBefore, int aPage) {
  const int had = aPage < aPageBefore ? std::max(aSide, mLast) : aSide;
  mLast = aSide;
  if (mWanted > 0 && std::abs(had - mGiven) > kSlack)
    mWanted = 0;
  if (mWanted == 0 && aPage >= aPageBefore)
    return {}; // What the user has made wider than usual stays so.
  const int wanted = mWanted > 0 ? mWanted : had;
  mGiven = std::min(wanted, static_cast<int>(aPage * kMostShare));
  mWanted = mGiven < wanted ? wanted : 0;
  mLast = mGiven;
  return mGiven == aSide ? std::nullopt : std::optional(mGiven);
}

} // namespace krviewer

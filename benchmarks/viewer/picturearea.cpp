#include "picturearea.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <thread>
#include <utility>
#include <vector>

namespace benchmarks {

namespace {

constexpr int kLooks = 12;
constexpr std::chrono::milliseconds kPause{40};

// Which pixels of an area have changed since the first look.
class Changes {
public:
  explicit Changes(const ScreenArea& aArea)
      : mWidth(static_cast<std::size_t>(aArea.width)), mHeight(static_cast<std::size_t>(aArea.height)),
        mHasChanged(mWidth * mHeight) {}

  void Add(const std::vector<std::uint32_t>& aPixels) {
    if (mFirst.empty())
      mFirst = aPixels;
    for (std::size_t i = 0; i < mHasChanged.size(); ++i)
      mHasChanged[i] |= mFirst[i] != aPixels[i] ? 1U : 0U;
  }
  std::vector<std::size_t> CountByColumn() const {
    std::vector<std::size_t> counts(mWidth);
    for (std::size_t i = 0; i < mHasChanged.size(); ++i)
      counts[i % mWidth] += mHasChanged[i];
    return counts;
  }
  std::vector<std::size_t> CountByLine() const {
    std::vector<std::size_t> counts(mHeight);
    for (std::size_t i = 0; i < mHasChanged.size(); ++i)
      counts[i / mWidth] += mHasChanged[i];
    return counts;
  }

private:
  std::size_t mWidth;
  std::size_t mHeight;
  std::vector<std::uint8_t> mHasChanged;
  std::vector<std::uint32_t> mFirst;
};

// First and last of those that changed at least half as much as the one that changed most; the least counts are noise.
std::pair<int, int> FindSpan(std::span<const std::size_t> aCounts) {
  const std::size_t enough = std::max<std::size_t>(std::ranges::max(aCounts) / 2, 1);
  const auto isEnough = [&](std::size_t aCount) { return aCount >= enough; };
  const auto first = std::ranges::find_if(aCounts, isEnough);
  if (first == aCounts.end())
    return {0, -1};
  const auto last = std::find_if(aCounts.rbegin(), aCounts.rend(), isEnough);
  return {static_cast<int>(first - aCounts.begin()), static_cast<int>(aCounts.rend() - last) - 1};
}

} // namespace

std::optional<ScreenArea> FindPicture(const DisplayScreen& aScreen, const ScreenArea& aWithin) {
  Changes changes(aWithin);
  for (int look = 0; look < kLooks; ++look) {
    changes.Add(aScreen.ReadPixels({static_cast<std::int16_t>(aWithin.x), static_cast<std::int16_t>(aWithin.y)},
                                   static_cast<std::uint16_t>(aWithin.width),
                                   static_cast<std::uint16_t>(aWithin.height)));
    std::this_thread::sleep_for(kPause);
  }
  const auto [left, right] = FindSpan(changes.CountByColumn());
  const auto [top, bottom] = FindSpan(changes.CountByLine());
  if (right <= left || bottom <= top)
    return std::nullopt;
  return ScreenArea{aWithin.x + left, aWithin.y + top, right - left + 1, bottom - top + 1};
}

} // namespace benchmarks

#include "logic/serial/bridgelayout.h"

#include "logic/frame/rowstack.h"

#include <algorithm>
#include <cstddef>

namespace krgui {

namespace {

constexpr int kGap = 6;     ///< Between controls of one row.
constexpr int kRateGap = 2; ///< Between two rates, at least.
constexpr int kInset = 6;   ///< From a group's sides to what is in it.
constexpr int kBottom = 3;  ///< From its last row to its frame, besides the space.
constexpr int kSide = 4;    ///< From the window's sides to the groups.
/// Between two rows there is one space, between two groups, and at the window's top and bottom, there are two: so many
/// at least, and so many for the groups to stand below each other.
constexpr int kLeastSpace = 0;
constexpr int kComfortableSpace = 3;
/// Rows farther apart would not be read as one group.
constexpr int kMostSpace = 16;

constexpr int kMostColumns = 5;
constexpr int kSetupRows = 5;

int CountColumns(const BridgeMetrics& aMetrics) {
  const int inside = aMetrics.width - 2 * (kSide + kInset);
  return std::clamp((inside + kRateGap) / std::max(1, aMetrics.rateWidth + kRateGap), 1, kMostColumns);
}

int CountRateRows(const BridgeMetrics& aMetrics) {
  const int columns = CountColumns(aMetrics);
  return (static_cast<int>(kBaudRates.size()) + columns - 1) / columns;
}

class BridgeArrangement {
public:
  explicit BridgeArrangement(const BridgeMetrics& aMetrics)
      : mMetrics(aMetrics), mRateRows(CountRateRows(aMetrics)), mLeft(kSide), mRight(aMetrics.width - kSide) {
    mIsCompact = ComputeSpace(false) < kComfortableSpace;
    mSpace = std::clamp(ComputeSpace(mIsCompact), kLeastSpace, kMostSpace);
  }

  BridgeLayout Arrange() {
    int y = 2 * mSpace + GetTopMargin();
    const int portWidth = 2 * kInset + mMetrics.portListWidth;
    const int portRight = mIsCompact ? mLeft + portWidth : mRight;
    const int portBottom = ArrangePort(y, portRight);
    if (mIsCompact) {
      const int statisticsBottom = ArrangeStatistics(y, portRight + kGap);
      mLayout.portBox.bottom = mLayout.statisticsBox.bottom = std::max(portBottom, statisticsBottom);
      CentrePortList();
    }
    y = ArrangeSetup(mLayout.portBox.bottom + 2 * mSpace);
    y = ArrangeRates(y + 2 * mSpace);
    if (!mIsCompact)
      ArrangeStatistics(y + 2 * mSpace, mLeft);
    return mLayout;
  }

private:
  /// What is left above and below everything in a window that is higher than its rows can be apart.
  int GetTopMargin() const {
    return std::max(0, (mMetrics.height - GetFixedHeight(mIsCompact) - CountSpaces(mIsCompact) * mSpace) / 2);
  }
  /// What is needed without any space.
  int GetFixedHeight(bool aIsCompact) const {
    const int port = mMetrics.fieldHeight;
    const int statistics = aIsCompact ? std::max(2 * mMetrics.lineHeight, mMetrics.fieldHeight) : mMetrics.fieldHeight;
    const int top = aIsCompact ? std::max(port, statistics) : port + statistics;
    const int setup = 2 * mMetrics.radioHeight + mMetrics.fieldHeight + 2 * mMetrics.lineHeight;
    return CountGroups(aIsCompact) * (mMetrics.titleHeight + kBottom) + top + setup + mRateRows * mMetrics.lineHeight;
  }
  /// One below the other.
  static int CountGroups(bool aIsCompact) { return aIsCompact ? 3 : 4; }
  int CountSpaces(bool aIsCompact) const {
    const int groups = CountGroups(aIsCompact);
    const int rows = (aIsCompact ? 1 : 2) + kSetupRows + mRateRows;
    // A row has one above it, a group one more below its last row.
    return rows + groups + 2 * (groups + 1);
  }
  int ComputeSpace(bool aIsCompact) const {
    return (mMetrics.height - GetFixedHeight(aIsCompact)) / CountSpaces(aIsCompact);
  }

  int ArrangePort(int aTop, int aRight) {
    RowStack rows(aTop + mMetrics.titleHeight, mSpace);
    mLayout.portList = PlaceInRow(rows.Take(mMetrics.fieldHeight), mLeft + kInset,
                                  mLeft + kInset + mMetrics.portListWidth, mMetrics.fieldHeight);
    rows.Leave(1);
    rows.Skip(kBottom);
    mLayout.portBox = {mLeft, aTop, aRight, rows.GetY()};
    return rows.GetY();
  }

  /// In a row that is as high as the counters beside it.
  void CentrePortList() {
    PixelRect& list = mLayout.portList;
    list = PlaceInRow({0, mLayout.portBox.top + mMetrics.titleHeight, 0, mLayout.portBox.bottom - kBottom}, list.left,
                      list.right, mMetrics.fieldHeight);
  }

  int ArrangeSetup(int aTop) {
    const int left = mLeft + kInset;
    const int right = mRight - kInset;
    const int column = left + mMetrics.radioWidth + 2 * kGap;
    RowStack rows(aTop + mMetrics.titleHeight, mSpace);
    mLayout.none = PlaceInRow(rows.Take(mMetrics.radioHeight), left, left + mMetrics.radioWidth, mMetrics.radioHeight);
    const PixelRect link = rows.Take(mMetrics.fieldHeight);
    mLayout.comPortLink = PlaceInRow(link, left, left + mMetrics.radioWidth, mMetrics.radioHeight);
    const int list = column + mMetrics.labelWidth + kGap;
    mLayout.comPortLabel = PlaceInRow(link, column, column + mMetrics.labelWidth, mMetrics.lineHeight);
    mLayout.comPortList = PlaceInRow(link, list, list + mMetrics.listWidth, mMetrics.fieldHeight);
    const int configure = list + mMetrics.listWidth + kGap;
    mLayout.configure =
        PlaceInRow(link, configure, std::min(right, configure + mMetrics.configureWidth), mMetrics.fieldHeight);
    mLayout.description =
        PlaceInRow(rows.Take(mMetrics.lineHeight), left + mMetrics.indent, right, mMetrics.lineHeight);
    const PixelRect cameraLink = rows.Take(mMetrics.radioHeight);
    mLayout.cameraLink = PlaceInRow(cameraLink, left, left + mMetrics.radioWidth, mMetrics.radioHeight);
    mLayout.cameraLinkName = PlaceInRow(cameraLink, column, right, mMetrics.lineHeight);
    mLayout.state = PlaceInRow(rows.Take(mMetrics.lineHeight), left, right, mMetrics.lineHeight);
    rows.Leave(1);
    rows.Skip(kBottom);
    mLayout.setupBox = {mLeft, aTop, mRight, rows.GetY()};
    return rows.GetY();
  }

  int ArrangeRates(int aTop) {
    const int left = mLeft + kInset;
    const int columns = CountColumns(mMetrics);
    const int width = mRight - kInset - left;
    RowStack rows(aTop + mMetrics.titleHeight, mSpace);
    PixelRect row;
    for (std::size_t index = 0; index < kBaudRates.size(); ++index) {
      const int column = static_cast<int>(index) % columns;
      if (column == 0)
        row = rows.Take(mMetrics.lineHeight);
      const int x = left + column * width / columns;
      mLayout.rates[index] = PlaceInRow(row, x, left + (column + 1) * width / columns, mMetrics.lineHeight);
    }
    rows.Leave(1);
    rows.Skip(kBottom);
    mLayout.ratesBox = {mLeft, aTop, mRight, rows.GetY()};
    return rows.GetY();
  }

  /// The counters beside each other, in a low window below each other; gives the bottom.
  int ArrangeStatistics(int aTop, int aLeft) {
    const int left = aLeft + kInset;
    const int right = mRight - kInset - mMetrics.resetWidth - kGap;
    RowStack rows(aTop + mMetrics.titleHeight, mSpace);
    PixelRect all;
    if (mIsCompact) {
      all = rows.Take(std::max(2 * mMetrics.lineHeight, mMetrics.fieldHeight));
      const int middle = (all.top + all.bottom) / 2;
      mLayout.sent = PlaceInRow({0, middle - mMetrics.lineHeight, 0, middle}, left, right, mMetrics.lineHeight);
      mLayout.received = PlaceInRow({0, middle, 0, middle + mMetrics.lineHeight}, left, right, mMetrics.lineHeight);
    } else {
      all = rows.Take(mMetrics.fieldHeight);
      const int middle = (left + right) / 2;
      mLayout.sent = PlaceInRow(all, left, middle - kGap, mMetrics.lineHeight);
      mLayout.received = PlaceInRow(all, middle, right, mMetrics.lineHeight);
    }
    mLayout.reset = PlaceInRow(all, right + kGap, mRight - kInset, mMetrics.fieldHeight);
    rows.Leave(1);
    rows.Skip(kBottom);
    mLayout.statisticsBox = {aLeft, aTop, mRight, rows.GetY()};
    return rows.GetY();
  }

  const BridgeMetrics& mMetrics;
  const int mRateRows;
  const int mLeft;
  const int mRight;
  bool mIsCompact = false;
  int mSpace = 0;
  BridgeLayout mLayout;
};

} // namespace

BridgeLayout LayOutBridge(const BridgeMetrics& aMetrics) {
  return BridgeArrangement(aMetrics).Arrange();
}

} // namespace krgui

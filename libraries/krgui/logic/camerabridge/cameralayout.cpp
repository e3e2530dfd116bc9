#include "logic/camerabridge/cameralayout.h"

#include "logic/frame/rowstack.h"

#include <algorithm>

namespace krgui {

namespace {

constexpr int kGap = 6;    ///< Between controls of one row, and between the column and the browser.
constexpr int kInset = 6;  ///< From a group's sides to what is in it.
constexpr int kBottom = 4; ///< From its last row to its frame.
constexpr int kSide = 6;   ///< From the window's sides to what is in it.
/// Between two rows, as the height allows; rows farther apart would not be read as one group.
constexpr int kLeastSpace = 0;
constexpr int kMostSpace = 6;
/// A list is never narrower, so that some letters of what is chosen can be read.
constexpr int kLeastList = 72;

class CameraArrangement {
public:
  explicit CameraArrangement(const CameraMetrics& aMetrics) : m(aMetrics), mRight(kSide + ComputeColumn()) {
    const int left = m.height - Arrange(0);
    mSpace = std::clamp(left / mRows.CountSpaces(), kLeastSpace, kMostSpace);
  }

  CameraLayout Arrange() {
    (void)Arrange(mSpace);
    mLayout.browser = {mRight + kGap, kSide, std::max(mRight + kGap, m.width - kSide),
                       std::max(kSide, m.height - kSide)};
    return mLayout;
  }

private:
  /// As wide as its controls need, and as a status is to be read, as long as the browser has room.
  int ComputeColumn() const {
    const int row = m.indent + m.labelWidth + kLeastList + m.browseWidth + m.buttonWidth + 3 * kGap;
    const int needed = 2 * kInset + std::max({m.switchWidth, row, 2 * m.buttonWidth});
    const int wanted = std::max(needed, 2 * kInset + m.indent + m.statusWidth);
    return std::max(needed, std::min(wanted, m.width - 2 * kSide - kGap - m.browserWidth));
  }

  /// The column with rows so far apart; gives its bottom.
  int Arrange(int aSpace) {
    mRows = RowStack(kSide, aSpace);
    ArrangeSetup();
    mRows.Leave(1);
    ArrangeStatistics();
    mLayout.poCL = TakeSwitch(kSide + kInset);
    return mRows.GetY() + kSide;
  }

  void ArrangeSetup() {
    const int top = Open();
    mLayout.ports = PlaceInRow(mRows.Take(m.fieldHeight), kSide + kInset, GetInnerRight(), m.fieldHeight);
    mLayout.none = TakeKind();
    mLayout.clProtocol = TakeKind();
    TakeChoice(mLayout.templateLabel, mLayout.templates, mLayout.probe);
    mLayout.probeStatus = TakeStatus();
    TakeChoice(mLayout.clXMLLabel, mLayout.clXMLs, mLayout.clConnect);
    mLayout.clStatus = TakeStatus();
    mLayout.genCP = TakeKind();
    TakeChoice(mLayout.genCPXMLLabel, mLayout.genCPXMLs, mLayout.genCPConnect);
    mLayout.genCPStatus = TakeStatus();
    if (m.hasCameraFile)
      ArrangeCameraFile();
    mRows.Leave(1);
    const PixelRect row = mRows.Take(m.fieldHeight);
    const int left = kSide + kInset;
    mLayout.sourceLabel = PlaceInRow(row, left, left + m.labelWidth, m.lineHeight);
    mLayout.sources = PlaceInRow(row, GetListLeft(), GetInnerRight(), m.fieldHeight);
    mLayout.synchronization = TakeSwitch(left);
    mLayout.state = PlaceInRow(mRows.Take(m.lineHeight), left, GetInnerRight(), m.lineHeight);
    mLayout.setupBox = Close(top);
  }

  void ArrangeCameraFile() {
    mLayout.cameraFile = TakeKind();
    TakeChoice(mLayout.pathLabel, mLayout.path, mLayout.load);
    mLayout.browse = mLayout.path;
    mLayout.browse.left = mLayout.path.right - m.browseWidth;
    mLayout.path.right = mLayout.browse.left - kGap;
    mLayout.fileStatus = TakeStatus();
  }

  void ArrangeStatistics() {
    const int top = Open();
    const PixelRect row = mRows.Take(std::max(2 * m.lineHeight, m.fieldHeight));
    const int middle = (row.top + row.bottom) / 2;
    const int left = kSide + kInset;
    const int button = GetInnerRight() - m.buttonWidth;
    mLayout.sent = {left, middle - m.lineHeight, button - kGap, middle};
    mLayout.received = {left, middle, button - kGap, middle + m.lineHeight};
    mLayout.reset = PlaceInRow(row, button, GetInnerRight(), m.fieldHeight);
    mLayout.statisticsBox = Close(top);
  }

  int GetInnerRight() const { return mRight - kInset; }
  int GetListLeft() const { return kSide + kInset + m.indent + m.labelWidth + kGap; }

  PixelRect TakeSwitch(int aLeft) {
    return PlaceInRow(mRows.Take(m.radioHeight), aLeft, GetInnerRight(), m.radioHeight);
  }
  /// A kind stands off from what belongs to the one before.
  PixelRect TakeKind() {
    mRows.Leave(1);
    return TakeSwitch(kSide + kInset);
  }
  void TakeChoice(PixelRect& aLabel, PixelRect& aList, PixelRect& aButton) {
    const PixelRect row = mRows.Take(m.fieldHeight);
    const int left = kSide + kInset + m.indent;
    aLabel = PlaceInRow(row, left, left + m.labelWidth, m.lineHeight);
    aButton = PlaceInRow(row, GetInnerRight() - m.buttonWidth, GetInnerRight(), m.fieldHeight);
    aList = PlaceInRow(row, GetListLeft(), aButton.left - kGap, m.fieldHeight);
  }
  PixelRect TakeStatus() {
    return PlaceInRow(mRows.Take(m.lineHeight), kSide + kInset + m.indent, GetInnerRight(), m.lineHeight);
  }
  /// The inside of a group begins; gives its top.
  int Open() {
    const int top = mRows.GetY();
    mRows.Skip(m.titleHeight);
    return top;
  }
  PixelRect Close(int aTop) {
    mRows.Skip(kBottom);
    return {kSide, aTop, mRight, mRows.GetY()};
  }

  const CameraMetrics& m;
  const int mRight; ///< Of the column.
  int mSpace = 0;
  RowStack mRows{0, 0};
  CameraLayout mLayout;
};

} // namespace

CameraLayout LayOutCameraBridge(const CameraMetrics& aMetrics) {
  return CameraArrangement(aMetrics).Arrange();
}

} // namespace krgui

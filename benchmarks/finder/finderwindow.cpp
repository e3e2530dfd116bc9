#include "finderwindow.h"

#include "figure.h"
#include "finderdevices.h"
#include "heartbeat.h"
#include "krgui/krdevicefinderwnd.h"

#include <QCoreApplication>
#include <QDialog>
#include <QTreeWidget>

#include <algorithm>
#include <cstdio>

namespace benchmarks {

namespace {

constexpr std::size_t kDevices = 100;
constexpr qint64 kHeartbeatMs = 10'000;
constexpr qint64 kLimitMs = 30'000;
constexpr int kClosings = 40;
constexpr int kRoundMs = 1000; // The finder's.

int CountDevices(const QTreeWidget& aTree) {
  int count = 0;
  for (int root = 0; root < aTree.topLevelItemCount(); ++root)
    count += aTree.topLevelItem(root)->childCount();
  return count;
}

QTreeWidget* FindTree(const KrWnd& aWindow) {
  return aWindow.GetWidget() ? aWindow.GetWidget()->findChild<QTreeWidget*>() : nullptr;
}

double MeasurePlainClosing() {
  QDialog dialog;
  auto* const tree = new QTreeWidget(&dialog);
  for (std::size_t index = 0; index < kDevices; ++index)
    new QTreeWidgetItem(tree, {QString::number(index)});
  dialog.show();
  QCoreApplication::processEvents();
  return MeasureBestMs(1, [&] { dialog.close(); });
}

} // namespace

bool MeasureHeartbeat() {
  Gaps idle;
  {
    QDialog empty;
    empty.show();
    idle = MeasureLargestGaps(kHeartbeatMs);
  }
  const RegisteredDevices devices(kDevices);
  KrDeviceFinderWnd finder;
  const bool isOpen = finder.ShowModeless(0).IsOK();
  QTreeWidget* const tree = isOpen ? FindTree(finder) : nullptr;
  if (!tree || !RunUntil([&] { return CountDevices(*tree) == static_cast<int>(kDevices); }, kLimitMs)) {
    std::fprintf(stderr, "The finder does not show all devices.\n");
    return false;
  }
  // The selected node's lists are brought up to date in every pass.
  tree->setCurrentItem(tree->topLevelItem(0)->child(0));
  const Gaps gaps = MeasureLargestGaps(kHeartbeatMs);
  PrintFigure("finder_100_largest_gap", gaps.wallMs, "ms", "empty_dialog", idle.wallMs);
  PrintFigure("finder_100_largest_gap_wish", gaps.wallMs, "ms", "wish", 16);
  PrintFigure("finder_100_largest_busy", gaps.busyMs, "ms", "empty_dialog", idle.busyMs);
  PrintFigure("finder_100_largest_busy_wish", gaps.busyMs, "ms", "wish", 16);
  return finder.Close().IsOK();
}

bool MeasureClosing() {
  const RegisteredDevices devices(kDevices);
  double worstMs = 0;
  double plainMs = 0;
  for (int closing = 0; closing < kClosings; ++closing) {
    KrDeviceFinderWnd finder;
    if (!finder.ShowModeless(0).IsOK())
      return false;
    // Moments all over the first round.
    RunUntil([] { return false; }, kRoundMs * closing / kClosings);
    bool isClosed = false;
    worstMs = std::max(worstMs, MeasureBestMs(1, [&] { isClosed = finder.Close().IsOK(); }));
    plainMs = std::max(plainMs, MeasurePlainClosing());
    if (!isClosed)
      return false;
  }
  PrintFigure("finder_100_worst_closing", worstMs, "ms", "plain_dialog", plainMs);
  PrintFigure("finder_100_worst_closing_wish", worstMs, "ms", "wish", 100);
  return true;
}

} // namespace benchmarks

#include "finderwindow.h"

#include "checked.h"
#include "figure.h"
#include "finderdevices.h"
#include "heartbeat.h"
#include "krgui/krdevicefinderwnd.h"
#include "statistics.h"

#include <QCoreApplication>
#include <QDialog>
#include <QTreeWidget>

#include <vector>

namespace benchmarks {

namespace {

constexpr std::size_t kDevices = 100;
constexpr int kTurns = 3;
constexpr qint64 kHeartbeatMs = 5'000;
constexpr double kPictureMs = 16;
constexpr double kUnfeltMs = 100;
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
  return MeasureMs(Timing::Wall, [&] { dialog.close(); });
}

Gaps MeasureIdleGaps() {
  QDialog empty;
  empty.show();
  return MeasureLargestGaps(kHeartbeatMs);
}

Gaps MeasureFinderGaps() {
  const RegisteredDevices devices(kDevices);
  KrDeviceFinderWnd finder;
  Check(finder.ShowModeless(0));
  QTreeWidget* const tree = FindTree(finder);
  if (!tree || !RunUntil([&] { return CountDevices(*tree) == static_cast<int>(kDevices); }, kLimitMs))
    Fail("the finder does not show all devices.");
  // The selected node's lists are brought up to date in every pass.
  tree->setCurrentItem(tree->topLevelItem(0)->child(0));
  const Gaps gaps = MeasureLargestGaps(kHeartbeatMs);
  Check(finder.Close());
  return gaps;
}

} // namespace

void MeasureHeartbeat() {
  std::vector<Gaps> ours;
  std::vector<Gaps> idle;
  for (int turn = 0; turn < kTurns; ++turn) {
    ours.push_back(MeasureFinderGaps());
    idle.push_back(MeasureIdleGaps());
  }
  const auto print = [&](const char* aName, double Gaps::*aGap) {
    PrintFigure({aName, GetMedian(ours, aGap), "ms", Peer{"empty_dialog", GetMedian(idle, aGap)},
                 Limit{"one_picture_of_60_a_second", kPictureMs}});
  };
  print("finder_100_largest_gap", &Gaps::wallMs);
  print("finder_100_largest_busy", &Gaps::busyMs);
}

void MeasureClosing() {
  const RegisteredDevices devices(kDevices);
  std::vector<double> ours;
  std::vector<double> plain;
  for (int closing = 0; closing < kClosings; ++closing) {
    KrDeviceFinderWnd finder;
    Check(finder.ShowModeless(0));
    // Moments all over the first round.
    RunUntil([] { return false; }, kRoundMs * closing / kClosings);
    ours.push_back(MeasureMs(Timing::Wall, [&] { Check(finder.Close()); }));
    plain.push_back(MeasurePlainClosing());
  }
  const auto print = [&](const char* aName, double aShare) {
    PrintFigure({aName, GetQuantile(ours, aShare), "ms", Peer{"plain_dialog", GetQuantile(plain, aShare)},
                 Limit{"unfelt", kUnfeltMs}});
  };
  print("finder_100_closing_median", 0.5);
  print("finder_100_closing_worst", 1);
}

} // namespace benchmarks

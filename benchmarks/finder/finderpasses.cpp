#include "finderpasses.h"

#include "figure.h"
#include "finder/finderpictures.h"
#include "finder/findertree.h"
#include "finderdevices.h"
#include "heap.h"
#include "krsystem/krsystem.h"
#include "logic/finder/findermodel.h"
#include "statistics.h"
#include "timing.h"

#include <QCoreApplication>
#include <QTreeWidget>
#include <QWindow>

#include <chrono>
#include <string>
#include <vector>

namespace benchmarks {

namespace {

constexpr int kRuns = 51;
constexpr QSize kTreeSize(450, 600);
constexpr const char* kPlainFill = "plain_fill";

struct Times {
  double medianMs = 0;
  double worstMs = 0;
};

Times Sum(const std::vector<double>& aTimes) {
  return {GetMedian(aTimes), GetQuantile(aTimes, 1)};
}

std::uint32_t GetTickMs() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

/// A tree widget on the screen, set up as the finder's.
class ShownTree {
public:
  ShownTree() {
    mWidget.setHeaderHidden(true);
    mWidget.resize(kTreeSize);
    mWidget.show();
    // Before that it would paint nothing.
    const auto isShown = [this] { return mWidget.windowHandle() && mWidget.windowHandle()->isExposed(); };
    while (!isShown())
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  QTreeWidget& GetWidget() { return mWidget; }
  /// Lays it out and paints it, now.
  void Paint() { mWidget.viewport()->repaint(); }

private:
  QTreeWidget mWidget;
};

/// What the finder does with what a system found, without the window and its thread.
class Finder {
public:
  explicit Finder(KrSystem& aSystem)
      : mSystem(aSystem), mModel(aSystem, mKinds, GetTickMs), mTree(mShown.GetWidget(), {}) {
    mModel.BuildInterfaces(mTree);
  }

  void TakeReports() {
    for (std::size_t index = 0; const KrDeviceInfo* device = mSystem.GetDeviceInfo(index); ++index)
      static_cast<void>(mModel.TakeReport(device->GetInterface(), device));
  }
  void Refresh() { mModel.Refresh(mTree, false); }
  void Rebuild() {
    mModel.Clear(mTree);
    mModel.BuildInterfaces(mTree);
    TakeReports();
    Refresh();
  }
  void Paint() { mShown.Paint(); }
  int CountShown() { return mShown.GetWidget().topLevelItem(0)->childCount(); }

private:
  KrSystem& mSystem;
  krgui::FinderKinds mKinds;
  krgui::FinderModel mModel;
  ShownTree mShown;
  krgui::FinderTree mTree;
};

/// The same items without any rule.
void FillPlainly(ShownTree& aTree, const KrSystem& aSystem) {
  QTreeWidget& widget = aTree.GetWidget();
  widget.clear();
  auto* const root = new QTreeWidgetItem(&widget, {QString::fromUtf8(aSystem.GetInterface(0)->GetDisplayID().CStr())});
  root->setIcon(0, krgui::GetFinderPicture(static_cast<int>(krgui::FinderIcon::Adapter)));
  for (std::size_t index = 0; const KrDeviceInfo* device = aSystem.GetDeviceInfo(index); ++index) {
    auto* const item = new QTreeWidgetItem(root, {QString::fromUtf8(device->GetDisplayID().CStr())});
    item->setIcon(0, krgui::GetFinderPicture(static_cast<int>(krgui::FinderIcon::GEV)));
  }
  root->setExpanded(true);
}

/// Turns of a pass and of the plain filling; prints their times and returns the medians. In processor time of this
/// thread, as both wait for nobody: the worst one is not that of the machine's other users.
template <typename Pass, typename Fill>
SizedCost MeasurePass(const std::string& aName, std::size_t aDevices, const Pass& aPass, const Fill& aFill) {
  std::vector<double> ours;
  std::vector<double> plain;
  for (int run = 0; run < kRuns; ++run) {
    ours.push_back(MeasureMs(Timing::Thread, aPass));
    plain.push_back(MeasureMs(Timing::Thread, aFill));
  }
  const Times ourTimes = Sum(ours);
  const Times plainTimes = Sum(plain);
  const std::string name = "finder_" + std::to_string(aDevices) + "_" + aName;
  PrintFigure({name + "_median", ourTimes.medianMs, "ms", Peer{kPlainFill, plainTimes.medianMs}});
  PrintFigure({name + "_worst", ourTimes.worstMs, "ms", Peer{kPlainFill, plainTimes.worstMs}});
  return {static_cast<double>(aDevices), ourTimes.medianMs, plainTimes.medianMs};
}

/// Both once, so that the pictures and fonts that all share are there before anything is measured.
void WarmUp(KrSystem& aSystem) {
  ShownTree plain;
  FillPlainly(plain, aSystem);
  plain.Paint();
  Finder finder(aSystem);
  finder.Rebuild();
  finder.Paint();
}

/// The heap's growth by showing the devices, in both.
SizedCost MeasureMemory(KrSystem& aSystem, std::size_t aDevices) {
  ShownTree plain;
  const double beforePlain = GetHeapBytes();
  FillPlainly(plain, aSystem);
  const double plainBytes = GetHeapBytes() - beforePlain;
  Finder finder(aSystem);
  const double before = GetHeapBytes();
  finder.TakeReports();
  finder.Refresh();
  const double bytes = GetHeapBytes() - before;
  if (finder.CountShown() != static_cast<int>(aDevices))
    Fail(std::to_string(finder.CountShown()) + " of " + std::to_string(aDevices) + " devices are shown.");
  const auto count = static_cast<double>(aDevices);
  PrintFigure({"finder_" + std::to_string(aDevices) + "_memory_per_device", bytes / count, "B",
               Peer{kPlainFill, plainBytes / count}});
  return {count, bytes, plainBytes};
}

} // namespace

FinderCosts MeasureFinderPasses(std::size_t aDevices) {
  const RegisteredDevices devices(aDevices);
  KrSystem system;
  system.SetDetectionTimeout(1);
  if (!system.Find().IsOK() || system.GetDeviceCount() != aDevices)
    Fail(std::to_string(system.GetDeviceCount()) + " of " + std::to_string(aDevices) + " devices were found.");

  WarmUp(system);
  FinderCosts costs;
  costs.memory = MeasureMemory(system, aDevices);
  ShownTree plain;
  Finder finder(system);
  finder.Rebuild();
  const auto fill = [&] { FillPlainly(plain, system); };
  costs.refresh = MeasurePass(
      "refresh", aDevices, [&] { finder.Refresh(); }, fill);
  costs.reports = MeasurePass(
      "reports", aDevices, [&] { finder.TakeReports(); }, fill);
  costs.rebuild = MeasurePass(
      "rebuild", aDevices, [&] { finder.Rebuild(); }, fill);
  costs.painted = MeasurePass(
      "rebuild_painted", aDevices,
      [&] {
        finder.Rebuild();
        finder.Paint();
      },
      [&] {
        fill();
        plain.Paint();
      });
  return costs;
}

void PrintFinderGrowth(const FinderCosts& aFew, const FinderCosts& aMany) {
  PrintGrowth("finder_refresh", aFew.refresh, aMany.refresh, kPlainFill);
  PrintGrowth("finder_reports", aFew.reports, aMany.reports, kPlainFill);
  PrintGrowth("finder_rebuild", aFew.rebuild, aMany.rebuild, kPlainFill);
  PrintGrowth("finder_rebuild_painted", aFew.painted, aMany.painted, kPlainFill);
  PrintGrowth("finder_memory", aFew.memory, aMany.memory, kPlainFill);
}

} // namespace benchmarks

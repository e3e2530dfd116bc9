#include "finderpasses.h"

#include "figure.h"
#include "finder/finderpictures.h"
#include "finder/findertree.h"
#include "finderdevices.h"
#include "krsystem/krsystem.h"
#include "logic/finder/findermodel.h"

#include <QCoreApplication>
#include <QTreeWidget>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <string>
#include <vector>

namespace benchmarks {

namespace {

constexpr int kRuns = 51;
constexpr QSize kTreeSize(450, 600);

struct Times {
  double medianMs = 0;
  double worstMs = 0;
};

/// In processor time of this thread, as a pass waits for nobody: the worst one is not that of the machine's other
/// users.
template <typename Work>
Times MeasureTimes(const Work& aWork) {
  std::vector<double> times;
  for (int run = 0; run < kRuns; ++run)
    times.push_back(MeasureBestProcessorMs(1, aWork));
  std::sort(times.begin(), times.end());
  return {times[times.size() / 2], times.back()};
}

std::size_t GetHeapBytes() {
  return ::mallinfo2().uordblks;
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

void Print(const std::string& aName, const Times& aOurs, const Times& aPlain) {
  PrintFigure((aName + "_median").c_str(), aOurs.medianMs, "ms", "plain_fill", aPlain.medianMs);
  PrintFigure((aName + "_worst").c_str(), aOurs.worstMs, "ms", "plain_fill", aPlain.worstMs);
}

} // namespace

bool MeasureFinderPasses(std::size_t aDevices) {
  const std::string name = "finder_" + std::to_string(aDevices);
  const RegisteredDevices devices(aDevices);
  KrSystem system;
  system.SetDetectionTimeout(1);
  if (!system.Find().IsOK() || system.GetDeviceCount() != aDevices) {
    std::fprintf(stderr, "%zu of %zu devices were found.\n", system.GetDeviceCount(), aDevices);
    return false;
  }

  ShownTree plain;
  const std::size_t beforePlain = GetHeapBytes();
  FillPlainly(plain, system);
  const auto plainBytes = static_cast<double>(GetHeapBytes() - beforePlain);
  Finder finder(system);
  const std::size_t before = GetHeapBytes();
  finder.TakeReports();
  finder.Refresh();
  const auto bytes = static_cast<double>(GetHeapBytes() - before);
  if (finder.CountShown() != static_cast<int>(aDevices)) {
    std::fprintf(stderr, "%d of %zu devices are shown.\n", finder.CountShown(), aDevices);
    return false;
  }

  const Times refill = MeasureTimes([&] { FillPlainly(plain, system); });
  Print(name + "_refresh", MeasureTimes([&] { finder.Refresh(); }), refill);
  Print(name + "_reports", MeasureTimes([&] { finder.TakeReports(); }), refill);
  Print(name + "_rebuild", MeasureTimes([&] { finder.Rebuild(); }), refill);
  const Times painted = MeasureTimes([&] {
    FillPlainly(plain, system);
    plain.Paint();
  });
  Print(name + "_rebuild_painted", MeasureTimes([&] {
          finder.Rebuild();
          finder.Paint();
        }),
        painted);
  const auto count = static_cast<double>(aDevices);
  PrintFigure((name + "_memory_per_device").c_str(), bytes / count, "B", "plain_fill", plainBytes / count);
  return true;
}

} // namespace benchmarks

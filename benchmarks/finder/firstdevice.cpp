// The first device in the finder's tree beside Aravis' list: the same independent camera, the same run.

#include "fakecamera.h"
#include "figure.h"
#include "finderwindow.h"
#include "krgui/krdevicefinderwnd.h"
#include "krtransport/krtransport.h"
#include "networklab.h"

#include <arv.h>

#include <QCoreApplication>
#include <QTimer>
#include <QTreeWidget>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>
#include <optional>

namespace benchmarks {

namespace {

constexpr int kRuns = 5;
constexpr std::chrono::seconds kLimit{30};

bool HasDevice(const QTreeWidget& aTree) {
  for (int root = 0; root < aTree.topLevelItemCount(); ++root)
    if (aTree.topLevelItem(root)->childCount() > 0)
      return true;
  return false;
}

bool AwaitDevice(const KrDeviceFinderWnd& aFinder) {
  auto* const tree = aFinder.GetWidget()->findChild<QTreeWidget*>();
  QTimer wake; // The loop must not wait for events beyond the limit.
  wake.start(1);
  const auto end = std::chrono::steady_clock::now() + kLimit;
  while (tree && !HasDevice(*tree) && std::chrono::steady_clock::now() < end)
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  const bool hasDevice = tree && HasDevice(*tree);
  if (hasDevice)
    tree->viewport()->repaint();
  return hasDevice;
}

/// From opening to an item that was painted; nothing when none came. Closing is no part of it.
std::optional<double> ShowFirstDevice() {
  KrDeviceFinderWnd finder;
  bool isShown = false;
  const double ms = MeasureBestMs(1, [&] { isShown = finder.ShowModeless(0).IsOK() && AwaitDevice(finder); });
  return isShown ? std::optional(ms) : std::nullopt;
}

bool ListByAravis() {
  arv_update_device_list();
  return arv_get_n_devices() > 0;
}

} // namespace

bool MeasureFirstDevice() {
  NetworkLab lab;
  NetworkHost& host = lab.AddHost("cameras");
  lab.Connect("eth0", host, "port0");
  lab.SetAddress("eth0", "192.168.1.10/24");
  host.SetAddress("port0", "192.168.1.20/24");
  const FakeCamera camera({.address = "192.168.1.20", .namespaceFile = host.GetNamespaceFile()});
  if (!camera.IsAnswering() || !KrInstallTransports({.gigEVision = true, .usb3Vision = false}).IsOK())
    return false;
  bool isFound = true;
  const double aravisMs = MeasureBestMs(kRuns, [&] { isFound = ListByAravis() && isFound; });
  if (!isFound) {
    std::fprintf(stderr, "Aravis does not list the camera.\n");
    return false;
  }
  double oursMs = std::numeric_limits<double>::max();
  for (int run = 0; run < kRuns; ++run) {
    const std::optional<double> ms = ShowFirstDevice();
    if (!ms) {
      std::fprintf(stderr, "The finder does not show the camera.\n");
      return false;
    }
    oursMs = std::min(oursMs, *ms);
  }
  PrintFigure("finder_first_device", oursMs, "ms", "arv_update_device_list", aravisMs);
  return true;
}

} // namespace benchmarks

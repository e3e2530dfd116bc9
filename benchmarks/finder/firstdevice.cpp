// The first device in the finder's tree beside the first answer and Aravis' list: the same independent camera, in
// turns.

#include "checked.h"
#include "fakecamera.h"
#include "figure.h"
#include "finderwindow.h"
#include "heartbeat.h"
#include "krgui/krdevicefinderwnd.h"
#include "krtransport/krtransport.h"
#include "networklab.h"
#include "statistics.h"

#include <arv.h>

#include <QTreeWidget>

#include <string>
#include <vector>

namespace benchmarks {

namespace {

constexpr int kTurns = 5;
constexpr const char* kAddress = "192.168.1.20";
constexpr int kMostAsked = 100;
constexpr qint64 kLimitMs = 30'000;

bool HasDevice(const QTreeWidget& aTree) {
  for (int root = 0; root < aTree.topLevelItemCount(); ++root)
    if (aTree.topLevelItem(root)->childCount() > 0)
      return true;
  return false;
}

bool AwaitDevice(const KrDeviceFinderWnd& aFinder) {
  auto* const tree = aFinder.GetWidget()->findChild<QTreeWidget*>();
  if (!tree || !RunUntil([tree] { return HasDevice(*tree); }, kLimitMs))
    return false;
  tree->viewport()->repaint();
  return true;
}

/// From opening to an item that was painted. Closing is no part of it.
double ShowFirstDevice() {
  KrDeviceFinderWnd finder;
  return MeasureMs(Timing::Wall, [&] {
    Check(finder.ShowModeless(0));
    if (!AwaitDevice(finder))
      Fail("the finder does not show the camera.");
  });
}

double AwaitAnswer() {
  return MeasureMs(Timing::Wall, [] {
    bool isAnswered = false;
    for (int asked = 0; !isAnswered && asked < kMostAsked; ++asked)
      isAnswered = AnswersDiscovery(kAddress);
    if (!isAnswered)
      Fail("the camera does not answer.");
  });
}

double ListByAravis() {
  return MeasureMs(Timing::Wall, [] {
    arv_update_device_list();
    if (arv_get_n_devices() == 0)
      Fail("Aravis does not list the camera.");
  });
}

} // namespace

void MeasureFirstDevice() {
  NetworkLab lab;
  NetworkHost& host = lab.AddHost("cameras");
  lab.Connect("eth0", host, "port0");
  lab.SetAddress("eth0", "192.168.1.10/24");
  host.SetAddress("port0", std::string(kAddress) + "/24");
  const FakeCamera camera({.address = kAddress, .namespaceFile = host.GetNamespaceFile()});
  if (!camera.IsAnswering())
    Fail("the camera does not answer.");
  Check(KrInstallTransports({.gigEVision = true, .usb3Vision = false}));
  std::vector<double> ours;
  std::vector<double> answers;
  std::vector<double> lists;
  for (int turn = 0; turn < kTurns; ++turn) {
    ours.push_back(ShowFirstDevice());
    answers.push_back(AwaitAnswer());
    lists.push_back(ListByAravis());
  }
  const double ms = GetMedian(ours);
  PrintFigure({"finder_first_device", ms, "ms", Peer{"first_answer_at_a_bare_socket", GetMedian(answers)}});
  PrintFigure({"finder_first_device", ms, "ms", Peer{"arv_update_device_list_fixed_wait", GetMedian(lists)}});
}

} // namespace benchmarks

#include "openings.h"

#include "figure.h"
#include "krdevice/krdeviceadapter.h"
#include "krgui/krcamerabridgemanagerwnd.h"
#include "krgui/krdevicefinderwnd.h"
#include "krgui/krdisplaywnd.h"
#include "krgui/krgenbrowserwnd.h"
#include "krgui/krserialbridgemanagerwnd.h"
#include "krgui/krserialterminalwnd.h"
#include "scene.h"
#include "statistics.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <functional>
#include <memory>
#include <set>
#include <string>

namespace benchmarks {

namespace {

using Clock = std::chrono::steady_clock;

constexpr double kLimitMs = 150;
constexpr int kRuns = 21;

/// The cameras that windows are opened on; they are open before.
struct Cameras {
  std::unique_ptr<KrDevice> mono = scene::OpenDevice("sim-mono");
  std::unique_ptr<KrDevice> grabber = scene::OpenDevice("sim-grabber");
  KrDeviceAdapter adapter{*mono};
};

/// Which windows were painted since, or anything of them: some have an area that they leave to another one.
class PaintedWindows : public QObject {
public:
  PaintedWindows() { qApp->installEventFilter(this); }
  bool Has(const QWidget& aWindow) const { return mPainted.contains(&aWindow); }

private:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override {
    const auto* const widget = aEvent->type() == QEvent::Paint ? qobject_cast<QWidget*>(aWatched) : nullptr;
    if (widget)
      mPainted.insert(widget->window());
    return QObject::eventFilter(aWatched, aEvent);
  }

  std::set<const QWidget*> mPainted;
};

/// How long a window takes to be painted that is made and shown in between; showing it may handle events.
class Stopwatch {
public:
  double AwaitPaint(const QWidget& aWindow) const {
    while (!mPainted.Has(aWindow))
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return std::chrono::duration<double, std::milli>(Clock::now() - mBegin).count();
  }

private:
  const PaintedWindows mPainted;
  const Clock::time_point mBegin = Clock::now();
};

template <typename Window>
double Open(const std::function<void(Window&)>& aSetUp) {
  const Stopwatch stopwatch;
  Window window;
  aSetUp(window);
  scene::Require(window.ShowModeless(0));
  const double ms = stopwatch.AwaitPaint(*window.GetWidget());
  scene::Require(window.Close());
  return ms;
}

double OpenDialog(Cameras&) {
  const Stopwatch stopwatch;
  QDialog dialog;
  dialog.resize(640, 480);
  dialog.show();
  return stopwatch.AwaitPaint(dialog);
}

struct Opening {
  const char* name;
  double (*open)(Cameras&);
};

constexpr std::array kOpenings = {
    Opening{"finder", [](Cameras&) { return Open<KrDeviceFinderWnd>([](KrDeviceFinderWnd&) {}); }},
    Opening{"display", [](Cameras&) { return Open<KrDisplayWnd>([](KrDisplayWnd&) {}); }},
    Opening{"browser",
            [](Cameras& aCameras) {
              return Open<KrGenBrowserWnd>(
                  [&](KrGenBrowserWnd& aWindow) { aWindow.SetGenParameterArray(aCameras.mono->GetParameters()); });
            }},
    Opening{"terminal",
            [](Cameras& aCameras) {
              return Open<KrSerialTerminalWnd>(
                  [&](KrSerialTerminalWnd& aWindow) { scene::Require(aWindow.SetDevice(&aCameras.adapter)); });
            }},
    Opening{"serial_bridges",
            [](Cameras& aCameras) {
              return Open<KrSerialBridgeManagerWnd>(
                  [&](KrSerialBridgeManagerWnd& aWindow) { scene::Require(aWindow.SetDevice(&aCameras.adapter)); });
            }},
    Opening{"camera_bridges",
            [](Cameras& aCameras) {
              return Open<KrCameraBridgeManagerWnd>([&](KrCameraBridgeManagerWnd& aWindow) {
                scene::Require(aWindow.SetDevice(aCameras.grabber.get()));
              });
            }},
};

const Limit kPrompt = {"prompt", kLimitMs};

} // namespace

std::vector<const char*> GetOpeningNames() {
  std::vector<const char*> names;
  for (const Opening& opening : kOpenings)
    names.push_back(opening.name);
  return names;
}

bool MeasureFirstOpening(const char* aName) {
  const auto found =
      std::ranges::find_if(kOpenings, [&](const Opening& aOpening) { return std::strcmp(aOpening.name, aName) == 0; });
  if (found == kOpenings.end())
    return false;
  Cameras cameras;
  const double ms = found->open(cameras);
  PrintFigure({std::string("open_") + aName + "_first", ms, "ms", {}, kPrompt});
  return true;
}

void MeasureOpenings() {
  Cameras cameras;
  for (const Opening& opening : kOpenings) {
    std::vector<double> ours;
    std::vector<double> dialogs;
    for (int run = 0; run < kRuns; ++run) {
      dialogs.push_back(OpenDialog(cameras));
      ours.push_back(opening.open(cameras));
    }
    const auto print = [&](const char* aWhich, double aShare) {
      PrintFigure({std::string("open_") + opening.name + aWhich, GetQuantile(ours, aShare), "ms",
                   Peer{"empty_dialog", GetQuantile(dialogs, aShare)}, kPrompt});
    };
    print("_median", 0.5);
    print("_worst", 1);
  }
}

} // namespace benchmarks

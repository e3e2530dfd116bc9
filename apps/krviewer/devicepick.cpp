#include "devicepick.h"

#include "stopsignal.h"

#include <QTimer>

namespace krviewer {

namespace {

constexpr int kLookIntervalMs = 50;

} // namespace

KrResult PickDevice(KrDeviceFinderWnd& aFinder, const KrDeviceInfo*& aDevice) {
  const krapps::StopSignal stopSignal;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
    if (stopSignal.IsRaised() && aFinder.GetWidget())
      (void)aFinder.Close(); // It is open.
  });
  timer.start(kLookIntervalMs);
  aFinder.SetTitle("Device Selection");
  const KrResult shown = aFinder.ShowModal(0);
  if (!shown.IsOK())
    return shown;
  aDevice = aFinder.GetSelected();
  return aDevice && !stopSignal.IsRaised() ? KrResult() : KrResult(KrResult::Code::Cancelled);
}

} // namespace krviewer

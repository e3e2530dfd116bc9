#include "devicepick.h"

#include "stopsignal.h"

#include <QMessageBox>
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

KrResult TellFailure(const KrDeviceInfo& aDevice, const KrResult& aFailure) {
  const krapps::StopSignal stopSignal;
  QMessageBox box(
      QMessageBox::Warning, QStringLiteral("Error"),
      QString::fromUtf8((aDevice.GetDisplayID() + " cannot be shown.\n\n" + aFailure.GetDescription()).CStr()),
      QMessageBox::Ok);
  box.setTextFormat(Qt::PlainText);
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, &box, [&] {
    if (stopSignal.IsRaised())
      box.reject();
  });
  timer.start(kLookIntervalMs);
  box.exec();
  return stopSignal.IsRaised() ? KrResult(KrResult::Code::Cancelled) : KrResult();
}

} // namespace krviewer

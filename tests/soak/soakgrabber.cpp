#include "soakgrabber.h"

#include "camerabridge/camerabridgeids.h"
#include "krcamerabridge/krcamerabridge.h"
#include "krgui/krcamerabridgemanagerwnd.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "scene.h"

#include <QAbstractButton>
#include <QComboBox>

namespace {

namespace id = krgui::cameraid;

} // namespace

SoakGrabber::SoakGrabber(KrCameraBridgeManagerWnd& aManager, LabCamera& aGrabber, const std::string& aFile)
    : mManager(aManager), mGrabber(aGrabber), mFile(aFile) {}

void SoakGrabber::ConnectByHand() {
  scene::Require(mManager.SetDevice(&mGrabber.GetDevice()));
  QWidget& window = *mManager.GetWidget();
  scene::Await("answer of the frame grabber", [&] { return scene::Get(window, id::kPoCL).isEnabled(); });
  scene::Get<QAbstractButton>(window, id::kGenCP).click();
  scene::Await("description", [&] { return scene::Get<QComboBox>(window, id::kGenCPXML).count() > 0; });
  scene::Get<QAbstractButton>(window, id::kGenCPConnect).click();
  scene::AwaitFeatures(window);
  scene::Pick(window, id::kSource, "Source0");
  scene::Get<QAbstractButton>(window, id::kSynchronization).click();
  Save();
}

void SoakGrabber::Exchange(SoakDice& aDice) {
  KrGenParameterArray& camera = *mManager.GetBridge(0)->GetParameters();
  KrGenInteger& width = *camera.GetInteger("Width");
  const std::int64_t set = std::int64_t{aDice.Draw(16, 128)} * 8;
  scene::Require(width.SetValue(set));
  camera.InvalidateCache();
  std::int64_t value = 0;
  scene::Require(width.GetValue(value));
  if (value != set)
    throw std::runtime_error("The camera behind the frame grabber did not keep its width.");
  KrGenParameterArray& grabber = mGrabber.GetParameters();
  scene::Await("width of the camera at the frame grabber", [&] {
    return grabber.Invalidate("Width").IsOK() && grabber.GetInteger("Width")->GetValue(value).IsOK() && value == set;
  });
  ++mExchanges;
}

void SoakGrabber::Save() {
  KrConfigurationWriter writer;
  scene::Require(mManager.Save(writer));
  scene::Require(writer.Save(mFile));
}

void SoakGrabber::Load() {
  KrConfigurationReader reader;
  scene::Require(reader.Load(mFile));
  KrStringList errors;
  scene::Require(mManager.Load(reader, errors));
}

void SoakGrabber::SaveAndLoad() {
  Save();
  Load();
}

void SoakGrabber::Abandon() {
  scene::Require(mManager.SetDevice(nullptr));
}

void SoakGrabber::Restore() {
  scene::Require(mManager.SetDevice(&mGrabber.GetDevice()));
  Load();
}

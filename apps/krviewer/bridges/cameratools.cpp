#include "bridges/cameratools.h"

#include "acquisition/acquisition.h"
#include "plaintext.h"

#include <QWidget>

#include <cstdio>

namespace krviewer {

CameraTools::CameraTools(QWidget& aPage)
    : mPage(aPage), mSerialDialogs(aPage, mSerialBridges, GetSerialBridgeWords()),
      mCameraDialogs(aPage, mCameraBridges, GetCameraBridgeWords()) {}

void CameraTools::Follow(Acquisition& aAcquisition) {
  mSerialBridges.Follow(aAcquisition.GetDevice(DeviceBorrower::Bridges));
  mSerialDialogs.LookAgain();
  mCameraBridges.Follow(aAcquisition.GetDevice(DeviceBorrower::CameraBridges));
  mCameraDialogs.LookAgain();
  // Last: the terminal may show a message box here, and looks go on while it is open, as they do in the loops of the
  // camera bridges before it.
  mTerminal.Follow(aAcquisition.GetDevice(DeviceBorrower::Terminal));
}

void CameraTools::LookAgain() {
  mSerialDialogs.LookAgain();
  mCameraDialogs.LookAgain();
}

void CameraTools::End() {
  mSerialDialogs.End();
  mCameraDialogs.End();
}

void CameraTools::FollowFiles() {
  mSerialDialogs.FollowFile();
  mCameraDialogs.FollowFile();
}

void CameraTools::AwaitWritten() {
  mSerialDialogs.AwaitWritten();
  mCameraDialogs.AwaitWritten();
}

void CameraTools::LeaveFiles() {
  mSerialDialogs.LeaveFile();
  mCameraDialogs.LeaveFile();
}

void CameraTools::GiveBack(Acquisition& aAcquisition) {
  mTerminal.GiveBack(aAcquisition.GetDevice(DeviceBorrower::Terminal));
  mTerminal.Close();
  mSerialBridges.GiveBack(aAcquisition.GetDevice(DeviceBorrower::Bridges));
  mSerialBridges.Close();
  mCameraBridges.GiveBack(aAcquisition.GetDevice(DeviceBorrower::CameraBridges));
  mCameraBridges.Close();
}

void CameraTools::ShowTerminal() {
  const KrResult shown = mTerminal.Show(mPage.window()->winId());
  if (!shown.IsOK())
    std::fprintf(stderr, "The serial terminal cannot be opened: %s\n",
                 krapps::MakeField(shown.GetDescription()).c_str());
}

void CameraTools::SetCreatingPorts(bool aIsCreating) {
  mIsCreatingPorts = aIsCreating;
  mSerialBridges.GetWindow().SetCreatingPorts(aIsCreating);
}

} // namespace krviewer

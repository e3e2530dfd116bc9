#pragma once
// What is done with one camera in windows beside its page: the terminal on its serial ports, the bridges, the cameras
// behind a frame grabber's ports. The camera is the acquisition's; when the windows are opened is left to the viewer.

#include "bridges/bridgedialogs.h"
#include "bridges/camerabridges.h"
#include "bridges/serialbridges.h"
#include "bridges/serialterminal.h"

class QWidget;

namespace krviewer {

class Acquisition;

/// Thread: user interface. Ownership: borrows the page over which the windows are opened.
class CameraTools {
public:
  explicit CameraTools(QWidget& aPage);

  /// Takes what the acquisition lends, and gives back what it wants back; to be called often. May run loops, in which
  /// it is called again.
  void Follow(Acquisition& aAcquisition);
  /// The same where there is no acquisition: setups may be loaded and saved all the same.
  void LookAgain();
  /// Gives everything back and closes the windows; also from a loop of Follow.
  void GiveBack(Acquisition& aAcquisition);
  /// Whether cameras behind the device's ports are asked at the moment.
  bool IsWorking() const { return mCameraBridges.IsWorking(); }

  /// Nothing is told in windows any more. What is being saved is still written.
  void End();
  bool IsWriting() const { return mSerialDialogs.IsWriting() || mCameraDialogs.IsWriting(); }
  /// Sees whether it is, in any loop.
  void FollowFiles();
  /// Returns when it is.
  void AwaitWritten();
  /// Does not wait any longer for a disk that does not answer: what is not written yet is a failure.
  void LeaveFiles();
  /// What went wrong after the end; the error stream has it, too.
  QStringList GetFailures() const { return mSerialDialogs.GetFailures() + mCameraDialogs.GetFailures(); }

  bool CanShowTerminal() const { return mTerminal.HasDevice(); }
  void ShowTerminal();
  BridgeDialogs& GetSerialBridges() { return mSerialDialogs; }
  BridgeDialogs& GetCameraBridges() { return mCameraDialogs; }
  /// Whether serial bridges make ports of the host.
  bool IsCreatingPorts() const { return mIsCreatingPorts; }
  void SetCreatingPorts(bool aIsCreating);

private:
  QWidget& mPage;
  SerialTerminal mTerminal;
  SerialBridges mSerialBridges;
  BridgeDialogs mSerialDialogs;
  CameraBridges mCameraBridges;
  BridgeDialogs mCameraDialogs;
  bool mIsCreatingPorts = false;
};

} // namespace krviewer

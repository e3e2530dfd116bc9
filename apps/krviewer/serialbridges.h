#pragma once
// The serial bridges of the viewer: they run while the device is there, whether their window is open or not, and are
// taken up again when a device that was lost is back. The bridges and the window itself are the library's.

#include "devicewindow.h"
#include "keptbridges.h"
#include "krbase/krstringlist.h"
#include "krgui/krserialbridgemanagerwnd.h"

#include <functional>

namespace krviewer {

class SerialBridges : public DeviceWindow {
public:
  /// Told which bridges could not be taken up again, one line each; must not run a loop of its own.
  using TellFailures = std::function<void(const KrStringList& aLines)>;

  KrSerialBridgeManagerWnd& GetWindow() override { return mWindow; }
  void SetTellFailures(TellFailures aTell) { mTellFailures = std::move(aTell); }
  /// To be called often: notices what the user changes.
  void LookAgain();

  /// Reads a setup from a file and starts its bridges in the place of those that are there; without a device they start
  /// when it comes. What does not start is told in aErrors, one line each. Fails for a file that cannot be read, and
  /// nothing changes then.
  KrResult LoadSetup(const KrString& aFileName, KrStringList& aErrors);
  /// Writes the setup to a file: what is set up now, with the bridges that have not started,
  /// or what starts when the device comes.
  KrResult SaveSetup(const KrString& aFileName);

private:
  void TakeDevice(IKrDeviceAdapter& aDevice) override;
  void DropDevice() override;
  KrPropertyList GetNow();
  void Start(IKrDeviceAdapter& aDevice, KrStringList& aErrors);

  KrSerialBridgeManagerWnd mWindow;
  KeptBridges mKept;
  TellFailures mTellFailures;
};

} // namespace krviewer

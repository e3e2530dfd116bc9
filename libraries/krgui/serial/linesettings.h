#pragma once
// "Speed" and "Loopback": the two controls that stand for parameters of the device. Which parameters those are is left
// to krserial/krdeviceserialspeed.h.

#include "krbase/krresult.h"
#include "krserial/krdeviceserial.h"

#include <optional>

class IKrDeviceAdapter;
class QCheckBox;
class QComboBox;

namespace krgui {

/// All that is shown and written is the port's own: of a bulk port, it is selected first where another one is.
///
/// A device of the application's that throws has nothing of what it was asked for; a result is SystemError then.
///
/// Thread: user interface, which waits for the device. Ownership: borrows the controls.
class LineSettings {
public:
  LineSettings(QComboBox& aSpeed, QCheckBox& aLoopback) : mSpeed(aSpeed), mLoopback(aLoopback) {}

  /// Chooses a bulk port by the device's selector, where it has one and that is available; what it gives is its own
  /// business. Of other ports nothing is chosen.
  static void Select(IKrDeviceAdapter& aDevice, KrDeviceSerial aPort);

  /// Shows what the device has for its open port; without a device nothing can be used. Gives the loopback where it
  /// could be read; where not, the box stays as it is.
  std::optional<bool> Refresh(IKrDeviceAdapter* aDevice, KrDeviceSerial aPort);
  /// Writes what was picked in the list.
  KrResult WriteSpeed(IKrDeviceAdapter& aDevice, KrDeviceSerial aPort) const;
  /// Writes the state of the box.
  KrResult WriteLoopback(IKrDeviceAdapter& aDevice, KrDeviceSerial aPort) const;

private:
  void RefreshSpeed(IKrDeviceAdapter* aDevice, KrDeviceSerial aPort);
  std::optional<bool> RefreshLoopback(IKrDeviceAdapter* aDevice, KrDeviceSerial aPort);

  QComboBox& mSpeed;
  QCheckBox& mLoopback;
};

} // namespace krgui

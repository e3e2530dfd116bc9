#include "serial/linesettings.h"

#include "krdevice/ikrdeviceadapter.h"
#include "krserial/krbulkselectorturn.h"
#include "krserial/krdeviceserialspeed.h"
#include "platform/guardedcall.h"
#include "platform/plainline.h"
#include "platform/toqstring.h"

#include <QCheckBox>
#include <QComboBox>
#include <QSignalBlocker>

namespace krgui {

namespace {

using FindName = KrString (*)(KrDeviceSerial, const KrHasParameter&);

/// The parameter of a port, in a device that has it; otherwise an empty name, as without a device.
KrString FindIn(IKrDeviceAdapter* aDevice, KrDeviceSerial aPort, FindName aFind) {
  if (!aDevice)
    return {};
  const KrHasParameter hasParameter = [aDevice](const KrString& aName) { return aDevice->HasParameter(aName); };
  const KrString name = aFind(aPort, hasParameter);
  return !name.IsEmpty() && hasParameter(name) ? name : KrString();
}

/// A device that refuses it is talked to all the same.
void SelectPort(IKrDeviceAdapter& aDevice, KrDeviceSerial aPort) {
  if (IsBulkPort(aPort) && aDevice.IsParameterAvailable(kBulkSelector))
    (void)aDevice.SetEnumValue(kBulkSelector, GetPortName(aPort));
}

/// The parameters of all bulk ports have one name each: whoever else uses the device may have chosen another port.
void KeepSelected(IKrDeviceAdapter& aDevice, KrDeviceSerial aPort) {
  KrString selected;
  if (!IsBulkPort(aPort) || (aDevice.GetEnumValue(kBulkSelector, selected).IsOK() && selected == GetPortName(aPort)))
    return;
  SelectPort(aDevice, aPort);
}

} // namespace

void LineSettings::Select(IKrDeviceAdapter& aDevice, KrDeviceSerial aPort) {
  (void)CallGuarded("Choosing the device's serial port", [&] {
    const KrBulkSelectorTurn turn(aDevice, aPort);
    SelectPort(aDevice, aPort);
    return KrResult();
  });
}

std::optional<bool> LineSettings::Refresh(IKrDeviceAdapter* aDevice, KrDeviceSerial aPort) {
  std::optional<bool> loopback;
  const KrResult read = CallGuarded("Reading the serial port's settings", [&] {
    std::optional<KrBulkSelectorTurn> turn;
    if (aDevice) {
      turn.emplace(*aDevice, aPort);
      KeepSelected(*aDevice, aPort);
    }
    RefreshSpeed(aDevice, aPort);
    loopback = RefreshLoopback(aDevice, aPort);
    return KrResult();
  });
  // What throws has none of them.
  if (!read.IsOK()) {
    mSpeed.setEnabled(false);
    mLoopback.setEnabled(false);
  }
  return loopback;
}

void LineSettings::RefreshSpeed(IKrDeviceAdapter* aDevice, KrDeviceSerial aPort) {
  const QSignalBlocker blocker(mSpeed);
  mSpeed.clear();
  const KrString name = FindIn(aDevice, aPort, FindBaudRateParameter);
  mSpeed.setEnabled(!name.IsEmpty());
  if (name.IsEmpty())
    return;
  KrStringList entries;
  if (aDevice->GetEnumEntries(name, entries).IsOK()) {
    // Each item has the device's own name for it, of which it shows what one line can.
    for (const KrString& entry : entries)
      mSpeed.addItem(ToPlainLine(entry, kMostLettersOfAChoice), ToItemData(entry));
  }
  KrString value;
  mSpeed.setCurrentIndex(aDevice->GetEnumValue(name, value).IsOK() ? mSpeed.findData(ToItemData(value)) : -1);
}

std::optional<bool> LineSettings::RefreshLoopback(IKrDeviceAdapter* aDevice, KrDeviceSerial aPort) {
  const KrString name = FindIn(aDevice, aPort, FindLoopbackParameter);
  mLoopback.setEnabled(!name.IsEmpty());
  bool isOn = false;
  if (name.IsEmpty() || !aDevice->GetBooleanValue(name, isOn).IsOK())
    return std::nullopt;
  const QSignalBlocker blocker(mLoopback);
  mLoopback.setChecked(isOn);
  return isOn;
}

KrResult LineSettings::WriteSpeed(IKrDeviceAdapter& aDevice, KrDeviceSerial aPort) const {
  return CallGuarded("Setting the serial port's speed", [&] {
    const KrBulkSelectorTurn turn(aDevice, aPort);
    KeepSelected(aDevice, aPort);
    return aDevice.SetEnumValue(FindIn(&aDevice, aPort, FindBaudRateParameter),
                                FromItemData(mSpeed.currentData().toByteArray()));
  });
}

KrResult LineSettings::WriteLoopback(IKrDeviceAdapter& aDevice, KrDeviceSerial aPort) const {
  return CallGuarded("Setting the serial port's loopback", [&] {
    const KrBulkSelectorTurn turn(aDevice, aPort);
    KeepSelected(aDevice, aPort);
    return aDevice.SetBooleanValue(FindIn(&aDevice, aPort, FindLoopbackParameter), mLoopback.isChecked());
  });
}

} // namespace krgui

#pragma once
// The device finder: a dialog in which the user picks one camera of all that are connected, and repairs the addresses
// of those that cannot be reached.

#include "krgui/krwnd.h"
#include "krsystem/krdeviceinfo.h"

namespace krgui {
class DeviceFinderWnd;
}

/// The device finder. Embedded (CreateIn, Create) it neither hides nor closes on OK: the selected device is to be had by
/// GetSelected at once, looking for devices goes on, and the user may choose another one.
///
/// Thread: the user-interface thread alone; OnFound also comes on the discovery thread.
/// Ownership: the application owns the object, which owns everything that it finds.
///
///     KrDeviceFinderWnd finder;
///     if (finder.ShowModal(0).IsOK() && finder.GetSelected()) {
///       std::unique_ptr<KrDevice> device;
///       KrResult opened = KrDevice::Open(*finder.GetSelected(), KrDeviceAccess::Control, device);
///     }
class KR_EXPORT KrDeviceFinderWnd : public KrWnd {
public:
  KrDeviceFinderWnd();
  /// A derived class calls DeleteWnd() in its own destructor: until then its OnFound may be called.
  ~KrDeviceFinderWnd() override;

  /// The device that the user accepted in the last showing, which may still go on when it is embedded; null when he
  /// cancelled or accepted none yet. Lives as long as this object.
  const KrDeviceInfo* GetSelected() const;

  /// Asked about every report of a device before it enters the tree; false drops the report, so that the device is
  /// never shown. Called on the discovery thread, and on the user-interface thread while the tree is built anew; it
  /// must not wait for the other. An exception counts as true and is logged.
  virtual bool OnFound(const KrDeviceInfo* aDevice);

  /// Which kinds of device can be selected, and which are listed; set them before the window is shown. GigE Vision and
  /// USB3 Vision start with both, the older protocol starts listed and not selectable.
  void SetGEVEnabled(bool aSelectable, bool aListed);
  void GetGEVEnabled(bool& aSelectable, bool& aListed) const;
  /// Plain USB devices and USB host controllers go with USB3 Vision.
  void SetU3VEnabled(bool aSelectable, bool aListed);
  void GetU3VEnabled(bool& aSelectable, bool& aListed) const;
  void SetTolvanProtocolEnabled(bool aSelectable, bool aListed);
  void GetTolvanProtocolEnabled(bool& aSelectable, bool& aListed) const;

private:
  krgui::DeviceFinderWnd& GetWnd() const;
};

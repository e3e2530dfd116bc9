#pragma once
// The device finder: a dialog in which the user picks one camera of all that are connected, and repairs the addresses
// of those that cannot be reached.

#include "krgui/krwnd.h"
#include "krsystem/krdeviceinfo.h"

namespace krgui {
class DeviceFinderWnd;
}

/// The device finder. Embedded (CreateIn, Create) it neither hides nor closes on OK: the selected device is to be had
/// by GetSelected at once (OnAccepted tells), looking for devices goes on, and the user may choose another one.
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
  /// A derived class calls DeleteWnd() in its own destructor: until then its overrides may be called.
  ~KrDeviceFinderWnd() override;

  /// The device that the user accepted in the last showing, which may still go on when it is embedded; null when he
  /// cancelled or accepted none yet. Lives as long as this object.
  const KrDeviceInfo* GetSelected() const;

  /// Asked about every report of a device before it enters the tree; false drops the report, so that the device is
  /// never shown. Called on the discovery thread, and on the user-interface thread while the tree is built anew; it
  /// must not wait for the other. It decides and touches no window, this one included, as windows belong to the
  /// user-interface thread: what wants one it posts there. It has to be short: closing, OK and the address dialogs wait
  /// for a call that runs. An exception counts as true and is logged.
  virtual bool OnFound(const KrDeviceInfo* aDevice);

  /// The user has accepted the device that GetSelected now gives. Called on the user-interface thread, while a window
  /// of its own is still open; embedded, it is how the application hears of OK. Discovery rests meanwhile. It may close
  /// or delete the finder. Does nothing by default; an exception is logged.
  virtual void OnAccepted();

  /// Which kinds of device can be selected, and which are listed; set them before the window is shown. GigE Vision and
  /// USB3 Vision start with both, the older protocol starts listed and not selectable.
  void SetGEVEnabled(bool aSelectable, bool aListed);
  /// What SetGEVEnabled has set.
  void GetGEVEnabled(bool& aSelectable, bool& aListed) const;
  /// Plain USB devices and USB host controllers go with USB3 Vision.
  void SetU3VEnabled(bool aSelectable, bool aListed);
  /// What SetU3VEnabled has set.
  void GetU3VEnabled(bool& aSelectable, bool& aListed) const;
  /// The same for devices of the older Tolvan protocol.
  void SetTolvanProtocolEnabled(bool aSelectable, bool aListed);
  /// What SetTolvanProtocolEnabled has set.
  void GetTolvanProtocolEnabled(bool& aSelectable, bool& aListed) const;

  /// Whether network devices are listed that this computer cannot reach as they are configured, as the user may choose
  /// in the window, too; set it before the window is shown. Where addresses are to be set these are what is looked for.
  /// It starts false.
  void SetUnreachableShown(bool aIsShown);
  /// What SetUnreachableShown has set, or the user since.
  bool IsUnreachableShown() const;

private:
  krgui::DeviceFinderWnd& GetWnd() const;
};

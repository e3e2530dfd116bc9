#pragma once
// The serial bridge manager: a window that makes a device's serial ports reachable from the host.

#include "krbase/krstringlist.h"
#include "krgui/krwnd.h"
#include "krpersistence/krpropertylist.h"

class IKrDeviceAdapter;

namespace krgui {
class SerialBridgeManagerWnd;
}

/// The serial bridge manager: each serial port of a device can be linked to a COM port of the host, or published for
/// programs that use the Camera Link serial functions. The bridges are the object's, not the open window's: they run
/// before it is shown and after it is closed, until SetDevice, Load, or the end of the object.
///
/// Thread: the user-interface thread alone. Bytes are moved on threads of the bridges' own.
/// Ownership: the application owns the object; the adapter is borrowed and must be taken out (SetDevice with null), or
/// the object deleted, before it ends. Closing the window is not enough.
///
///     KrDeviceAdapter adapter(*device);
///     KrSerialBridgeManagerWnd manager;
///     KrResult result = manager.SetDevice(&adapter);
///     result = manager.Load(properties, errors);
///     result = manager.ShowModeless(0);
class KR_EXPORT KrSerialBridgeManagerWnd : public KrWnd {
public:
  KrSerialBridgeManagerWnd();
  ~KrSerialBridgeManagerWnd() override;

  /// Ends all bridges and lists the ports of a device, or none for null. Publishes every port's name for a moment, to
  /// find out which names are published; the rest not, once one cannot have its turn in time. Always OK.
  KrResult SetDevice(IKrDeviceAdapter* aAdapter);
  /// Whether COM ports that the host lacks are made, as pseudo-terminals that last as long as their link; the window
  /// then offers one of them. Off at first; of links that run nothing changes.
  void SetCreatingPorts(bool aIsOn);
  /// Ends all bridges and sets them up as they were saved. A line is added to aErrorList for each port that could not
  /// be set up, which then has no bridge; the others are not affected. An open window shows what has come of it. Always
  /// OK.
  KrResult Load(KrPropertyList& aPropertyList, KrStringList& aErrorList);
  /// Replaces the list's content by the bridges and their settings; by nothing when there is no bridge. One of which
  /// the user is still asked for the baud rate is not saved. Always OK.
  KrResult Save(KrPropertyList& aPropertyList);
  /// Not offered by this window: does nothing, and always returns NotOffered (1540).
  KrResult Recover();

private:
  krgui::SerialBridgeManagerWnd& GetWnd() const;
};

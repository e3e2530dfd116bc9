#pragma once
// The camera bridge manager: a window for the Camera Link cameras behind a frame grabber's serial ports.

#include "krbase/krstringlist.h"
#include "krgui/krwnd.h"
#include "krserial/krdeviceserial.h"

class KrCameraBridge;
class KrConfigurationReader;
class KrConfigurationWriter;
class KrDevice;
class KrStream;

namespace krgui {
class CameraBridgeManagerWnd;
}

/// The camera bridge manager: behind each serial port of a frame grabber there may be a camera, which is reached by
/// GenICam CL Protocol, by GenCP, or by a camera file; the window connects it and shows its parameters. The bridges are
/// the object's, not the open window's: they stay connected until SetDevice, Load, or the end of the object.
///
/// Thread: the user-interface thread alone. Cameras are asked on threads of the window's own while it is open; its
/// calls then run a loop of their own, in which it stays alive and can be cancelled. It may be deleted there.
/// Ownership: the application owns the object; device and stream are borrowed and must be taken out, or the object
/// deleted, before they end: the device by SetDevice, with null or another one; the stream by SetStream and SetDevice
/// after it, as bridges keep the stream that they were made with. Closing the window is not enough.
///
///     KrCameraBridgeManagerWnd manager;
///     manager.SetStream(&stream);
///     manager.SetDevice(device.get());
///     manager.Load(reader, errors);
///     KrResult result = manager.ShowModeless(0);
class KR_EXPORT KrCameraBridgeManagerWnd : public KrWnd {
public:
  KrCameraBridgeManagerWnd();
  ~KrCameraBridgeManagerWnd() override;

  /// Disconnects all cameras, and makes a bridge for each serial port of a device, or none for null. Ends what is under
  /// way. Always OK. Of an open window the user may end the search for ports; there are no bridges then until the
  /// window is opened again, or Load.
  KrResult SetDevice(KrDevice* aDevice);
  /// The stream of the bridges that are made from now on: to be called before SetDevice. May be null. Always OK.
  KrResult SetStream(KrStream* aStream);
  /// Connects the cameras as they were saved. A line is added to aErrors for everything that could not be done.
  /// NotFound where no bridges are stored, or for a port that the device lacks; else the first failure, after all
  /// others were tried; Cancelled where the user, or something else that this object was told to do, ended it.
  KrResult Load(KrConfigurationReader& aReader, KrStringList& aErrors);
  /// Stores the cameras that are connected, and which they are. The first failure, after all others were tried; Busy
  /// while a camera is asked for something else, Cancelled as in Load: what is in the writer then is not whole.
  KrResult Save(KrConfigurationWriter& aWriter);
  /// Not offered by this window: does nothing, and always returns NotOffered (1540).
  KrResult Recover();

  /// How many bridges there are: one for each serial port of the device.
  int GetBridgeCount();
  /// A bridge, in the order of the ports; null for an index that is none. Whoever disconnects it closes this window
  /// before, which shows its parameters; while the window asks a camera, nobody else may ask it.
  KrCameraBridge* GetBridge(int aIndex);
  /// The port of a bridge; Invalid (-1) for an index that is none.
  KrDeviceSerial GetBridgePort(int aIndex);

  /// Offers camera files, as at first.
  void ShowPCF();
  /// Hides what belongs to camera files.
  void HidePCF();
  /// Whether they are shown.
  bool IsPCFVisible();

private:
  krgui::CameraBridgeManagerWnd& GetWnd() const;
};

#pragma once
// A Camera Link camera behind a serial port of a frame grabber, and its own parameters. How the user chooses between
// the ways to a camera is left to the window.

#include "krbase/krresult.h"
#include "krbase/krstring.h"
#include "krbase/krstringlist.h"
#include "krserial/krdeviceserial.h"

#include <cstdint>
#include <memory>
#include <stop_token>

class KrConfigurationReader;
class KrConfigurationWriter;
class KrDevice;
class KrGenParameterArray;
class KrStream;

/// A bridge to one camera, by one of three ways: a GenICam CL Protocol driver, GenCP, or a Tolvan camera file, which
/// describes a camera with commands of its own.
///
/// Thread: any, one call at a time; the calls that ask the camera wait as long as it takes, and Cancel, from any
/// thread, ends them. Counters may be read at any time. Ownership: the holder's. Device and stream are borrowed and
/// must outlive it. The parameters belong to the bridge and end with the connection: a window that shows them must be
/// told first.
///
///     KrCameraBridge bridge(device, KrDeviceSerial::Serial0, nullptr);
///     KrStringList xmlIDs;
///     KrResult result = bridge.GetGenCPXMLIDs(xmlIDs);
///     if (result.IsOK())
///       result = bridge.ConnectGenCP(xmlIDs[0]);
///     if (result.IsOK())
///       gain = bridge.GetParameters()->GetInteger("Gain");
class KR_EXPORT KrCameraBridge {
public:
  /// aStream is stopped and resized never; while it runs, synchronisation leaves the device's size alone. May be null.
  KrCameraBridge(KrDevice* aDevice, KrDeviceSerial aPort, KrStream* aStream);
  /// Disconnects.
  ~KrCameraBridge();
  KrCameraBridge(const KrCameraBridge&) = delete;
  KrCameraBridge& operator=(const KrCameraBridge&) = delete;

  /// The templates of all CL Protocol drivers that are installed: "Directory#FileName#Manufacturer…". Drivers that
  /// cannot be loaded, hang or crash are left out; SystemError with what is wrong with them when nothing else is left.
  /// OK with an empty list where no driver is installed.
  static KrResult GetCLProtocolTemplates(KrStringList& aTemplates);
  /// Asks the driver of a template for a camera on the port, and for the XML identifiers of what it finds, the best
  /// first. NotFound when no camera answers, InvalidInput for a template that no driver has.
  KrResult ProbeCLProtocol(const KrString& aTemplate, KrString& aCameraID, KrStringList& aXMLIDs);
  /// Connects by the driver of a template, with one of the identifiers that probing gave.
  KrResult ConnectCLProtocol(const KrString& aTemplate, const KrString& aXMLID);
  /// The identifiers of the descriptions that a GenCP camera offers, the best first. NotFound when no camera answers.
  KrResult GetGenCPXMLIDs(KrStringList& aXMLIDs);
  /// Connects by GenCP with one of these identifiers.
  KrResult ConnectGenCP(const KrString& aXMLID);
  /// Connects by a camera file. BadData for a file with mistakes, which GetTolvanCameraFileParserErrors lists; NotFound
  /// and AccessDenied for one that cannot be read; TimeLimitExceeded for a camera that does not answer.
  KrResult ConnectTolvanCameraFile(const KrString& aPath);
  /// All mistakes of the file that was to be loaded last, "line:column: reason" each; empty where it had none.
  KrStringList GetTolvanCameraFileParserErrors() const;
  /// Ends the connection; the parameters end with it. Disconnecting what is not connected does nothing.
  void Disconnect();
  /// True from a successful connection to Disconnect, also while the camera does not answer.
  bool IsConnected() const;
  /// Ends the calls that wait, with Aborted. Thread: any.
  void Cancel();

  /// The camera's parameters; null while it is not connected.
  KrGenParameterArray* GetParameters();

  /// The entry of the device's SourceSelector that the camera feeds; empty at first.
  KrString GetSource() const;
  /// InvalidInput for an entry that the device lacks.
  KrResult SetSource(const KrString& aSource);
  /// Whether the camera's size, offsets and pixel format are carried to the device when they change. Off at first.
  bool GetParametersSyncEnabled() const;
  KrResult SetParametersSyncEnabled(bool aIsOn);

  /// Bytes that the device's port took and gave since the connection or the last reset.
  std::uint64_t GetBytesSentToCamera() const;
  std::uint64_t GetBytesReceivedFromCamera() const;
  void ResetStatistics();

  /// What it is connected with. WrongState where it is not connected in that way.
  KrResult GetTolvanCameraFilePath(KrString& aPath) const;
  KrResult GetCLProtocolCameraID(KrString& aCameraID) const;
  KrResult GetCLProtocolTemplate(KrString& aTemplate) const;
  KrResult GetCLProtocolXMLID(KrString& aXMLID) const;
  KrResult GetGenCPXMLID(KrString& aXMLID) const;

  /// Stores under a name how it is connected, source, synchronisation and the camera's streamable features. WrongState
  /// where it is not connected.
  KrResult Save(const KrString& aName, KrConfigurationWriter& aWriter);
  /// Connects as it was saved and sets the features. aErrors gets a line for everything that could not be done; the
  /// first failure is returned. NotFound where nothing is stored under the name.
  KrResult Load(const KrString& aName, const KrConfigurationReader& aReader, KrStringList& aErrors);

  /// Power over Camera Link of a device.
  static bool IsPoCLSupported(KrDevice* aDevice);
  static bool IsPoCLEnabled(KrDevice* aDevice);
  static KrResult SetPoCLEnabled(KrDevice* aDevice, bool aIsOn);

private:
  struct Body;
  std::unique_ptr<Body> mBody;
};

#pragma once
// A Camera Link camera behind a serial port of a frame grabber, and its own parameters. How the user chooses between
// the ways to a camera is left to the window.

#include "krbase/krresult.h"
#include "krbase/krstring.h"
#include "krbase/krstringlist.h"
#include "krserial/krdeviceserial.h"

#include <cstdint>
#include <memory>

class KrConfigurationReader;
class KrConfigurationWriter;
class KrDevice;
class KrGenParameterArray;
class KrStream;

/// A bridge to one camera, by one of three ways: a GenICam CL Protocol driver, GenCP, or a Tolvan camera file, which
/// describes a camera with commands of its own.
///
/// Thread: any, one call at a time; the calls that ask the camera wait as long as it takes, and Cancel, from any
/// thread, ends them. IsConnected, GetCameraState, counters, source and synchronisation may be used at any time. None
/// may be called from an event sink of the camera's parameters. Ownership: the holder's. The stream is borrowed and
/// must outlive the bridge; so should the device, without which everything fails with ConnectionLost. The parameters
/// belong to the bridge and end with the connection: a window that shows them must be told first. The end waits for
/// accesses of other threads that have begun; none may begin any more, and what consists of several (Poll, settings)
/// must have ended.
///
/// While it is connected it holds the device's port: nobody else of this process can open it. With a device that is
/// lost it stays connected, and everything that needs the camera fails with ConnectionLost, until Disconnect. Results
/// of the calls that open the port are besides their own those of KrDeviceSerialPort::Open; InvalidInput without a
/// device.
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

  /// Where this process looks for CL Protocol drivers beside the directories of the environment variable
  /// GENICAM_CLPROTOCOL: instead of the one in which KrGUI's are installed, which an empty list names again. Each has a
  /// sub-directory for the system, in which the drivers are; 64 count. Thread: any; a call that runs is not touched.
  static void SetCLProtocolDirectories(const KrStringList& aDirectories);
  /// The templates of all CL Protocol drivers that are installed: "Directory#FileName#Manufacturer…". Drivers that
  /// cannot be loaded, hang or crash are left out; SystemError with what is wrong with them when nothing else is left.
  /// OK with an empty list where no driver is installed.
  static KrResult GetCLProtocolTemplates(KrStringList& aTemplates);
  /// Asks the driver of a template for a camera on the port, and for the XML identifiers of what it finds, the best
  /// first. NotFound when no camera answers, InvalidInput for a template that no driver has, WrongState while it is
  /// connected.
  KrResult ProbeCLProtocol(const KrString& aTemplate, KrString& aCameraID, KrStringList& aXMLIDs);
  /// Connects by the driver of a template, with one of the identifiers that probing gave. This and the other ways
  /// disconnect first; a failed one leaves the bridge disconnected. Results as of probing; NotFound also for an
  /// identifier that the camera does not have, BadData for a description that is none.
  KrResult ConnectCLProtocol(const KrString& aTemplate, const KrString& aXMLID);
  /// The identifiers of the descriptions that a GenCP camera offers, the best first. NotFound when no camera answers,
  /// WrongState while it is connected.
  KrResult GetGenCPXMLIDs(KrStringList& aXMLIDs);
  /// Connects by GenCP with one of these identifiers. NotFound when no camera answers or it has no such description,
  /// AccessDenied when it gives nobody control, BadData for a description that is none, or not the one whose hash the
  /// camera has.
  KrResult ConnectGenCP(const KrString& aXMLID);
  /// Connects by a camera file. BadData for a file with mistakes, which GetTolvanCameraFileParserErrors lists; NotFound
  /// and AccessDenied for one that cannot be read; NotSupported for a speed that the port does not have;
  /// TimeLimitExceeded for a camera that does not answer.
  KrResult ConnectTolvanCameraFile(const KrString& aPath);
  /// All mistakes of the file that was to be loaded last, "line:column: reason" each; empty where it had none.
  KrStringList GetTolvanCameraFileParserErrors() const;
  /// Ends the parameters, with the accesses that wait, gives the camera free, and then the port; a camera that does not
  /// answer any more may take a few seconds, the waiting for which Cancel ends. Disconnecting what is not connected
  /// does nothing.
  void Disconnect();
  /// True from a successful connection to Disconnect, also while the camera does not answer.
  bool IsConnected() const;
  /// Whether the camera can be reached that it is connected with: OK where it can, and while it is not connected;
  /// otherwise why not, for people. ConnectionLost for a device that is lost or closed; TimeLimitExceeded, or
  /// ConnectionLost, where that is what the last access to the camera's parameters came to. Nobody is asked for it: it
  /// is as new as the last access, and OK again once one succeeds. Thread: any, at any time.
  KrResult GetCameraState() const;
  /// Ends the call that runs, with Aborted; one that begins later is not touched. Parameters that somebody waits for
  /// are not ended by it (KrGenParameterArray::Cancel). Thread: any.
  void Cancel();

  /// The camera's parameters, until the connection ends; null while it is not connected.
  KrGenParameterArray* GetParameters();

  /// The entry of the device's SourceSelector that the camera feeds; empty at first.
  KrString GetSource() const;
  /// InvalidInput for an entry that the device lacks; the empty text is always taken. Failures of a device that does
  /// not answer.
  KrResult SetSource(const KrString& aSource);
  /// Whether the camera's Width, Height, OffsetX, OffsetY and PixelFormat, as far as it has them, are carried to the
  /// features of the same names of the device, of the bridge's source, or, where that is empty, of the one that is
  /// selected. Off at first.
  bool GetParametersSyncEnabled() const;
  /// While it is connected they are carried when it is switched on, when the connection begins, with another source,
  /// and whenever the parameters tell of a change (what the camera changes by itself is found out by those that poll
  /// it); while the stream runs, when it has stopped. That is done by a thread of the bridge's own: what could not be
  /// done is said by GetParametersSyncText, logged, and tried again with the next change. Always OK.
  KrResult SetParametersSyncEnabled(bool aIsOn);
  /// That it is under way or waits for the stream's end, or what could not be carried last time, in sentences for
  /// people; empty where all is well. Thread: any.
  KrString GetParametersSyncText() const;

  /// Bytes that the device's port took from this bridge and gave it, in all its connections and questions since it was
  /// made or the last reset. Thread: any.
  std::uint64_t GetBytesSentToCamera() const;
  /// Bytes that the device's port gave this bridge, counted in the same way. Thread: any.
  std::uint64_t GetBytesReceivedFromCamera() const;
  /// Counts bytes from 0 on again. Thread: any.
  void ResetStatistics();

  /// What it is connected with. WrongState where it is not connected in that way. The path is the absolute one, by the
  /// directory that the process was in when it connected.
  KrResult GetTolvanCameraFilePath(KrString& aPath) const;
  /// The camera that it is connected with by CL Protocol; WrongState where it is not.
  KrResult GetCLProtocolCameraID(KrString& aCameraID) const;
  /// The driver's template that it is connected by; WrongState where it is not connected by CL Protocol.
  KrResult GetCLProtocolTemplate(KrString& aTemplate) const;
  /// The description that the driver gave; WrongState where it is not connected by CL Protocol.
  KrResult GetCLProtocolXMLID(KrString& aXMLID) const;
  /// The description that the camera gave; WrongState where it is not connected by GenCP.
  KrResult GetGenCPXMLID(KrString& aXMLID) const;

  /// Stores under a name how it is connected, source, synchronisation and the camera's streamable features; those that
  /// the camera refuses to tell are logged and left out. WrongState where it is not connected; nothing is stored when
  /// the camera does not answer (TimeLimitExceeded, ConnectionLost) and after Cancel.
  KrResult Save(const KrString& aName, KrConfigurationWriter& aWriter);
  /// The same without the camera's features, which is not asked: also of a camera, or a device, that is gone. Loaded,
  /// it leaves the camera as it is. WrongState where it is not connected. Thread: any, at any time.
  KrResult SaveConnection(const KrString& aName, KrConfigurationWriter& aWriter) const;
  /// Disconnects, chooses the source, connects as it was saved, sets the features, and then the synchronisation, which
  /// stays off where the device lacks the source. Of what is stored all is used that can be. aErrors gets a further
  /// line for everything that could not be done; the first failure is returned, BadData for what is stored wrongly.
  /// NotFound where nothing is stored under the name: the bridge stays as it was then.
  KrResult Load(const KrString& aName, const KrConfigurationReader& aReader, KrStringList& aErrors);

  /// Power over Camera Link of a device, by the feature that it has for it. False without a device, for one that has
  /// none and one that does not answer.
  static bool IsPoCLSupported(KrDevice* aDevice);
  /// Whether it is switched on; false, too, where IsPoCLSupported is.
  static bool IsPoCLEnabled(KrDevice* aDevice);
  /// InvalidInput without a device, NotSupported for one that has none; else results as of a parameter.
  static KrResult SetPoCLEnabled(KrDevice* aDevice, bool aIsOn);

private:
  struct Body;
  std::unique_ptr<Body> mBody;
};

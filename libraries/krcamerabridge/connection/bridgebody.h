#pragma once
// The state of a camera bridge, and the order in which its parts begin and end. What each way does is left to its row
// of the table, what is asked to the public class.

#include "connection/callstop.h"
#include "connection/cameraconnection.h"
#include "krbase/krstringlist.h"
#include "krserial/krdeviceserial.h"
#include "line/borroweddevice.h"
#include "line/cameraanswers.h"
#include "line/deviceline.h"
#include "sync/parametersync.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

class KrConfigurationReader;
class KrConfigurationWriter;
class KrStream;

namespace krcamerabridge {

/// Thread: as KrCameraBridge. Ownership: borrows device and stream.
class BridgeBody {
public:
  using Question = std::function<KrResult(ICameraLine& aLine, const std::stop_token& aStop)>;

  BridgeBody(KrDevice* aDevice, KrDeviceSerial aPort, KrStream* aStream);
  /// Disconnects.
  ~BridgeBody();
  BridgeBody(const BridgeBody&) = delete;
  BridgeBody& operator=(const BridgeBody&) = delete;

  /// Asks something of the camera for which it need not be connected; the port is open as long as that takes.
  /// WrongState while it is connected.
  KrResult AskUnconnected(const Question& aQuestion);
  KrResult Connect(const CameraChoice& aChoice);
  void Disconnect() { Disconnect(mCall.Begin()); }
  void Cancel() { mCall.Stop(); }

  bool IsConnected() const { return mIsConnected; }
  /// As KrCameraBridge::GetCameraState.
  KrResult GetCameraState() const;
  /// Null while it is not connected.
  CameraConnection* GetConnection() const { return mConnection.get(); }
  /// WrongState where it is not connected in that way.
  KrResult CheckWay(const CameraWay& aWay) const;
  const KrStringList& GetMistakes() const { return mMistakes; }

  KrResult SetSource(const KrString& aSource);
  KrResult Save(const KrString& aName, KrConfigurationWriter& aWriter);
  /// Thread: any.
  KrResult SaveConnection(const KrString& aName, KrConfigurationWriter& aWriter) const;
  KrResult Load(const KrString& aName, const KrConfigurationReader& aReader, KrStringList& aErrors);

  DeviceLine& GetLine() { return mLine; }
  ParameterSync& GetSync() { return mSync; }

private:
  KrString NameCamera() const;
  KrResult OpenLine();
  KrResult ExplainSilence(const KrResult& aFailure) const;
  KrResult Connect(const CameraChoice& aChoice, const std::stop_token& aStop);
  void Disconnect(const std::stop_token& aStop);
  void SetChoice(const CameraChoice& aChoice);
  CameraChoice GetChoice() const;
  KrResult RestoreSettings(const KrGenSettings& aSettings, const std::stop_token& aStop, KrStringList& aProblems);

  const BorrowedDevice mDevice;
  const KrDeviceSerial mPort;
  CallStop mCall;
  DeviceLine mLine;
  CameraAnswers mAnswers;                        // Of the connection.
  std::unique_ptr<CameraConnection> mConnection; // Ends before the line, and after what stands on its parameters.
  ParameterSync mSync;
  std::atomic<bool> mIsConnected{false};
  KrStringList mMistakes;

  mutable std::mutex mChoiceMutex; // Guards mChoice.
  CameraChoice mChoice;            // Of the connection; without a way while there is none.
};

} // namespace krcamerabridge

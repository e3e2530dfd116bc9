#pragma once
// A camera that is connected, and its parameters. The line is left to whoever opened it.

#include "connection/cameraway.h"
#include "krgenicam/krgenparameterarray.h"
#include "line/namedport.h"

#include <memory>
#include <optional>
#include <stop_token>

namespace krcamerabridge {

/// Thread: one at a time; the parameters any. Ownership: owns port and parameters; the line, and the answers of the
/// order that it was opened by, have to outlive it.
class CameraConnection {
public:
  /// Connects as chosen. Results as of the way; BadData for a description that is none.
  static KrResult Open(const CameraChoice& aChoice, const ConnectionOrder& aOrder,
                       std::unique_ptr<CameraConnection>& aConnection);
  /// Closes.
  ~CameraConnection();
  CameraConnection(const CameraConnection&) = delete;
  CameraConnection& operator=(const CameraConnection&) = delete;

  /// Ends the parameters, with the accesses that wait, and then gives the camera free, as ICameraPort::Disconnect.
  void Close(const std::stop_token& aStop);

  const CameraChoice& GetChoice() const { return mChoice; }
  const KrString& GetCameraID() const { return mCamera.cameraID; }
  KrGenParameterArray& GetParameters() { return *mParameters; }

private:
  explicit CameraConnection(const CameraChoice& aChoice) : mChoice(aChoice) {}

  const CameraChoice mChoice;
  ConnectedCamera mCamera;
  std::optional<NamedPort> mPort;                   // Of the camera.
  std::unique_ptr<KrGenParameterArray> mParameters; // Ends before the port.
};

} // namespace krcamerabridge

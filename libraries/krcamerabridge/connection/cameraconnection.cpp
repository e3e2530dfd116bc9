#include "connection/cameraconnection.h"

#include <utility>

namespace krcamerabridge {

KrResult CameraConnection::Open(const CameraChoice& aChoice, const ConnectionOrder& aOrder,
                                std::unique_ptr<CameraConnection>& aConnection) {
  std::unique_ptr<CameraConnection> connection(new CameraConnection(aChoice));
  ConnectedCamera& camera = connection->mCamera;
  if (KrResult result = aChoice.way->connect(aChoice, aOrder, camera); !result.IsOK())
    return result;
  KrResult result = KrGenParameterArray::Open(camera.description, *camera.port, {.timeoutMs = camera.accessMs},
                                              connection->mParameters);
  if (result.IsOK())
    aConnection = std::move(connection);
  return result;
}

CameraConnection::~CameraConnection() {
  if (mParameters)
    mParameters->Close();
}

} // namespace krcamerabridge

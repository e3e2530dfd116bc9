#include "connection/cameraconnection.h"

#include <utility>

namespace krcamerabridge {

KrResult CameraConnection::Open(const CameraChoice& aChoice, const ConnectionOrder& aOrder,
                                std::unique_ptr<CameraConnection>& aConnection) {
  std::unique_ptr<CameraConnection> connection(new CameraConnection(aChoice));
  ConnectedCamera& camera = connection->mCamera;
  if (KrResult result = aChoice.way->connect(aChoice, aOrder, camera); !result.IsOK())
    return result;
  NamedPort& port = connection->mPort.emplace(*camera.port, aOrder.cameraName, aOrder.answers);
  KrResult result =
      KrGenParameterArray::Open(camera.description, port, {.timeoutMs = camera.accessMs}, connection->mParameters);
  if (!result.IsOK())
    connection->Close(aOrder.stop);
  else
    aConnection = std::move(connection);
  return result;
}

CameraConnection::~CameraConnection() {
  Close({});
}

void CameraConnection::Close(const std::stop_token& aStop) {
  if (mParameters)
    mParameters->Close();
  if (mCamera.port)
    mCamera.port->Disconnect(aStop);
}

} // namespace krcamerabridge

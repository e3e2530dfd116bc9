#include "logic/camerabridge/camerabridgestate.h"

namespace krgui {

CameraBridgeEnabling GetCameraBridgeEnabling(const CameraBridgeState& aState) {
  const auto isKind = [&](CameraBridgeKind aKind) { return aState.hasPort && aState.kind == aKind; };
  const bool isCLProtocol = isKind(CameraBridgeKind::CLProtocol);
  const bool canConnect = isCLProtocol && !aState.isConnected;
  return {.port = aState.hasPort,
          .clProtocol = isCLProtocol,
          .templates = canConnect && aState.hasTemplates && !aState.hasCLProtocolXMLs,
          .clProtocolXML = canConnect && aState.hasCLProtocolXMLs,
          .genCP = isKind(CameraBridgeKind::GenCP),
          .genCPXML = isKind(CameraBridgeKind::GenCP) && aState.hasGenCPXMLs,
          .cameraFileKind = aState.hasPort && aState.isCameraFileVisible,
          .cameraFile = isKind(CameraBridgeKind::CameraFile),
          .sources = aState.hasPort && aState.hasSources,
          .poCL = aState.isPoCLSupported,
          .isCameraFileVisible = aState.isCameraFileVisible};
}

} // namespace krgui

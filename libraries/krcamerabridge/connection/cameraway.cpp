#include "connection/cameraway.h"

#include "camerafile/camerafile.h"
#include "camerafile/camerafileport.h"
#include "clprotocol/clprotocolport.h"
#include "gencp/gencpport.h"

#include <array>
#include <utility>

namespace krcamerabridge {

namespace {

KrResult ConnectCameraFile(const CameraChoice& aChoice, const ConnectionOrder& aOrder, ConnectedCamera& aCamera) {
  CameraFile file;
  if (KrResult result = CameraFile::Load(aChoice.path, file, aOrder.mistakes); !result.IsOK())
    return result;
  if (KrResult result = file.GetDescription(aCamera.description); !result.IsOK())
    return result;
  ICameraLine* line = nullptr;
  if (KrResult result = aOrder.openLine(line); !result.IsOK())
    return result;
  auto port = std::make_unique<CameraFilePort>(file, *line);
  if (KrResult result = port->SetRate(); !result.IsOK())
    return result;
  aCamera.accessMs = port->GetLongestAccessMs();
  KrResult result = port->Greet(aCamera.accessMs, aOrder.stop);
  if (result.IsOK())
    aCamera.port = std::move(port);
  return result;
}

KrResult ConnectCLProtocol(const CameraChoice& aChoice, const ConnectionOrder& aOrder, ConnectedCamera& aCamera) {
  ICameraLine* line = nullptr;
  if (KrResult result = aOrder.openLine(line); !result.IsOK())
    return result;
  auto port = std::make_unique<CLProtocolPort>(*line);
  KrResult result = port->Connect(aChoice.driverTemplate, aChoice.xmlID, aCamera.description, aOrder.stop);
  if (!result.IsOK())
    return result;
  aCamera.accessMs = CLProtocolPort::kAccessTimeoutMs;
  aCamera.cameraID = port->GetCameraID();
  aCamera.port = std::move(port);
  return {};
}

KrResult ConnectGenCP(const CameraChoice& aChoice, const ConnectionOrder& aOrder, ConnectedCamera& aCamera) {
  ICameraLine* line = nullptr;
  if (KrResult result = aOrder.openLine(line); !result.IsOK())
    return result;
  auto port = std::make_unique<GenCPPort>(*line);
  KrResult result = port->Connect(aChoice.xmlID, aCamera.description, aOrder.stop);
  if (!result.IsOK())
    return result;
  aCamera.accessMs = GenCPPort::kAccessTimeoutMs;
  aCamera.port = std::move(port);
  return {};
}

constexpr CameraWay::Key kCameraFileKeys[] = {{"Path", &CameraChoice::path}};
constexpr CameraWay::Key kCLProtocolKeys[] = {{"Template", &CameraChoice::driverTemplate},
                                              {"XMLID", &CameraChoice::xmlID}};
constexpr CameraWay::Key kGenCPKeys[] = {{"XMLID", &CameraChoice::xmlID}};

} // namespace

constinit const CameraWay kCameraFileWay = {"TolvanCameraFile", "a Tolvan camera file", kCameraFileKeys,
                                            ConnectCameraFile};
constinit const CameraWay kCLProtocolWay = {"CLProtocol", "GenICam CL Protocol", kCLProtocolKeys, ConnectCLProtocol};
constinit const CameraWay kGenCPWay = {"GenCP", "GenCP", kGenCPKeys, ConnectGenCP};

std::span<const CameraWay* const> GetCameraWays() {
  static constexpr std::array<const CameraWay*, 3> kWays = {&kCameraFileWay, &kCLProtocolWay, &kGenCPWay};
  return kWays;
}

} // namespace krcamerabridge

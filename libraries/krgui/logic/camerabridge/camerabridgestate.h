#pragma once
// Which controls of the camera bridge manager can be used, and seen: all of it follows from a few facts. What a control
// does is left to the window.

#include <cstdint>

namespace krgui {

/// How a port's camera is reached.
enum class CameraBridgeKind : std::int32_t {
  None = -1,
  CameraFile = 0,
  CLProtocol = 1,
  GenCP = 2,
};

/// What the controls follow from.
struct CameraBridgeState {
  bool hasPort = false; ///< One of the device's ports is selected.
  CameraBridgeKind kind = CameraBridgeKind::None;
  bool isConnected = false;
  bool hasTemplates = false;
  bool hasCLProtocolXMLs = false;
  bool hasGenCPXMLs = false;
  bool hasSources = false;
  bool isPoCLSupported = false;
  bool isCameraFileVisible = true;
};

/// Which controls are enabled, but for the last one.
struct CameraBridgeEnabling {
  bool port = false;          ///< What belongs to any port: its kinds, synchronisation and statistics.
  bool clProtocol = false;    ///< The labels of CL Protocol.
  bool templates = false;     ///< The list of templates, and "Probe".
  bool clProtocolXML = false; ///< The list of identifiers, and "Connect".
  bool genCP = false;         ///< The labels of GenCP.
  bool genCPXML = false;
  bool cameraFileKind = false; ///< The camera file's radio button.
  bool cameraFile = false;     ///< What else belongs to the camera file.
  bool sources = false;
  bool poCL = false;
  bool isCameraFileVisible = false;

  friend bool operator==(const CameraBridgeEnabling&, const CameraBridgeEnabling&) = default;
};

/// Thread: any.
CameraBridgeEnabling GetCameraBridgeEnabling(const CameraBridgeState& aState);

} // namespace krgui

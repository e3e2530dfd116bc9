#include "logic/serial/bridgedisplay.h"

#include <cstddef>
#include <string>

namespace krgui {

namespace {

KrString FormatBytes(const char* aWords, const SerialBridge* aBridge,
                     std::uint64_t (KrSerialBridge::*aCounter)() const) {
  const KrSerialBridge* const bridge = aBridge != nullptr ? aBridge->GetBridge() : nullptr;
  return aWords + std::to_string(bridge != nullptr ? (bridge->*aCounter)() : 0);
}

} // namespace

BaudRateLabels GetBaudRateLabels(const SerialBridge* aBridge) {
  BaudRateLabels labels;
  if (aBridge == nullptr || aBridge->GetBridge() == nullptr)
    return labels;
  const std::uint32_t current = aBridge->GetBaudRate();
  for (std::size_t index = 0; index < labels.size(); ++index) {
    labels[index].isBold = kBaudRates[index] == current;
    labels[index].isEnabled = aBridge->GetSupportedBaudRates()[index] || labels[index].isBold;
  }
  return labels;
}

BridgeEnabling GetBridgeEnabling(BridgeKind aKind, bool aIsCOMPortSelected) {
  return {.comPort = aKind == BridgeKind::COMPort,
          .configure = aKind == BridgeKind::COMPort && aIsCOMPortSelected,
          .cameraLinkName = aKind == BridgeKind::CameraLinkDLL,
          .statistics = aKind != BridgeKind::None};
}

KrString FormatBytesSent(const SerialBridge* aBridge) {
  return FormatBytes("Bytes sent: ", aBridge, &KrSerialBridge::GetBytesSentToDevice);
}

KrString FormatBytesReceived(const SerialBridge* aBridge) {
  return FormatBytes("Bytes received: ", aBridge, &KrSerialBridge::GetBytesReceivedFromDevice);
}

KrString GetCameraLinkText(const SerialBridge& aBridge) {
  return aBridge.GetKind() == BridgeKind::CameraLinkDLL ? aBridge.GetName() : KrString("Inactive");
}

KrString GetBridgeStateText(const SerialBridge* aBridge, const BridgeSituation& aSituation) {
  if (!aSituation.hasDevice)
    return "There is no device.";
  if (!aSituation.hasPorts)
    return "The device has no serial port.";
  if (aBridge == nullptr)
    return "Choose a port of the device.";
  if (aBridge->GetKind() == BridgeKind::None)
    return {};
  if (aBridge->GetKind() == BridgeKind::COMPort && aBridge->GetCOMPort().IsEmpty())
    return aSituation.hasCOMPorts ? "Choose a COM port." : "The host has no COM port.";
  return aBridge->GetBridge()->GetStateText();
}

} // namespace krgui

#pragma once
// What the serial bridge manager shows of a bridge: which rates are marked, which controls can be used, and its texts.
// The controls themselves are left to the window.

#include "krbase/krstring.h"
#include "logic/serial/baudrates.h"
#include "logic/serial/serialbridge.h"

#include <array>
#include <cstdint>

namespace krgui {

/// How a rate's label looks.
struct BaudRateLabel {
  bool isEnabled = false; ///< The device's port can have the rate, or has it.
  bool isBold = false;    ///< It has it.
};
using BaudRateLabels = std::array<BaudRateLabel, kBaudRates.size()>;

/// In the order of kBaudRates; null for no bridge. Thread: the bridge's.
BaudRateLabels GetBaudRateLabels(const SerialBridge* aBridge);

/// Which controls can be used.
struct BridgeEnabling {
  bool comPort = false; ///< The COM port list, its label, and the description.
  bool configure = false;
  bool cameraLinkName = false;
  bool statistics = false; ///< The counters, and "Reset".
};

/// Of the kind that is checked, and whether a COM port is selected in the list. Thread: any.
BridgeEnabling GetBridgeEnabling(BridgeKind aKind, bool aIsCOMPortSelected);

/// "Bytes sent: 12", 0 for no bridge. Thread: any.
KrString FormatBytesSent(const SerialBridge* aBridge);
KrString FormatBytesReceived(const SerialBridge* aBridge);

/// "Inactive" but for a bridge of the Camera Link functions. Thread: the bridge's.
KrString GetCameraLinkText(const SerialBridge& aBridge);

/// What there is to choose from.
struct BridgeSituation {
  bool hasDevice = false;
  bool hasPorts = false; ///< Of the device.
  bool hasCOMPorts = false;
};

/// What the bridge's state is, or what the user lacks for one; empty while all is well. aBridge: of the port that is
/// selected, null for none. Thread: the bridge's.
KrString GetBridgeStateText(const SerialBridge* aBridge, const BridgeSituation& aSituation);

} // namespace krgui

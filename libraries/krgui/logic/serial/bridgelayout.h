#pragma once
// Where the serial bridge manager's controls lie at a size: four groups one below the other, or, in a low window, the
// counters beside the port. What a control needs is told by whoever has the toolkit.

#include "logic/pixelrect.h"
#include "logic/serial/baudrates.h"

#include <array>

namespace krgui {

/// What the layout starts from, in device-independent pixels.
struct BridgeMetrics {
  int width = 0;
  int height = 0;
  int titleHeight = 0; ///< Of a group, down to where its frame's inside begins.
  int lineHeight = 0;
  int radioHeight = 0;
  int fieldHeight = 0;   ///< Of a list or button.
  int indent = 0;        ///< From a radio button's left edge to its text.
  int radioWidth = 0;    ///< Of the widest one.
  int portListWidth = 0; ///< Of the device's ports.
  int labelWidth = 0;
  int listWidth = 0; ///< Of the COM ports.
  int configureWidth = 0;
  int resetWidth = 0;
  int rateWidth = 0; ///< Of the widest, bold.
};

struct BridgeLayout {
  PixelRect portBox, portList;
  PixelRect setupBox, none, comPortLink, comPortLabel, comPortList, configure, description, cameraLink, cameraLinkName,
      state;
  PixelRect ratesBox;
  std::array<PixelRect, kBaudRates.size()> rates;
  PixelRect statisticsBox, sent, received, reset;
};

/// Thread: any.
BridgeLayout LayOutBridge(const BridgeMetrics& aMetrics);

} // namespace krgui

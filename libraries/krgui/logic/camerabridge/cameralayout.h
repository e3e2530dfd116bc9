#pragma once
// Where the camera bridge manager's controls lie at a size: the setup of a bridge in a column on the left, the camera's
// parameters in all the rest. What a control needs is told by whoever has the toolkit.

#include "logic/pixelrect.h"

namespace krgui {

/// What the layout starts from, in device-independent pixels.
struct CameraMetrics {
  int width = 0;
  int height = 0;
  int titleHeight = 0; ///< Of a group, down to where its frame's inside begins.
  int lineHeight = 0;
  int radioHeight = 0; ///< Of a radio button or check box.
  int fieldHeight = 0; ///< Of a list, edit or button.
  int indent = 0;      ///< From a radio button's left edge to its text.
  int labelWidth = 0;  ///< Of the widest label before a list.
  int buttonWidth = 0; ///< Of the widest button that has words.
  int browseWidth = 0;
  int switchWidth = 0;  ///< Of the widest radio button or check box.
  int statusWidth = 0;  ///< Of a status that is worth being read at once.
  int browserWidth = 0; ///< So much at least, so that the feature browser's own controls are whole.
  bool hasCameraFile = true;
};

struct CameraLayout {
  PixelRect setupBox, ports, none;
  PixelRect clProtocol, templateLabel, templates, probe, probeStatus, clXMLLabel, clXMLs, clConnect, clStatus;
  PixelRect genCP, genCPXMLLabel, genCPXMLs, genCPConnect, genCPStatus;
  PixelRect cameraFile, pathLabel, path, browse, load, fileStatus; ///< Empty without a camera file.
  PixelRect sourceLabel, sources, synchronization, state;
  PixelRect statisticsBox, sent, received, reset, poCL;
  PixelRect browser;
};

/// Thread: any.
CameraLayout LayOutCameraBridge(const CameraMetrics& aMetrics);

} // namespace krgui

#pragma once
// What a user asks of a display's view by menu, key and wheel, and how far each step zooms. Where commands come from,
// and when the window is painted, is left to the window.

#include "logic/display/viewgeometry.h"

namespace krgui {

/// The steps by which the view is enlarged and reduced.
constexpr double kCommandZoomStep = 1.5;
constexpr double kKeyZoomStep = 1.2;
constexpr double kWheelZoomStep = 1.1;

/// The commands of the context menu, by their ids.
enum class ViewCommand : int {
  ZoomOneToOne = 32777,
  CentreHere = 32778,
  ZoomOut = 32779,
  ZoomIn = 32780,
  ZoomFit = 32781,
};

/// Carries a command out; aContextPoint, in device pixels of the client area, is where the right button was pressed
/// last. False for an id that is no command.
bool PerformViewCommand(ViewGeometry& aView, int aCommandID, PixelPoint aContextPoint);

/// Enlarges by a step as often as aCount says, reduces where it is negative.
void ZoomBySteps(ViewGeometry& aView, double aStep, int aCount);

} // namespace krgui

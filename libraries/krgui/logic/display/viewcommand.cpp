#include "logic/display/viewcommand.h"

#include <algorithm>
#include <iterator>

namespace krgui {

namespace {

struct CommandEntry {
  ViewCommand command;
  void (*perform)(ViewGeometry& aView, PixelPoint aContextPoint);
};

constexpr CommandEntry kCommands[] = {
    {ViewCommand::ZoomOneToOne, [](ViewGeometry& aView, PixelPoint) { aView.ZoomOneToOne(); }},
    {ViewCommand::ZoomFit, [](ViewGeometry& aView, PixelPoint) { aView.ZoomFit(); }},
    {ViewCommand::ZoomIn, [](ViewGeometry& aView, PixelPoint) { aView.ZoomIn(kCommandZoomStep); }},
    {ViewCommand::ZoomOut, [](ViewGeometry& aView, PixelPoint) { aView.ZoomOut(kCommandZoomStep); }},
    {ViewCommand::CentreHere, [](ViewGeometry& aView, PixelPoint aContextPoint) { aView.CentreOn(aContextPoint); }},
};

} // namespace

bool PerformViewCommand(ViewGeometry& aView, int aCommandID, PixelPoint aContextPoint) {
  const auto* found =
      std::find_if(std::begin(kCommands), std::end(kCommands),
                   [aCommandID](const CommandEntry& aEntry) { return static_cast<int>(aEntry.command) == aCommandID; });
  if (found == std::end(kCommands))
    return false;
  found->perform(aView, aContextPoint);
  return true;
}

void ZoomBySteps(ViewGeometry& aView, double aStep, int aCount) {
  for (int i = 0; i < aCount; ++i)
    aView.ZoomIn(aStep);
  for (int i = 0; i > aCount; --i)
    aView.ZoomOut(aStep);
}

} // namespace krgui

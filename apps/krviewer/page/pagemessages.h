#pragma once
// What the title and the bar of a camera's page say of the camera's state, and what they offer to do about it.

#include "acquisition/acquisitionprogress.h"
#include "acquisition/advice.h"
#include "krbase/krstringlist.h"
#include "page/messagebar.h"

#include <QString>

#include <functional>

namespace krviewer {

/// A camera as its page knows it.
struct PageState {
  QString name; ///< Of the camera.
  const AcquisitionProgress& progress;
  const Advice& advice;   ///< What there is to say of that.
  bool isLeaving = false; ///< It is being given back.
  bool isAway = false;    ///< It is given back.
  bool isWorking = false; ///< Cameras behind its ports are asked.
};

/// What the bar's buttons do.
struct PageRemedies {
  std::function<void()> connect;
  std::function<void()> disconnect;
  std::function<void()> start;
  std::function<void()> find;
  std::function<void()> restart;
  std::function<void()> trigger;
  std::function<void()> setAddress;
};

/// The first of several lines, and how many more there are.
QString JoinLines(const KrStringList& aLines);
/// The name, and the state where it is another than streaming.
QString MakePageTitle(const PageState& aState);
/// Empty where all is well.
BarMessage MakePageMessage(const PageState& aState, const PageRemedies& aRemedies);

} // namespace krviewer

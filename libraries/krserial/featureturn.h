#pragma once
// Keeps the steps of all lines of a device apart, and the selectors that they share in order. What a step does is left
// to the lines.

#include "ifeatureline.h"
#include "krbase/krturnmutex.h"

#include <functional>
#include <mutex>

namespace krserial {

/// Thread: any. Ownership: shared by the lines' channels; borrows a line from its step to the next Forget of it.
class FeatureTurn {
public:
  /// Does a step of a line while no other is done; a line that had its turn before has put its selectors back by then.
  KrResult Run(IFeatureLine& aLine, const std::function<KrResult(IFeatureLine&)>& aStep) {
    const std::lock_guard turn(mMutex);
    if (mLast && mLast != &aLine)
      mLast->Rest();
    mLast = &aLine;
    return aStep(aLine);
  }
  /// A line ends.
  void Forget(const IFeatureLine& aLine) {
    const std::lock_guard turn(mMutex);
    if (mLast == &aLine)
      mLast = nullptr;
  }

private:
  KrTurnMutex mMutex; // Guards the line, and the selectors of the device; held while the device is asked.
  IFeatureLine* mLast = nullptr;
};

} // namespace krserial

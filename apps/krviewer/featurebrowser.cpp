#include "featurebrowser.h"

namespace krviewer {

void FeatureBrowser::Follow(LentParameters& aParameters) {
  if (aParameters.IsWantedBack())
    GiveBack(aParameters);
  if (KrGenParameterArray* const parameters = aParameters.Borrow())
    mWindow.SetGenParameterArray(parameters);
}

void FeatureBrowser::GiveBack(LentParameters& aParameters) {
  // It returns when nothing of the window reads the parameters any more.
  mWindow.SetGenParameterArray(nullptr);
  aParameters.GiveBack();
}

} // namespace krviewer

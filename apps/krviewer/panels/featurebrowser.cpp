#include "panels/featurebrowser.h"

namespace krviewer {

void FeatureBrowser::Follow(Loan<KrGenParameterArray>& aParameters) {
  if (aParameters.IsWantedBack())
    GiveBack(aParameters);
  if (KrGenParameterArray* const parameters = aParameters.Borrow())
    mWindow.SetGenParameterArray(parameters);
}

void FeatureBrowser::GiveBack(Loan<KrGenParameterArray>& aParameters) {
  // It returns when nothing of the window reads the parameters any more.
  mWindow.SetGenParameterArray(nullptr);
  aParameters.GiveBack();
}

} // namespace krviewer

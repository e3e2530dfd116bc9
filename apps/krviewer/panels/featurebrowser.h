#pragma once
// The feature browser beside the picture: shows the parameters that the camera's thread lends, and gives them back when
// they are wanted. The picture is left to the viewer.

#include "acquisition/loan.h"
#include "krgenicam/krgenparameterarray.h"
#include "krgui/krgenbrowserwnd.h"

namespace krviewer {

/// Thread: user interface. Ownership: borrows what lends the parameters, to which all are given back before either
/// ends.
class FeatureBrowser {
public:
  KrGenBrowserWnd& GetWindow() { return mWindow; }
  /// Shows what is lent, and gives back what is wanted back; to be called often.
  void Follow(Loan<KrGenParameterArray>& aParameters);
  /// Shows nothing any more and gives back what was borrowed.
  void GiveBack(Loan<KrGenParameterArray>& aParameters);

private:
  KrGenBrowserWnd mWindow;
};

} // namespace krviewer

#pragma once
// Sets a camera that is back as it was set before it was lost, where it is not. What that was is left to KeptSettings.

#include "acquisition/keptsetting.h"
#include "krbase/krstringlist.h"

#include <cstddef>
#include <stop_token>
#include <vector>

namespace krviewer {

/// What came of it.
struct SettingsReturned {
  std::size_t set = 0;    ///< Values that were not as before, and are now; of several tries all.
  KrStringList different; ///< What is not as before, in a sentence each; empty where all is.
};

/// One return. Only values that differ are written, and in what order they can be is found out. A feature that the
/// camera does not have any more, or refuses, costs nothing but itself.
///
/// Thread: any one. Ownership: borrows the parameters, which nobody else uses meanwhile.
class SettingsReturn {
public:
  explicit SettingsReturn(KrGenParameterArray& aParameters) : mParameters(aParameters) {}

  /// ConnectionLost when the camera is lost, Aborted when aStop ended it, and nothing is said of what came of it.
  /// TimeLimitExceeded when it did not always answer in time, so that another return may do more. OK else, whatever
  /// could not be set.
  KrResult Run(const std::vector<KeptSetting>& aSettings, const std::stop_token& aStop, SettingsReturned& aReturned);

private:
  KrResult FindDifferent(const std::vector<KeptSetting>& aSettings);
  KrResult Compare(const KeptSetting& aSetting, bool& aIsSame, KrString& aFound);
  KrResult Read(const KeptSetting& aSetting, KrString& aFound);
  KrResult MoveSelectors(const std::vector<KrGenSetting>& aPositions);
  KrResult Write(const std::stop_token& aStop);
  KrResult Verify(SettingsReturned& aReturned);
  void PutSelectors(const std::vector<KeptSetting>& aSettings);
  bool IsRuledByAnother(const KeptSetting& aSetting);

  KrGenParameterArray& mParameters;
  bool mIsSlow = false; ///< Whether something was not answered in time.
  std::vector<KeptSetting> mDifferent;
  std::vector<KrGenSetting> mMoved; ///< Selectors that were moved, and where they stood.
};

} // namespace krviewer

#include "map/settingsprogress.h"

#include "krbase/krlogger.h"

#include <algorithm>
#include <exception>

namespace krgenicam {

namespace {

void LogException(const char* aWhat) {
  KrLogger("KrGenICam")
      .Log(KrLogLevel::Error, {"SettingsProgress::Tell", "settingsprogress"},
           KrString("The progress of settings threw an exception, which ends them: ") + aWhat);
}

} // namespace

void SettingsProgress::SetDone(std::size_t aDone) {
  mDone = std::clamp(aDone, mDone, std::max(mDone, mTotal));
}

bool SettingsProgress::Tell() {
  if (mProgress && !mIsCancelled)
    mIsCancelled = !Ask();
  return !mIsCancelled;
}

bool SettingsProgress::Ask() const {
  try {
    return mProgress(mDone, mTotal);
  } catch (const std::exception& error) {
    LogException(error.what());
  } catch (...) {
    LogException("it is of unknown type.");
  }
  return false;
}

} // namespace krgenicam

#include "parameterlock.h"

#include "krbase/krlogger.h"

namespace krdevice {

namespace {

constexpr const char* kName = "TLParamsLocked";

void Note(const KrString& aText) {
  KrLogger("KrDevice").Log(KrLogLevel::Info, {"ParameterLock", "parameterlock"}, aText);
}

// Does nothing where there is no lock, or it cannot be set.
void Set(KrGenParameterArray& aArray, bool aIsLocked) {
  KrGenInteger* const lock = aArray.GetInteger(kName);
  if (!lock || !lock->IsWritable())
    return;
  const KrResult set = lock->SetValue(aIsLocked ? 1 : 0);
  if (!set.IsOK())
    Note(KrString(kName) + " could not be set: " + set.GetDescription());
}

} // namespace

void ParameterLock::Acquire() {
  const std::lock_guard lock(mMutex);
  if (mStreams++ > 0)
    return;
  KrGenParameterArray* array = nullptr;
  if (const KrResult got = mParameters.Get(array); !got.IsOK()) {
    Note("A stream starts without locking parameters: " + got.GetDescription());
    return;
  }
  mLocked = array;
  Set(*array, true);
}

void ParameterLock::ForgetValues() {
  if (KrGenParameterArray* const array = mParameters.Find())
    array->InvalidateCache();
}

void ParameterLock::Release() {
  const std::lock_guard lock(mMutex);
  if (--mStreams == 0) {
    if (KrGenParameterArray* const array = mLocked.exchange(nullptr))
      Set(*array, false);
  }
  ForgetValues();
}

void ParameterLock::ReleaseAtEnd() {
  KrGenParameterArray* const array = mLocked.exchange(nullptr);
  if (!array)
    return;
  array->Cancel();
  Set(*array, false);
}

} // namespace krdevice

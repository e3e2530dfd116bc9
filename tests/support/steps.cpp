#include "steps.h"

#include <utility>

namespace krtest {

void Steps::Begin() {
  const std::lock_guard lock(mMutex);
  mCount = 0;
  mFaultyStep.reset();
  mFault = {};
  mIsCounting = true;
  mHasFailed = false;
  mUsedCount.reset();
  mFaulty.clear();
  mLast.clear();
}

void Steps::BeginWithFault(std::uint64_t aStep, StepFault aFault) {
  Begin();
  const std::lock_guard lock(mMutex);
  mFaultyStep = aStep;
  mFault = std::move(aFault);
}

KrResult Steps::Take(const std::string& aWhat, const std::function<KrResult()>& aRun) {
  const std::optional<StepFault> fault = Enter(aWhat);
  if (fault && fault->cause)
    fault->cause();
  if (!fault || fault->result.IsOK())
    return aRun();
  if (fault->isCarriedOut)
    (void)aRun(); // Nobody hears what came of it.
  return fault->result;
}

// The fault that this step has; without its cause where that has come before.
std::optional<StepFault> Steps::Enter(const std::string& aWhat) {
  const std::lock_guard lock(mMutex);
  if (!mIsCounting)
    return std::nullopt;
  const std::uint64_t step = mCount++;
  mLast = "step " + std::to_string(step) + ", " + aWhat;
  if (!mFaultyStep || step < *mFaultyStep)
    return std::nullopt;
  if (step == *mFaultyStep) {
    mHasFailed = true;
    mFaulty = mLast;
    return mFault;
  }
  if (!mFault.lasts)
    return std::nullopt;
  StepFault further = mFault;
  further.cause = nullptr;
  return further;
}

void Steps::SetCounting(bool aIsOn) {
  const std::lock_guard lock(mMutex);
  mIsCounting = aIsOn;
}

void Steps::NoteUsed() {
  const std::lock_guard lock(mMutex);
  mUsedCount = mUsedCount.value_or(mCount);
}

std::uint64_t Steps::GetCount() const {
  const std::lock_guard lock(mMutex);
  return mCount;
}

bool Steps::HasFailed() const {
  const std::lock_guard lock(mMutex);
  return mHasFailed;
}

std::uint64_t Steps::GetUsedCount() const {
  const std::lock_guard lock(mMutex);
  return mUsedCount.value_or(mCount);
}

std::string Steps::Describe() const {
  const std::lock_guard lock(mMutex);
  return "fault at " + (mHasFailed ? mFaulty : std::string("no step")) + "; last " + mLast;
}

} // namespace krtest

#include "faultlab.h"

#include "caselimit.h"
#include "krsystem/transportregistry.h"

#include <algorithm>
#include <utility>

namespace krtest {

namespace {

std::shared_ptr<krsystem::ITransport> RegisterStepped(std::shared_ptr<krsystem::ITransport> aLab, Steps& aSteps) {
  std::shared_ptr<krsystem::ITransport> stepped = MakeSteppedTransport(std::move(aLab), aSteps);
  krsystem::RegisterTransport(stepped);
  return stepped;
}

// All steps, or so many of them from the first to the last.
std::vector<std::uint64_t> ChooseSteps(std::uint64_t aCount, std::uint64_t aMost) {
  const std::uint64_t chosen = std::min(aCount, aMost);
  std::vector<std::uint64_t> steps;
  for (std::uint64_t i = 0; i < chosen; ++i)
    steps.push_back(chosen == 1 ? 0 : i * (aCount - 1) / (chosen - 1));
  return steps;
}

} // namespace

bool IsForGood(DeviceFault aFault) {
  return aFault == DeviceFault::Vanishes || aFault == DeviceFault::LosesPower || aFault == DeviceFault::StaysSilent;
}

testing::AssertionResult SaysWhatHappened(const KrResult& aResult, const Words& aNames, const Words& aAdvice) {
  if (aResult.IsOK())
    return testing::AssertionFailure() << "it succeeded";
  if (aResult.GetDescription().IsEmpty())
    return testing::AssertionFailure() << aResult.GetCodeString().CStr() << " without a word";
  const std::string text = aResult.GetDescription().ToUtf8();
  const auto isThere = [&text](const std::string& aWord) { return text.find(aWord) != std::string::npos; };
  if (!aNames.empty() && std::ranges::none_of(aNames, isThere))
    return testing::AssertionFailure() << "of what it is, is not said: " << text;
  if (!aAdvice.empty() && std::ranges::none_of(aAdvice, isThere))
    return testing::AssertionFailure() << "what to do is not said: " << text;
  return testing::AssertionSuccess();
}

FaultLab::FaultLab(std::shared_ptr<krtransport::ICameraClock> aClock, const krtransport::Lab& aLab, const char* aCamera)
    : mLab(std::make_shared<krtransport::SimulationTransport>(aLab, std::move(aClock))),
      mStepped(RegisterStepped(mLab, mSteps)), mCamera(aCamera), mFaults(mLab->GetFaults(aCamera)) {
  mSystem.SetSubnetBroadcastEnabled(false);
  EXPECT_TRUE(mSystem.Find().IsOK());
  for (std::size_t i = 0; i < mSystem.GetDeviceCount(); ++i)
    if (mSystem.GetDeviceInfo(i)->GetUniqueID() == aCamera)
      mInfo = mSystem.GetDeviceInfo(i);
  EXPECT_NE(mInfo, nullptr) << aCamera;
  mNames = {MakeName(), kFaultAddress};
}

// As the transport has it.
std::string FaultLab::MakeName() const {
  return (mInfo->GetModelName() + " " + mInfo->GetSerialNumber()).ToUtf8();
}

FaultLab::~FaultLab() {
  krsystem::UnregisterTransport(mStepped);
}

KrResult FaultLab::Open(std::unique_ptr<KrDevice>& aDevice) {
  return KrDevice::Open(*mInfo, KrDeviceAccess::Control, aDevice);
}

StepFault FaultLab::MakeFault(DeviceFault aFault) {
  const KrString name = MakeName();
  const KrResult silence(KrResult::Code::TimeLimitExceeded,
                         name + ": it did not answer in time; check its cable and its power.");
  switch (aFault) {
  case DeviceFault::Vanishes:
    return {.cause = [this] { mFaults->Disappear(); }};
  case DeviceFault::LosesPower:
    return {.cause = [this] { mFaults->LosePower(); }};
  case DeviceFault::TimesOut:
    return {.result = silence};
  case DeviceFault::AnswersLate:
    return {.result = silence, .isCarriedOut = true};
  case DeviceFault::StaysSilent:
    return {.result = silence, .lasts = true};
  case DeviceFault::Refuses:
    return {.result =
                KrResult(KrResult::Code::ProtocolError, name + ": it refused, as of a local problem; try again.")};
  }
  return {};
}

void FaultLab::EndFault() {
  mSteps.Begin();
  mFaults->EndRegisterFaults();
  mFaults->EndSerialFaults();
  mFaults->EndFrameFaults();
  mFaults->Return();
}

void FaultLab::TryAtEachStep(DeviceFault aFault, const Use& aUse, std::uint64_t aMostSteps) {
  mAdvice = kDeviceAdvice;
  TryAtEachStep(MakeFault(aFault), aUse, aMostSteps, IsForGood(aFault));
}

void FaultLab::TryAtEachStep(const StepFault& aFault, const Use& aUse, std::uint64_t aMostSteps, bool aIsForGood) {
  mSteps.Begin();
  const KrResult well = aUse();
  ASSERT_TRUE(well.IsOK()) << well.GetCodeString().CStr() << ": " << well.GetDescription().CStr();
  const std::uint64_t count = mSteps.GetCount();
  const std::uint64_t usedCount = mSteps.GetUsedCount();
  ASSERT_GT(count, 0U);

  int faults = 0;
  int failedUses = 0;
  for (const std::uint64_t step : ChooseSteps(count, aMostSteps)) {
    const CaseLimit limit([this] { return mSteps.Describe(); });
    mSteps.BeginWithFault(step, aFault);
    const KrResult hurt = aUse();
    const std::string where = mSteps.Describe() + " of " + std::to_string(count);
    faults += mSteps.HasFailed() ? 1 : 0;
    failedUses += hurt.IsOK() ? 0 : 1;
    // What came with the last step may have come before the fault, and bytes of a line may come with fewer steps than
    // they did when all was well.
    const bool isUsedOn = step + 1 < mSteps.GetUsedCount() || 2 * (step + 1) < usedCount;
    const bool mustFail = aIsForGood && mSteps.HasFailed() && isUsedOn;
    if (mustFail || !hurt.IsOK()) {
      EXPECT_TRUE(SaysWhatHappened(hurt, mNames, mAdvice)) << where;
    }

    EndFault();
    const KrResult again = aUse();
    ASSERT_TRUE(again.IsOK()) << "not usable afterwards: " << again.GetCodeString().CStr() << ": "
                              << again.GetDescription().CStr() << "; " << where;
    if (HasNonfatalFailure())
      return;
  }
  EXPECT_GT(faults, 0);
  RecordProperty("steps", static_cast<int>(count));
  RecordProperty("faults", faults);
  RecordProperty("failed_uses", failedUses);
}

} // namespace krtest

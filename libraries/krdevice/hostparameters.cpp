#include "hostparameters.h"

#include <algorithm>
#include <utility>

namespace krdevice {

namespace {

krsystem::HostFeatureInfo DescribeReset(std::string_view aName, std::string_view aCategory) {
  return {.name = aName,
          .category = aCategory,
          .kind = krsystem::HostFeatureKind::Command,
          .tip = "Has all counters of this list begin at 0. Others who read them elsewhere keep theirs."};
}

} // namespace

HostParameters::HostParameters(FeatureModule aModule, std::function<krsystem::HostFeatures()> aMake)
    : mModule(aModule), mMake(std::move(aMake)) {}

KrResult HostParameters::Get(KrGenParameterArray*& aArray) {
  const std::lock_guard lock(mMutex);
  if (mIsClosed)
    return {KrResult::Code::ConnectionLost,
            "Asking for the parameters of " + KrString(mModule.tip) + ": it is being closed."};
  if (!mMade) {
    if (const KrResult made = Make(); !made.IsOK())
      return {made.GetCode(),
              "Making the parameters of " + KrString(mModule.tip) + " failed: " + made.GetDescription()};
  }
  aArray = mMade->array.get();
  return {};
}

KrResult HostParameters::Make() {
  krsystem::HostFeatures features = mMake();
  const auto counter = std::ranges::find_if(features, [](const auto& aFeature) { return aFeature.info.isCounter; });
  auto owner = std::make_shared<HostFeaturePort*>(nullptr);
  if (counter != features.end() && !mModule.reset.empty())
    features.push_back(krsystem::MakeHostCommand(DescribeReset(mModule.reset, counter->info.category),
                                                 [owner] { return (*owner)->ResetCounters(); }));
  auto made = std::make_unique<Made>(std::move(features));
  *owner = &made->port;
  KrGenDescription description;
  KrResult result = KrGenDescription::ReadFromMemory(WriteFeatureDescription(mModule, made->features),
                                                     KrString(mModule.model), description);
  if (result.IsOK())
    result = KrGenParameterArray::Open(description, made->port, {}, made->array);
  if (result.IsOK())
    mMade = std::move(made);
  return result;
}

HostParameters::Made* HostParameters::Find() {
  const std::lock_guard lock(mMutex);
  return mMade.get();
}

void HostParameters::ForgetValues() {
  if (Made* const made = Find())
    made->array->InvalidateCache();
}

void HostParameters::ForgetReset() {
  if (Made* const made = Find())
    made->port.ForgetReset();
}

void HostParameters::Close() {
  const std::lock_guard lock(mMutex);
  mIsClosed = true;
  if (mMade)
    mMade->array->Close();
}

} // namespace krdevice

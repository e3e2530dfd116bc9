#include "map/parameterwatch.h"

#include <utility>

namespace krgenicam {

KrResult ParameterWatch::Register(KrGenEventSink* aSink, std::uint64_t aEpoch) {
  // The sink may be asked for at once, before it knows anything.
  const std::lock_guard lock(mMutex);
  KrResult result = mSinks.Register(aSink);
  if (result.IsOK())
    mKnowledge[aSink] = {.known = {.epoch = aEpoch}};
  return result;
}

void ParameterWatch::TellNewSinks(const Known& aKnown) {
  const std::lock_guard lock(mMutex);
  for (auto& [sink, knowledge] : mKnowledge) {
    if (!knowledge.known.snapshot && knowledge.firstChange == 0)
      knowledge.known = aKnown;
  }
}

KrResult ParameterWatch::Unregister(KrGenEventSink* aSink) {
  {
    const std::lock_guard lock(mMutex);
    mKnowledge.erase(aSink);
  }
  return mSinks.Unregister(aSink);
}

void ParameterWatch::OnWelcome(std::uint64_t aEpoch) {
  mWasAsked = WasAsked();
  mWelcomeEpoch = aEpoch;
}

bool ParameterWatch::OnInvalidated(std::uint64_t aEpoch, Invalidation aCause) {
  const std::lock_guard lock(mMutex);
  mWritesCount += aCause == Invalidation::Write ? 1 : 0;
  // Who has read the parameter may know a value that is not the device's any more.
  const bool isChange = aCause == Invalidation::Write || WasAsked();
  bool isWanted = aCause == Invalidation::Poll;
  for (auto& [sink, knowledge] : mKnowledge) {
    if (isChange && !knowledge.known.snapshot && knowledge.firstChange == 0)
      knowledge.firstChange = aEpoch;
    isWanted = isWanted || knowledge.known.snapshot || knowledge.firstChange != 0;
  }
  return isWanted;
}

std::uint64_t ParameterWatch::GetWritesCount() const {
  const std::lock_guard lock(mMutex);
  return mWritesCount;
}

void ParameterWatch::Notify(const Known& aKnown) {
  mSinks.Notify([this, &aKnown](KrGenEventSink& aSink) {
    if (Learn(aSink, aKnown))
      aSink.OnParameterUpdate(&mParameter);
  });
}

bool ParameterWatch::Learn(KrGenEventSink& aSink, const Known& aKnown) {
  const std::lock_guard lock(mMutex);
  const auto found = mKnowledge.find(&aSink);
  // A sink may have been registered since, and know better.
  if (found == mKnowledge.end() || found->second.known.epoch > aKnown.epoch)
    return false;
  const Knowledge former = std::exchange(found->second, {.known = aKnown});
  if (former.known.snapshot)
    return *former.known.snapshot != *aKnown.snapshot;
  return former.firstChange != 0 && former.firstChange < aKnown.epoch;
}

} // namespace krgenicam

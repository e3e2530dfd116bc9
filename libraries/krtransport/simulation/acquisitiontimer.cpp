#include "simulation/acquisitiontimer.h"

#include <algorithm>

namespace krtransport {

namespace {

// How many edges come before a time: those at offset, offset + period and so on.
std::uint64_t CountBefore(std::uint64_t aTimeNs, std::uint64_t aOffsetNs, std::uint64_t aPeriodNs) {
  return aTimeNs <= aOffsetNs ? 0 : (aTimeNs - aOffsetNs - 1) / aPeriodNs + 1;
}

std::uint64_t CountEdgesBefore(std::uint64_t aTimeNs, TriggerEdge aEdge, std::uint64_t aPeriodNs) {
  const std::uint64_t rising = aEdge != TriggerEdge::Falling ? CountBefore(aTimeNs, 0, aPeriodNs) : 0;
  const std::uint64_t falling = aEdge != TriggerEdge::Rising ? CountBefore(aTimeNs, aPeriodNs / 2, aPeriodNs) : 0;
  return rising + falling;
}

// The first edge at a time or later.
std::uint64_t FindEdge(std::uint64_t aTimeNs, TriggerEdge aEdge, std::uint64_t aPeriodNs) {
  const std::uint64_t half = aPeriodNs / 2;
  const std::uint64_t rising = CountBefore(aTimeNs, 0, aPeriodNs) * aPeriodNs;
  const std::uint64_t falling = CountBefore(aTimeNs, half, aPeriodNs) * aPeriodNs + half;
  if (aEdge == TriggerEdge::Any)
    return std::min(rising, falling);
  return aEdge == TriggerEdge::Rising ? rising : falling;
}

const TriggerSettings& GetTrigger(const TimingSettings& aSettings, TriggerKind aKind) {
  return aSettings.triggers[static_cast<std::size_t>(aKind)];
}

bool IsBySoftware(const TriggerSettings& aTrigger) {
  return aTrigger.isOn && !aTrigger.isFromLine;
}

Exposure MakeExposure(std::uint64_t aTriggerNs, std::uint64_t aDelayNs, const TimingSettings& aSettings) {
  const std::uint64_t begin = aTriggerNs + aDelayNs;
  return {begin, begin + aSettings.exposureNs, aTriggerNs};
}

// What is later, but never below 0.
std::uint64_t Subtract(std::uint64_t aTimeNs, std::uint64_t aLessNs) {
  return aTimeNs > aLessNs ? aTimeNs - aLessNs : 0;
}

} // namespace

void AcquisitionTimer::Start(std::uint64_t aNowNs) {
  if (mStartNs)
    return;
  *this = {};
  mStartNs = aNowNs;
}

void AcquisitionTimer::Stop() {
  mStartNs.reset();
  mFrameTriggersNs.clear();
}

std::optional<std::uint64_t> AcquisitionTimer::GetBegin(const TimingSettings& aSettings) const {
  const TriggerSettings& trigger = GetTrigger(aSettings, TriggerKind::AcquisitionStart);
  if (!mStartNs || !trigger.isOn)
    return mStartNs;
  if (trigger.isFromLine)
    return FindEdge(*mStartNs, trigger.edge, aSettings.linePeriodNs) + trigger.delayNs;
  return mStartTriggerNs ? std::optional(*mStartTriggerNs + trigger.delayNs) : std::nullopt;
}

bool AcquisitionTimer::IsAwaited(TriggerKind aKind, std::uint64_t aNowNs, const TimingSettings& aSettings) const {
  const TriggerSettings& trigger = GetTrigger(aSettings, aKind);
  if (!mStartNs || !IsBySoftware(trigger))
    return false;
  if (aKind == TriggerKind::AcquisitionStart)
    return !mStartTriggerNs;
  const std::optional<std::uint64_t> begin = GetBegin(aSettings);
  if (!begin || aNowNs < *begin)
    return false;
  if (aSettings.framesPerStart != 0 && mFrames + mFrameTriggersNs.size() >= aSettings.framesPerStart)
    return false;
  if (!mFrameTriggersNs.empty())
    return aNowNs >= MakeExposure(mFrameTriggersNs.back(), trigger.delayNs, aSettings).endNs;
  return !mLast || aNowNs >= mLast->endNs;
}

void AcquisitionTimer::TriggerBySoftware(TriggerKind aKind, std::uint64_t aNowNs, const TimingSettings& aSettings) {
  if (!IsAwaited(aKind, aNowNs, aSettings))
    ++mMissedTriggers;
  else if (aKind == TriggerKind::AcquisitionStart)
    mStartTriggerNs = aNowNs;
  else
    mFrameTriggersNs.push_back(aNowNs);
}

void AcquisitionTimer::ApplySettings(const TimingSettings& aSettings) {
  if (!IsBySoftware(GetTrigger(aSettings, TriggerKind::FrameStart)))
    mFrameTriggersNs.clear();
}

std::optional<Exposure> AcquisitionTimer::GetNextExposure(std::uint64_t aNowNs, const TimingSettings& aSettings) const {
  const std::optional<std::uint64_t> begin = GetBegin(aSettings);
  if (!begin)
    return std::nullopt;
  const TriggerSettings& trigger = GetTrigger(aSettings, TriggerKind::FrameStart);
  if (!trigger.isOn) {
    const std::uint64_t wanted = mLast ? std::max(*begin, mLast->beginNs + aSettings.periodNs) : *begin;
    return MakeExposure(std::max(wanted, Subtract(aNowNs, aSettings.periodNs)), 0, aSettings);
  }
  if (!trigger.isFromLine)
    return mFrameTriggersNs.empty() ? std::nullopt
                                    : std::optional(MakeExposure(mFrameTriggersNs.front(), trigger.delayNs, aSettings));
  const std::uint64_t latenessNs = trigger.delayNs + aSettings.exposureNs + aSettings.linePeriodNs;
  const std::uint64_t readyNs = std::max({*begin, mLast ? mLast->endNs : 0, Subtract(aNowNs, latenessNs)});
  return MakeExposure(FindEdge(readyNs, trigger.edge, aSettings.linePeriodNs), trigger.delayNs, aSettings);
}

bool AcquisitionTimer::EndExposure(const Exposure& aExposure, const TimingSettings& aSettings) {
  if (!mStartNs || aExposure.beginNs < *mStartNs)
    return false;
  const TriggerSettings& trigger = GetTrigger(aSettings, TriggerKind::FrameStart);
  if (!mFrameTriggersNs.empty() && mFrameTriggersNs.front() == aExposure.triggerNs)
    mFrameTriggersNs.pop_front();
  if (trigger.isOn && trigger.isFromLine) {
    const auto count = [&](std::uint64_t aTimeNs) {
      return CountEdgesBefore(aTimeNs, trigger.edge, aSettings.linePeriodNs);
    };
    const std::uint64_t fromNs = mLast ? mUncountedFromNs : aExposure.triggerNs;
    mMissedTriggers += static_cast<std::uint32_t>(count(aExposure.triggerNs) - count(fromNs));
  }
  mUncountedFromNs = aExposure.triggerNs + 1;
  mLast = aExposure;
  ++mFrames;
  if (aSettings.framesPerStart != 0 && mFrames >= aSettings.framesPerStart)
    Stop();
  return true;
}

} // namespace krtransport

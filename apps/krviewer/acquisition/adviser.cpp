#include "acquisition/adviser.h"

#include <algorithm>

namespace krviewer {

namespace {

constexpr std::uint64_t kSlowConnectionMs = 4000;
constexpr std::uint64_t kSilenceMs = 3000;
constexpr std::uint64_t kSilentIntervals = 3;
constexpr std::uint64_t kSecondMs = 1000;
constexpr std::size_t kRecentSeconds = 5;
constexpr std::ptrdiff_t kLossySeconds = 3;
constexpr std::size_t kCalmSeconds = 10;
constexpr std::uint64_t kSmoothRate = 20; ///< Frames a second; a screen shows no more than its own rate.
constexpr std::uint64_t kFewDropped = 10; ///< One in so many frames that is not shown is no trouble to anybody.

const char* GetLinkAdvice(CameraLink aLink) {
  switch (aLink) {
  case CameraLink::GigEVision:
    return "Packets are lost between the camera and this computer. Use jumbo frames (MTU 9000) and the largest packet "
           "size that passes, let sockets buffer more (net.core.rmem_max), and have fewer cameras on one link; a lower "
           "frame rate or a packet delay helps, too.";
  case CameraLink::USB3Vision:
    return "Frames come with parts missing. Connect the camera to a USB 3 port of the computer itself, with a short "
           "cable, and let USB transfers have more memory (usbfs_memory_mb); a lower frame rate helps, too.";
  case CameraLink::Other:
    break;
  }
  return "Frames come with parts missing. Check the cable, and lower the frame rate.";
}

// Where what is counted begins anew, all of it is new.
std::uint64_t CountSince(std::uint64_t aNow, std::uint64_t aBefore) {
  return aNow >= aBefore ? aNow - aBefore : aNow;
}

Advice AdviseOnLoss(const AcquisitionProgress& aProgress, CameraLink aLink) {
  if (!aProgress.strayAddress.IsEmpty())
    return {"The camera is back as " + aProgress.strayAddress +
                ", an address that this computer does not reach it at. Give it an address of its network adapter's "
                "subnet; it is shown again then.",
            {Remedy::ConfigureIP, Remedy::Disconnect}};
  if (aProgress.isRefused)
    return {"The camera is back, but cannot be started. That is tried again until it can.\n" +
                aProgress.result.GetDescription(),
            {Remedy::Disconnect}};
  const KrString anywhere = aLink == CameraLink::GigEVision ? ", also with another address.\n" : ".\n";
  return {"The camera is lost; it is shown again as soon as it is back" + anywhere + aProgress.result.GetDescription(),
          {Remedy::Disconnect, Remedy::OpenFinder}};
}

// A description that came late is none the worse for it.
bool IsLate(const KrResult& aParameters) {
  return aParameters == KrResult::Code::TimeLimitExceeded || aParameters == KrResult::Code::Busy;
}

Advice AdviseOnDescription(const KrResult& aParameters) {
  if (aParameters.IsOK())
    return {};
  if (IsLate(aParameters))
    return {"The camera's features cannot be shown, as it did not answer in time when its description was read: " +
                aParameters.GetDescription() +
                " Frames come without them. Try again; where that does not help, check its cable, and what else "
                "uses its network.",
            {Remedy::TryAgain}};
  return {
      "The camera's features cannot be shown: " + aParameters.GetDescription() +
          " Frames come without them. Where another try does not help, `krtool features CAMERA --faults` lists what "
          "is wrong with its description; ask its maker for newer firmware.",
      {Remedy::TryAgain}};
}

Advice AdviseOnAnswers(const AcquisitionProgress& aProgress) {
  if (!aProgress.isSlow)
    return {};
  return {"The camera is slow to answer: its features are shown and set late. Check its cable, and what else uses its "
          "network; where frames take all of the link, a lower frame rate or a packet delay helps."};
}

// Without a description that can be used most cameras cannot be started: what is missing then says little without it.
Advice AdviseOnConnected(const AcquisitionProgress& aProgress) {
  if (aProgress.result.IsOK())
    return aProgress.parameters.IsOK() ? AdviseOnAnswers(aProgress) : AdviseOnDescription(aProgress.parameters);
  const KrString silence = "The camera sends no frames: " + aProgress.result.GetDescription();
  if (aProgress.parameters.IsOK())
    return {silence, {Remedy::Start}};
  const KrString remedy = IsLate(aProgress.parameters)
                              ? " It did not answer in time. Try again; where that does not help, check its cable, and "
                                "what else uses its network."
                              : " Where another try does not help, ask its maker for newer firmware.";
  return {silence + "\nNor can its features be shown: " + aProgress.parameters.GetDescription() + remedy,
          {Remedy::TryAgain}};
}

} // namespace

const Advice& Adviser::Look(const CameraSituation& aSituation) {
  if (mState != aSituation.progress.state)
    BeginState(aSituation);
  switch (aSituation.progress.state) {
  case AcquisitionState::Failed:
    mAdvice = AdviseOnFailure(aSituation);
    break;
  case AcquisitionState::Connecting:
    mAdvice = AdviseOnSlowness(aSituation);
    break;
  case AcquisitionState::Connected:
    mAdvice = AdviseOnConnected(aSituation.progress);
    break;
  case AcquisitionState::Streaming:
    mAdvice = AdviseOnStream(aSituation);
    break;
  case AcquisitionState::Lost:
    mAdvice = AdviseOnLoss(aSituation.progress, aSituation.link);
    break;
  default:
    mAdvice = {};
  }
  return mAdvice;
}

void Adviser::BeginState(const CameraSituation& aSituation) {
  mState = aSituation.progress.state;
  mStateMs = mFrameMs = mSecondMs = aSituation.nowMs;
  mFrames = aSituation.progress.figures.GetFrames();
  mGapMs = mAskedMs = 0;
  mExpected = {};
  mBefore = aSituation.progress;
  mDroppedBefore = aSituation.droppedByDisplay;
  mSeconds.clear();
  std::ranges::fill(mIsTold, false);
}

Advice Adviser::AdviseOnFailure(const CameraSituation& aSituation) const {
  const KrResult& result = aSituation.progress.result;
  if (aSituation.isForeignSubnet)
    return {"The camera's address is of another subnet than the network adapter it is connected to. " +
                result.GetDescription(),
            {Remedy::ConfigureIP, Remedy::TryAgain}};
  if (result == KrResult::Code::AccessDenied && aSituation.link == CameraLink::GigEVision)
    return {result.GetDescription() +
                " It may be open in another program on this computer, or on another one: one that "
                "died keeps it for some seconds.",
            {Remedy::TryAgain, Remedy::OpenFinder}};
  if (result == KrResult::Code::AccessDenied && aSituation.link == CameraLink::USB3Vision)
    return {result.GetDescription() + " Users need a right for USB cameras: a udev rule gives it.",
            {Remedy::TryAgain, Remedy::OpenFinder}};
  return {result.GetDescription(), {Remedy::TryAgain, Remedy::OpenFinder}};
}

Advice Adviser::AdviseOnSlowness(const CameraSituation& aSituation) const {
  if (aSituation.nowMs - mStateMs < kSlowConnectionMs)
    return {};
  return {"The camera is slow to answer. Wait a little longer, or check its cable and its power.",
          {Remedy::Disconnect, Remedy::OpenFinder}};
}

Advice Adviser::AdviseOnStream(const CameraSituation& aSituation) {
  if (aSituation.nowMs - mSecondMs >= kSecondMs)
    CountSecond(aSituation);
  if (IsSilent(aSituation))
    return AdviseOnSilence(aSituation.link);
  // Each may be what causes the other: who waits for a camera takes no frames meanwhile, and a computer that is busy
  // takes answers late.
  if (aSituation.progress.isSlow && mIsTold[static_cast<std::size_t>(Loss::Computer)])
    return {"Frames are discarded, and the camera is slow to answer. Where this computer does not keep up, lower the "
            "frame rate or the image's size, or close panels and programs that you do not need; where the camera "
            "keeps it waiting, check its cable, and what else uses its network."};
  if (Advice losses = AdviseOnLosses(aSituation.link); !losses.text.IsEmpty())
    return losses;
  if (Advice description = AdviseOnDescription(aSituation.progress.parameters); !description.text.IsEmpty())
    return description;
  return AdviseOnAnswers(aSituation.progress);
}

bool Adviser::IsSilent(const CameraSituation& aSituation) {
  const std::uint64_t now = aSituation.nowMs;
  const std::uint64_t frames = aSituation.progress.figures.GetFrames();
  if (const std::uint64_t came = CountSince(frames, mFrames); came > 0) {
    mGapMs = (now - mFrameMs) / came;
    mFrameMs = now;
    mFrames = frames;
  }
  if (now - mFrameMs < std::max(kSilenceMs, kSilentIntervals * mGapMs))
    return false;
  if (aSituation.getExpected && (mAskedMs == 0 || now - mAskedMs >= kSecondMs)) {
    mExpected = aSituation.getExpected();
    mAskedMs = now;
  }
  return !mExpected.trigger.IsEmpty() || now - mFrameMs >= kSilentIntervals * mExpected.intervalMs;
}

Advice Adviser::AdviseOnSilence(CameraLink aLink) const {
  if (IsSoftwareTrigger(mExpected.trigger))
    return {"The camera waits for a trigger (" + mExpected.trigger + "). Trigger it, or set TriggerMode to Off.",
            {Remedy::Trigger}};
  if (!mExpected.trigger.IsEmpty())
    return {
        "The camera waits for a trigger (" + mExpected.trigger +
        "). See whether a signal comes there, set TriggerSource to Software to trigger it from here, or TriggerMode "
        "to Off."};
  if (aLink == CameraLink::GigEVision)
    return {"No frames come from the camera. See whether a firewall keeps its packets (UDP) from this computer, and "
            "whether packets of the size that is set pass the network.",
            {Remedy::Restart}};
  return {"No frames come from the camera. It may wait for something; see its features.", {Remedy::Restart}};
}

// A second that began late has what came since the one before.
void Adviser::CountSecond(const CameraSituation& aSituation) {
  const KrStreamStatistics& now = aSituation.progress.statistics;
  const KrStreamStatistics& before = mBefore.statistics;
  const std::uint64_t came = CountSince(aSituation.progress.figures.GetFrames(), mBefore.figures.GetFrames());
  Second second;
  second.hasLoss[static_cast<std::size_t>(Loss::Computer)] = now.discarded > before.discarded;
  second.hasLoss[static_cast<std::size_t>(Loss::Link)] =
      now.incomplete > before.incomplete || now.missingFrames > before.missingFrames;
  const std::uint64_t dropped = CountSince(aSituation.droppedByDisplay, mDroppedBefore);
  const std::uint64_t shown = came - std::min(dropped, came);
  const bool isSmooth = shown * kSecondMs >= kSmoothRate * (aSituation.nowMs - mSecondMs);
  second.hasLoss[static_cast<std::size_t>(Loss::Display)] = !isSmooth && dropped * kFewDropped > came;
  mSeconds.push_back(second);
  if (mSeconds.size() > kCalmSeconds)
    mSeconds.pop_front();
  mSecondMs = aSituation.nowMs;
  mBefore = aSituation.progress;
  mDroppedBefore = aSituation.droppedByDisplay;
  Judge();
}

void Adviser::Judge() {
  for (std::size_t loss = 0; loss < kLosses; ++loss) {
    const auto hasLoss = [loss](const Second& aSecond) { return aSecond.hasLoss[loss]; };
    const auto recent = mSeconds.end() - static_cast<std::ptrdiff_t>(std::min(kRecentSeconds, mSeconds.size()));
    if (std::count_if(recent, mSeconds.end(), hasLoss) >= kLossySeconds)
      mIsTold[loss] = true;
    else if (std::none_of(mSeconds.begin(), mSeconds.end(), hasLoss))
      mIsTold[loss] = false;
  }
}

Advice Adviser::AdviseOnLosses(CameraLink aLink) const {
  if (mIsTold[static_cast<std::size_t>(Loss::Computer)])
    return {"Frames are discarded: the camera sends faster than this computer takes them. Lower the frame rate or the "
            "image's size, or close panels and programs that you do not need."};
  if (mIsTold[static_cast<std::size_t>(Loss::Link)])
    return {GetLinkAdvice(aLink)};
  if (mIsTold[static_cast<std::size_t>(Loss::Display)])
    return {
        "Not all frames are shown: the display does not take them, though they have come, and recordings have them. "
        "Close panels and programs that you do not need, or lower the frame rate or the image's size."};
  return {};
}

} // namespace krviewer

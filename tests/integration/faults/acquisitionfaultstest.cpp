// The viewer's acquisition, which takes a lost camera up again by itself, through a camera that vanishes, loses its
// power or keeps silent at each step from its opening to its end.
//
// Beside the cases here, its states one by one are in lab/krviewer/acquisitiontest and lab/krviewer/settingsreturntest,
// the whole program in camera/krviewer.

#include "await.h"
#include "faultlab.h"

#include "acquisition/acquisition.h"
#include "krgenicam/krgeninteger.h"
#include "simulation/labfile/labreader.h"

#include <algorithm>
#include <atomic>
#include <optional>
#include <string>
#include <utility>

namespace krtest {

namespace {

using krviewer::Acquisition;
using krviewer::AcquisitionState;

constexpr std::int64_t kChosenHeight = 32;

// Small and fast, so that a case is over soon.
krtransport::Lab MakeFastLab() {
  krtransport::Lab lab;
  const KrResult read = krtransport::ParseLab(R"(
adapters:
- name: a
  addresses: [{address: 192.168.77.1, mask: 255.255.255.0}]
  devices:
  - {kind: gigeVision, model: M, serial: S1, address: 192.168.77.10, mask: 255.255.255.0, mac: "02:4b:52:00:77:10",
     sensor: {width: 64, height: 64, frameRate: 500}}
)",
                                              "lab.yaml", lab);
  EXPECT_TRUE(read.IsOK()) << read.GetDescription().CStr();
  return lab;
}

/// The frames of the chosen height.
struct HeightSink : krviewer::FrameSink {
  void OnFrame(const KrBuffer& aFrame, std::uint64_t) override {
    if (aFrame.GetStatus() == KrBufferStatus::Complete && aFrame.GetImage()->GetHeight() == kChosenHeight)
      ++frames;
  }
  std::atomic<int> frames = 0;
};

class FaultyAcquisition : public FaultLab, public testing::WithParamInterface<DeviceFaultRow> {
protected:
  FaultyAcquisition() : FaultLab(nullptr, MakeFastLab()) {}

  // Opens, sets the height, streams, and waits for frames of that height, beyond a loss of the camera.
  KrResult Acquire() {
    HeightSink sink;
    Acquisition acquisition(mWindow, krviewer::BorrowCamera(*mInfo), {.sink = &sink});
    std::optional<KrResult> set;
    KrResult failure;
    int framesAtReturn = 0;
    bool isReturned = false;
    bool isToSetAgain = false;
    const auto setHeight = [&] {
      acquisition.Do({.run =
                          [](KrGenParameterArray& aParameters) {
                            return aParameters.GetInteger("Height")->SetValue(kChosenHeight);
                          },
                      .isStreamStopped = true,
                      .then = [&](const KrResult& aResult) { set = aResult; }});
    };
    setHeight();
    const bool isOver = Await([&] {
      acquisition.LookAgain();
      const krviewer::AcquisitionProgress progress = acquisition.GetProgress();
      if (progress.state == AcquisitionState::Lost && !isReturned) {
        EXPECT_TRUE(SaysWhatHappened(progress.result, mNames, kDeviceAdvice));
        isToSetAgain = !IsNoted(acquisition);
        mFaults->Return();
        isReturned = true;
        framesAtReturn = sink.frames;
      }
      // What was set a moment before the loss, too late to be noted, its user sets again.
      if (progress.state == AcquisitionState::Streaming && set && std::exchange(isToSetAgain, false))
        setHeight();
      EndSilence(progress);
      failure = FindFailure(progress, set);
      return !failure.IsOK() || sink.frames >= framesAtReturn + 3;
    });
    EXPECT_TRUE(isOver) << "state " << static_cast<int>(acquisition.GetProgress().state) << ", "
                        << (set ? set->GetCodeString().ToUtf8() : "not set yet") << "; " << mSteps.Describe();
    acquisition.Stop();
    return failure;
  }

private:
  static bool IsNoted(const Acquisition& aAcquisition) {
    return std::ranges::any_of(aAcquisition.GetSettings(), [](const krviewer::KeptSetting& aSetting) {
      return aSetting.name == "Height" && aSetting.value == std::to_string(kChosenHeight);
    });
  }
  // A camera that sends nothing is no failure; this one answers again before long.
  void EndSilence(const krviewer::AcquisitionProgress& aProgress) {
    constexpr std::uint64_t kSilentSteps = 500;
    if (GetParam().fault == DeviceFault::StaysSilent && aProgress.state == AcquisitionState::Streaming &&
        mSteps.HasFailed() && mSteps.GetCount() > kSilentSteps)
      mSteps.Begin();
  }
  // What its user is told, and has to do something about.
  static KrResult FindFailure(const krviewer::AcquisitionProgress& aProgress, const std::optional<KrResult>& aSet) {
    if (aProgress.state == AcquisitionState::Failed)
      return aProgress.result;
    if (aProgress.state == AcquisitionState::Connected && !aProgress.result.IsOK())
      return aProgress.result;
    return aSet.value_or(KrResult());
  }

protected:
  KrDisplayWnd mWindow;
};

} // namespace

TEST_P(FaultyAcquisition, AtEachStep_IsTakenUpAgainAsItWasSetOrIsSaid) {
  const StepFault fault = MakeFault(GetParam().fault);

  TryAtEachStep(
      fault, [this] { return Acquire(); }, 40);
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultyAcquisition, testing::ValuesIn(kDeviceFaults), NameRow<DeviceFaultRow>);

} // namespace krtest

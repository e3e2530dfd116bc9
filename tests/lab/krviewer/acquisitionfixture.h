#pragma once
// The viewer's acquisition on a camera of the simulated lab, and waits for what it comes to.

#include "acquisition/acquisition.h"

#include "acquisition/overlaytext.h"
#include "await.h"
#include "labfixture.h"

#include <atomic>
#include <functional>
#include <optional>
#include <utility>

class AcquisitionTest : public LabTest {
protected:
  explicit AcquisitionTest(const krtransport::Lab& aLab = krtransport::GetBuiltInLab()) : LabTest(nullptr, aLab) {}

  krviewer::CameraInfo GetCamera() {
    FindAll();
    return krviewer::BorrowCamera(*FindInfo(kMonoMAC));
  }

  // The progress as soon as a condition holds, or as it is at the end of a generous limit.
  static krviewer::AcquisitionProgress
  Await(const krviewer::Acquisition& aAcquisition,
        const std::function<bool(const krviewer::AcquisitionProgress&)>& aCondition) {
    krviewer::AcquisitionProgress progress;
    (void)krtest::Await([&] { // Who asked sees in the progress whether it does.
      progress = aAcquisition.GetProgress();
      return aCondition(progress);
    });
    return progress;
  }
  static krviewer::AcquisitionProgress Await(const krviewer::Acquisition& aAcquisition,
                                             krviewer::AcquisitionState aState) {
    return Await(aAcquisition,
                 [aState](const krviewer::AcquisitionProgress& aProgress) { return aProgress.state == aState; });
  }

  // Borrowed as soon as they are lent.
  static KrGenParameterArray* AwaitParameters(krviewer::Acquisition& aAcquisition) {
    KrGenParameterArray* parameters = nullptr;
    Await(aAcquisition, [&](const krviewer::AcquisitionProgress&) {
      parameters = aAcquisition.GetParameters(krviewer::ParameterBorrower::Browser).Borrow();
      return parameters != nullptr;
    });
    return parameters;
  }

  /// Frames, starts and ends, as a sink hears of them.
  struct CountedFrames : krviewer::FrameSink {
    void OnFrame(const KrBuffer&, std::uint64_t) override { ++frames; }
    void OnAcquisitionStarted() override { ++starts; }
    void OnAcquisitionEnded(const KrResult& aReason) override {
      lastEnd = aReason.GetCode();
      ++ends;
    }
    std::atomic<int> frames = 0;
    std::atomic<int> starts = 0;
    std::atomic<int> ends = 0;
    std::atomic<KrResult::Code> lastEnd = KrResult::Code::OK;
  };

  // How a request ends that aAsk makes.
  static KrResult AwaitEnd(krviewer::Acquisition& aAcquisition,
                           const std::function<void(const krviewer::RequestEnd&)>& aAsk) {
    std::optional<KrResult> end;
    aAsk([&](const KrResult& aResult) { end = aResult; });
    Await(aAcquisition, [&](const krviewer::AcquisitionProgress&) {
      aAcquisition.LookAgain();
      return end.has_value();
    });
    return end.value_or(KrResult(KrResult::Code::Failed, "The request did not end."));
  }
  static KrResult AwaitStart(krviewer::Acquisition& aAcquisition) {
    return AwaitEnd(aAcquisition, [&](const krviewer::RequestEnd& aEnd) { aAcquisition.Start(aEnd); });
  }
  static KrResult AwaitSingle(krviewer::Acquisition& aAcquisition) {
    return AwaitEnd(aAcquisition, [&](const krviewer::RequestEnd& aEnd) { aAcquisition.StartSingle(aEnd); });
  }
  static KrResult AwaitStop(krviewer::Acquisition& aAcquisition) {
    return AwaitEnd(aAcquisition, [&](const krviewer::RequestEnd& aEnd) { aAcquisition.StopStreaming(aEnd); });
  }
  static KrResult AwaitTrigger(krviewer::Acquisition& aAcquisition) {
    return AwaitEnd(aAcquisition, [&](const krviewer::RequestEnd& aEnd) { aAcquisition.Trigger(aEnd); });
  }
  static KrResult AwaitWork(krviewer::Acquisition& aAcquisition, std::function<KrResult(KrGenParameterArray&)> aRun,
                            bool aIsStreamStopped = false) {
    return AwaitEnd(aAcquisition, [&](const krviewer::RequestEnd& aEnd) {
      aAcquisition.Do({.run = std::move(aRun), .isStreamStopped = aIsStreamStopped, .then = aEnd});
    });
  }

  // Frames come by software trigger alone.
  static KrResult UseSoftwareTrigger(KrGenParameterArray& aParameters) {
    KrResult set = aParameters.GetEnum("TriggerSource")->SetEntry("Software");
    return set.IsOK() ? aParameters.GetEnum("TriggerMode")->SetEntry("On") : set;
  }

  static inline const krviewer::AcquisitionOptions kStopped{.startsAtOnce = false};
  KrDisplayWnd mWindow;
};

#include "acquisition.h"

#include "labfixture.h"
#include "simulation/testpattern.h"

#include <functional>

using krviewer::Acquisition;
using krviewer::AcquisitionProgress;
using krviewer::AcquisitionState;

namespace {

class AcquisitionTest : public LabTest {
protected:
  const KrDeviceInfo& GetCamera() {
    FindAll();
    return *FindInfo(kMonoMAC);
  }

  // The progress as soon as a condition holds, or as it is at the end of a generous limit.
  static AcquisitionProgress Await(const Acquisition& aAcquisition,
                                   const std::function<bool(const AcquisitionProgress&)>& aCondition) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(kGenerousLimitMs);
    AcquisitionProgress progress = aAcquisition.GetProgress();
    while (!aCondition(progress) && std::chrono::steady_clock::now() < until) {
      std::this_thread::yield();
      progress = aAcquisition.GetProgress();
    }
    return progress;
  }
  static AcquisitionProgress Await(const Acquisition& aAcquisition, AcquisitionState aState) {
    return Await(aAcquisition, [aState](const AcquisitionProgress& aProgress) { return aProgress.state == aState; });
  }

  // Borrowed as soon as they are lent.
  static KrGenParameterArray* AwaitParameters(Acquisition& aAcquisition) {
    KrGenParameterArray* parameters = nullptr;
    Await(aAcquisition, [&](const AcquisitionProgress&) {
      parameters = aAcquisition.GetParameters().Borrow();
      return parameters != nullptr;
    });
    return parameters;
  }

  KrDisplayWnd mWindow;
};

} // namespace

TEST_F(AcquisitionTest, NumberOfFramesAskedFor_ComesAndTheLastIsShown) {
  Acquisition acquisition(mWindow, GetCamera(), 10);

  const AcquisitionProgress progress = Await(acquisition, AcquisitionState::Finished);

  EXPECT_EQ(progress.state, AcquisitionState::Finished);
  EXPECT_EQ(progress.figures.GetFrames(), 10u);
  EXPECT_EQ(progress.statistics.incomplete, 0u);
  EXPECT_GT(progress.figures.GetFramesPerSecond(), 0.0);
  acquisition.Stop();
  const IKrImage* shown = mWindow.GetInternalBuffer().GetImage();
  ASSERT_EQ(shown->GetWidth(), 1280u);
  std::vector<std::uint8_t> pattern(1280 * 960);
  krtransport::FillPattern(KrPixel::Mono8, 1280, 960, progress.lastFrameID, pattern.data());
  for (std::size_t i = 0; i < pattern.size(); ++i)
    ASSERT_EQ(shown->GetDataPointer()[i * 4], pattern[i]) << i;
}

TEST_F(AcquisitionTest, CameraLostAndBack_IsStreamedOnWithItsFiguresKept) {
  Acquisition acquisition(mWindow, GetCamera(), 0);
  Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.figures.GetFrames() >= 5; });

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  const AcquisitionProgress lost = Await(acquisition, AcquisitionState::Lost);
  EXPECT_EQ(lost.state, AcquisitionState::Lost);
  EXPECT_TRUE(lost.result == KrResult::Code::ConnectionLost);
  EXPECT_EQ(mWindow.GetTextOverlay(), krviewer::BreakIntoSentences(lost.result.GetDescription()));

  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());

  const AcquisitionProgress back = Await(acquisition, [&](const AcquisitionProgress& aProgress) {
    return aProgress.figures.GetFrames() > lost.figures.GetFrames() + 3;
  });
  EXPECT_EQ(back.state, AcquisitionState::Streaming);
  EXPECT_GE(back.statistics.received, back.figures.GetFrames());
  EXPECT_NE(mWindow.GetTextOverlay(), krviewer::BreakIntoSentences(lost.result.GetDescription()));
}

TEST_F(AcquisitionTest, CameraLostWhileANumberOfFramesIsAskedFor_Fails) {
  Acquisition acquisition(mWindow, GetCamera(), 1000000);
  Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.figures.GetFrames() >= 2; });

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  const AcquisitionProgress progress = Await(acquisition, AcquisitionState::Failed);
  EXPECT_EQ(progress.state, AcquisitionState::Failed);
  EXPECT_TRUE(progress.result == KrResult::Code::ConnectionLost);
}

TEST_F(AcquisitionTest, CameraThatAnotherControls_FailsSayingSo) {
  std::unique_ptr<KrDevice> other;
  ASSERT_TRUE(Open(kMonoMAC, other).IsOK());

  Acquisition acquisition(mWindow, GetCamera(), 0);

  const AcquisitionProgress progress = Await(acquisition, AcquisitionState::Failed);
  EXPECT_TRUE(progress.result == KrResult::Code::AccessDenied);
  EXPECT_FALSE(progress.result.GetDescription().IsEmpty());
}

TEST_F(AcquisitionTest, CameraThatIsGoneBeforeItsFirstFrame_FailsInsteadOfWaiting) {
  const KrDeviceInfo& camera = GetCamera();
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  Acquisition acquisition(mWindow, camera, 0);

  EXPECT_EQ(Await(acquisition, AcquisitionState::Failed).state, AcquisitionState::Failed);
}

TEST_F(AcquisitionTest, ParametersOfTheCamera_AreLentWhileItStreams) {
  Acquisition acquisition(mWindow, GetCamera(), 0);
  KrGenParameterArray* const parameters = AwaitParameters(acquisition);
  ASSERT_NE(parameters, nullptr);

  std::int64_t width = 0;

  EXPECT_TRUE(parameters->GetInteger("Width")->GetValue(width).IsOK());
  EXPECT_EQ(width, 1280);
  EXPECT_TRUE(acquisition.GetProgress().parameters.IsOK());
  acquisition.GetParameters().GiveBack();
}

TEST_F(AcquisitionTest, ParametersOfALostCamera_AreLentUntilItIsBackAndThenThoseOfTheNewConnection) {
  Acquisition acquisition(mWindow, GetCamera(), 0);
  KrGenParameterArray* const parameters = AwaitParameters(acquisition);
  ASSERT_NE(parameters, nullptr);

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  Await(acquisition, AcquisitionState::Lost);
  EXPECT_FALSE(acquisition.GetParameters().IsWantedBack());
  std::int64_t width = 0;
  parameters->InvalidateCache();
  EXPECT_TRUE(parameters->GetInteger("Width")->GetValue(width) == KrResult::Code::ConnectionLost);
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
  Await(acquisition, [&](const AcquisitionProgress&) { return acquisition.GetParameters().IsWantedBack(); });
  EXPECT_EQ(acquisition.GetProgress().state, AcquisitionState::Lost) << "It waits for the parameters.";
  acquisition.GetParameters().GiveBack();

  KrGenParameterArray* const renewed = AwaitParameters(acquisition);
  ASSERT_NE(renewed, nullptr);
  EXPECT_TRUE(renewed->GetInteger("Width")->GetValue(width).IsOK());
  acquisition.GetParameters().GiveBack();
}

TEST_F(AcquisitionTest, ParametersThatAreBorrowedAtTheEnd_LastUntilStop) {
  Acquisition acquisition(mWindow, GetCamera(), 3);
  KrGenParameterArray* const parameters = AwaitParameters(acquisition);
  ASSERT_NE(parameters, nullptr);

  EXPECT_EQ(Await(acquisition, AcquisitionState::Finished).state, AcquisitionState::Finished);

  std::int64_t width = 0;
  EXPECT_FALSE(acquisition.GetParameters().IsWantedBack());
  EXPECT_TRUE(parameters->GetInteger("Width")->GetValue(width).IsOK());
  acquisition.GetParameters().GiveBack();
}

TEST_F(AcquisitionTest, StoppedWhileTheCameraIsLost_Ends) {
  Acquisition acquisition(mWindow, GetCamera(), 0);
  Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.figures.GetFrames() >= 2; });
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  Await(acquisition, AcquisitionState::Lost);

  acquisition.Stop();

  EXPECT_EQ(acquisition.GetProgress().state, AcquisitionState::Finished);
}

TEST_F(AcquisitionTest, Stopped_GivesTheCameraBack) {
  {
    Acquisition acquisition(mWindow, GetCamera(), 0);
    Await(acquisition, AcquisitionState::Streaming);
  }

  std::unique_ptr<KrDevice> device;
  EXPECT_TRUE(Open(kMonoMAC, device).IsOK());
}

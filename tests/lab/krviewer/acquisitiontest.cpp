#include "acquisitionfixture.h"
#include "simulation/testpattern.h"

using krviewer::Acquisition;
using krviewer::AcquisitionProgress;
using krviewer::AcquisitionState;
using krviewer::ParameterBorrower;

TEST_F(AcquisitionTest, NumberOfFramesAskedFor_ComesAndTheLastIsShown) {
  Acquisition acquisition(mWindow, GetCamera(), {.frameLimit = 10});

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
  Acquisition acquisition(mWindow, GetCamera());
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
  Acquisition acquisition(mWindow, GetCamera(), {.frameLimit = 1000000});
  Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.figures.GetFrames() >= 2; });

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  const AcquisitionProgress progress = Await(acquisition, AcquisitionState::Failed);
  EXPECT_EQ(progress.state, AcquisitionState::Failed);
  EXPECT_TRUE(progress.result == KrResult::Code::ConnectionLost);
}

TEST_F(AcquisitionTest, CameraThatAnotherControls_FailsSayingSo) {
  std::unique_ptr<KrDevice> other;
  ASSERT_TRUE(Open(kMonoMAC, other).IsOK());

  Acquisition acquisition(mWindow, GetCamera());

  const AcquisitionProgress progress = Await(acquisition, AcquisitionState::Failed);
  EXPECT_TRUE(progress.result == KrResult::Code::AccessDenied);
  EXPECT_FALSE(progress.result.GetDescription().IsEmpty());
}

TEST_F(AcquisitionTest, CameraThatIsGoneBeforeItsFirstFrame_FailsInsteadOfWaiting) {
  const krviewer::CameraInfo camera = GetCamera();
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  Acquisition acquisition(mWindow, camera);

  EXPECT_EQ(Await(acquisition, AcquisitionState::Failed).state, AcquisitionState::Failed);
}

TEST_F(AcquisitionTest, ParametersOfTheCamera_AreLentWhileItStreams) {
  Acquisition acquisition(mWindow, GetCamera());
  KrGenParameterArray* const parameters = AwaitParameters(acquisition);
  ASSERT_NE(parameters, nullptr);

  std::int64_t width = 0;

  EXPECT_TRUE(parameters->GetInteger("Width")->GetValue(width).IsOK());
  EXPECT_EQ(width, 1280);
  EXPECT_TRUE(acquisition.GetProgress().parameters.IsOK());
  acquisition.GetParameters(ParameterBorrower::Browser).GiveBack();
}

TEST_F(AcquisitionTest, ParametersOfALostCamera_AreLentUntilItIsBackAndThenThoseOfTheNewConnection) {
  Acquisition acquisition(mWindow, GetCamera());
  KrGenParameterArray* const parameters = AwaitParameters(acquisition);
  ASSERT_NE(parameters, nullptr);

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  Await(acquisition, AcquisitionState::Lost);
  EXPECT_FALSE(acquisition.GetParameters(ParameterBorrower::Browser).IsWantedBack());
  std::int64_t width = 0;
  parameters->InvalidateCache();
  EXPECT_TRUE(parameters->GetInteger("Width")->GetValue(width) == KrResult::Code::ConnectionLost);
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
  Await(acquisition, [&](const AcquisitionProgress&) {
    return acquisition.GetParameters(ParameterBorrower::Browser).IsWantedBack();
  });
  EXPECT_EQ(acquisition.GetProgress().state, AcquisitionState::Lost) << "It waits for the parameters.";
  acquisition.GetParameters(ParameterBorrower::Browser).GiveBack();

  KrGenParameterArray* const renewed = AwaitParameters(acquisition);
  ASSERT_NE(renewed, nullptr);
  EXPECT_TRUE(renewed->GetInteger("Width")->GetValue(width).IsOK());
  acquisition.GetParameters(ParameterBorrower::Browser).GiveBack();
}

TEST_F(AcquisitionTest, ParametersThatAreBorrowedAtTheEnd_LastUntilStop) {
  Acquisition acquisition(mWindow, GetCamera(), {.frameLimit = 3});
  KrGenParameterArray* const parameters = AwaitParameters(acquisition);
  ASSERT_NE(parameters, nullptr);

  EXPECT_EQ(Await(acquisition, AcquisitionState::Finished).state, AcquisitionState::Finished);

  std::int64_t width = 0;
  EXPECT_FALSE(acquisition.GetParameters(ParameterBorrower::Browser).IsWantedBack());
  EXPECT_TRUE(parameters->GetInteger("Width")->GetValue(width).IsOK());
  acquisition.GetParameters(ParameterBorrower::Browser).GiveBack();
}

TEST_F(AcquisitionTest, EndedWhileTheCameraIsLost_Ends) {
  Acquisition acquisition(mWindow, GetCamera());
  Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.figures.GetFrames() >= 2; });
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  Await(acquisition, AcquisitionState::Lost);

  acquisition.Stop();

  EXPECT_EQ(acquisition.GetProgress().state, AcquisitionState::Finished);
}

TEST_F(AcquisitionTest, Stopped_GivesTheCameraBack) {
  {
    Acquisition acquisition(mWindow, GetCamera());
    Await(acquisition, AcquisitionState::Streaming);
  }

  std::unique_ptr<KrDevice> device;
  EXPECT_TRUE(Open(kMonoMAC, device).IsOK());
}

TEST_F(AcquisitionTest, ThatDoesNotStartAtOnce_IsConnectedAndLendsWithoutFrames) {
  Acquisition acquisition(mWindow, GetCamera(), kStopped);

  EXPECT_EQ(Await(acquisition, AcquisitionState::Connected).state, AcquisitionState::Connected);

  KrGenParameterArray* const parameters = AwaitParameters(acquisition);
  ASSERT_NE(parameters, nullptr);
  EXPECT_TRUE(parameters->GetInteger("Width")->IsWritable());
  acquisition.GetParameters(ParameterBorrower::Browser).GiveBack();
  EXPECT_EQ(acquisition.GetProgress().figures.GetFrames(), 0u);
}

TEST_F(AcquisitionTest, Started_StreamsUntilItIsStoppedAndStaysLent) {
  Acquisition acquisition(mWindow, GetCamera(), kStopped);

  EXPECT_TRUE(AwaitStart(acquisition).IsOK());
  Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.figures.GetFrames() >= 3; });
  EXPECT_TRUE(AwaitStop(acquisition).IsOK());

  const AcquisitionProgress stopped = acquisition.GetProgress();
  EXPECT_EQ(stopped.state, AcquisitionState::Connected);
  EXPECT_GE(stopped.figures.GetFrames(), 3u);
  krviewer::Loan<krviewer::LentDevice>& loan = acquisition.GetDevice(krviewer::DeviceBorrower::CameraBridges);
  krviewer::LentDevice* const device = loan.Borrow();
  ASSERT_NE(device, nullptr);
  EXPECT_FALSE(device->stream->IsRunning());
  loan.GiveBack();
}

TEST_F(AcquisitionTest, StartedTwiceAndStoppedTwice_IsAsOnce) {
  CountedFrames counted;
  Acquisition acquisition(mWindow, GetCamera(), kStopped);
  ASSERT_TRUE(acquisition.GetFrames().Register(&counted).IsOK());

  EXPECT_TRUE(AwaitStop(acquisition).IsOK());
  EXPECT_TRUE(AwaitStart(acquisition).IsOK());
  EXPECT_TRUE(AwaitStart(acquisition).IsOK());
  EXPECT_TRUE(AwaitStop(acquisition).IsOK());
  EXPECT_TRUE(AwaitStop(acquisition).IsOK());

  EXPECT_EQ(counted.starts, 1);
  EXPECT_EQ(counted.ends, 1);
  EXPECT_EQ(counted.lastEnd, KrResult::Code::OK);
  ASSERT_TRUE(acquisition.GetFrames().Unregister(&counted).IsOK());
}

TEST_F(AcquisitionTest, CameraThatSendsNothing_IsStoppedAllTheSame) {
  Acquisition acquisition(mWindow, GetCamera(), kStopped);
  ASSERT_TRUE(AwaitWork(acquisition, UseSoftwareTrigger).IsOK());

  EXPECT_TRUE(AwaitSingle(acquisition).IsOK());
  EXPECT_EQ(acquisition.GetProgress().state, AcquisitionState::Streaming);
  EXPECT_TRUE(AwaitStop(acquisition).IsOK());

  EXPECT_EQ(acquisition.GetProgress().state, AcquisitionState::Connected);
  EXPECT_EQ(acquisition.GetProgress().figures.GetFrames(), 0u);
}

TEST_F(AcquisitionTest, SingleFrame_ComesAndTheCameraIsConnectedAgain) {
  CountedFrames counted;
  Acquisition acquisition(mWindow, GetCamera(), kStopped);
  ASSERT_TRUE(acquisition.GetFrames().Register(&counted).IsOK());

  EXPECT_TRUE(AwaitSingle(acquisition).IsOK());
  Await(acquisition, [&](const AcquisitionProgress& aProgress) {
    return counted.ends == 1 && aProgress.state == AcquisitionState::Connected;
  });

  EXPECT_EQ(counted.frames, 1);
  EXPECT_EQ(acquisition.GetProgress().state, AcquisitionState::Connected);
  ASSERT_TRUE(acquisition.GetFrames().Unregister(&counted).IsOK());
}

TEST_F(AcquisitionTest, SingleFrameAskedForWhileItStreams_IsTheLast) {
  CountedFrames counted;
  Acquisition acquisition(mWindow, GetCamera());
  ASSERT_TRUE(acquisition.GetFrames().Register(&counted).IsOK());
  Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.figures.GetFrames() >= 3; });

  EXPECT_TRUE(AwaitSingle(acquisition).IsOK());
  const int framesAtLeast = counted.frames; // When it was asked for there were no more.
  EXPECT_EQ(Await(acquisition, AcquisitionState::Connected).state, AcquisitionState::Connected);

  EXPECT_EQ(counted.ends, 1);
  const int frames = counted.frames;
  EXPECT_LE(frames, framesAtLeast + 1);
  EXPECT_TRUE(AwaitWork(acquisition, [](KrGenParameterArray& aParameters) {
                return aParameters.GetInteger("Width")->SetValue(640); // Locked while a camera streams.
              }).IsOK());
  EXPECT_EQ(counted.frames, frames);
  ASSERT_TRUE(acquisition.GetFrames().Unregister(&counted).IsOK());
}

TEST_F(AcquisitionTest, Trigger_BringsAFrame) {
  Acquisition acquisition(mWindow, GetCamera(), kStopped);
  ASSERT_TRUE(AwaitWork(acquisition, UseSoftwareTrigger).IsOK());
  ASSERT_TRUE(AwaitStart(acquisition).IsOK());

  // One that comes while the camera does not wait for it yet is missed.
  const AcquisitionProgress progress = Await(acquisition, [&](const AcquisitionProgress& aProgress) {
    EXPECT_TRUE(AwaitTrigger(acquisition).IsOK());
    return aProgress.figures.GetFrames() > 0;
  });

  EXPECT_GT(progress.figures.GetFrames(), 0u);
}

TEST_F(AcquisitionTest, WorkWithTheStreamStopped_SetsWhatIsLockedAndStreamsOn) {
  CountedFrames counted;
  Acquisition acquisition(mWindow, GetCamera());
  ASSERT_TRUE(acquisition.GetFrames().Register(&counted).IsOK());
  Await(acquisition, AcquisitionState::Streaming);
  const auto setWidth = [](KrGenParameterArray& aParameters) { return aParameters.GetInteger("Width")->SetValue(640); };

  EXPECT_FALSE(AwaitWork(acquisition, setWidth).IsOK()) << "It is locked.";
  const int frames = counted.frames;
  EXPECT_TRUE(AwaitWork(acquisition, setWidth, true).IsOK());

  EXPECT_EQ(acquisition.GetProgress().state, AcquisitionState::Streaming);
  EXPECT_TRUE(WaitUntil([&] { return counted.frames > frames + 20; })); // All that were on their way are past.
  EXPECT_EQ(counted.ends, 1);
  acquisition.Stop();
  EXPECT_EQ(mWindow.GetInternalBuffer().GetImage()->GetWidth(), 640u);
  ASSERT_TRUE(acquisition.GetFrames().Unregister(&counted).IsOK());
}

TEST_F(AcquisitionTest, WorkThatFails_EndsWithItsReasonAndStreamsOn) {
  Acquisition acquisition(mWindow, GetCamera());
  Await(acquisition, AcquisitionState::Streaming);

  const KrResult end = AwaitWork(
      acquisition, [](KrGenParameterArray&) { return KrResult(KrResult::Code::OutOfRange, "too much"); }, true);

  EXPECT_EQ(end.GetDescription(), "too much");
  EXPECT_EQ(acquisition.GetProgress().state, AcquisitionState::Streaming);
}

TEST_F(AcquisitionTest, WorkForALostCamera_EndsWithConnectionLost) {
  Acquisition acquisition(mWindow, GetCamera());
  Await(acquisition, AcquisitionState::Streaming);
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  Await(acquisition, AcquisitionState::Lost);

  const KrResult end = AwaitWork(acquisition, [](KrGenParameterArray&) { return KrResult(); });

  EXPECT_EQ(end.GetCode(), KrResult::Code::ConnectionLost);
}

TEST_F(AcquisitionTest, WorkForAnAcquisitionThatFailed_EndsWithConnectionLost) {
  const krviewer::CameraInfo camera = GetCamera();
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  Acquisition acquisition(mWindow, camera);
  Await(acquisition, AcquisitionState::Failed);

  const KrResult end = AwaitWork(acquisition, [](KrGenParameterArray&) { return KrResult(); });

  EXPECT_EQ(end.GetCode(), KrResult::Code::ConnectionLost);
}

TEST_F(AcquisitionTest, CameraLostWhileStopped_IsAwaitedAndStopsOn) {
  Acquisition acquisition(mWindow, GetCamera(), kStopped);
  Await(acquisition, AcquisitionState::Connected);

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  EXPECT_EQ(Await(acquisition, AcquisitionState::Lost).result.GetCode(), KrResult::Code::ConnectionLost);
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());

  EXPECT_EQ(Await(acquisition, AcquisitionState::Connected).state, AcquisitionState::Connected);
  EXPECT_TRUE(AwaitWork(acquisition, [](KrGenParameterArray&) { return KrResult(); }).IsOK());
  EXPECT_EQ(acquisition.GetProgress().figures.GetFrames(), 0u);
}

TEST_F(AcquisitionTest, StoppedWhileTheCameraIsLost_StaysStoppedWhenItIsBack) {
  CountedFrames counted;
  Acquisition acquisition(mWindow, GetCamera());
  ASSERT_TRUE(acquisition.GetFrames().Register(&counted).IsOK());
  Await(acquisition, AcquisitionState::Streaming);
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  Await(acquisition, AcquisitionState::Lost);

  EXPECT_TRUE(AwaitStop(acquisition).IsOK());
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());

  EXPECT_EQ(Await(acquisition, AcquisitionState::Connected).state, AcquisitionState::Connected);
  EXPECT_EQ(counted.ends, 1);
  EXPECT_EQ(counted.lastEnd, KrResult::Code::ConnectionLost);
  ASSERT_TRUE(acquisition.GetFrames().Unregister(&counted).IsOK());
}

TEST_F(AcquisitionTest, PictureThatIsNotWanted_IsNotDisplayedUntilItIs) {
  CountedFrames counted;
  Acquisition acquisition(mWindow, GetCamera(), kStopped);
  ASSERT_TRUE(acquisition.GetFrames().Register(&counted).IsOK());
  acquisition.SetPictureWanted(false);

  ASSERT_TRUE(AwaitSingle(acquisition).IsOK());
  ASSERT_TRUE(WaitUntil([&] { return counted.ends == 1; }));
  EXPECT_TRUE(mWindow.GetInternalBuffer().GetImage()->GetWidth() == 0);
  acquisition.SetPictureWanted(true);

  EXPECT_TRUE(WaitUntil([&] { return mWindow.GetInternalBuffer().GetImage()->GetWidth() == 1280; }));
  ASSERT_TRUE(acquisition.GetFrames().Unregister(&counted).IsOK());
}

TEST_F(AcquisitionTest, StartedAgain_ShowsTheFrameBeforeUntilAnotherComes) {
  Acquisition acquisition(mWindow, GetCamera(), kStopped);
  ASSERT_TRUE(AwaitSingle(acquisition).IsOK());
  const AcquisitionProgress single =
      Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.lastFrameID != 0; });
  ASSERT_TRUE(AwaitStop(acquisition).IsOK());
  ASSERT_TRUE(AwaitWork(acquisition, UseSoftwareTrigger).IsOK());

  ASSERT_TRUE(AwaitStart(acquisition).IsOK());

  const IKrImage* const shown = mWindow.GetInternalBuffer().GetImage();
  ASSERT_EQ(shown->GetWidth(), 1280u);
  std::vector<std::uint8_t> pattern(1280 * 960);
  krtransport::FillPattern(KrPixel::Mono8, 1280, 960, single.lastFrameID, pattern.data());
  for (std::size_t i = 0; i < pattern.size(); ++i)
    ASSERT_EQ(shown->GetDataPointer()[i * 4], pattern[i]) << i;
}

TEST_F(AcquisitionTest, WithoutTextOverlay_NothingIsDrawnOverThePicture) {
  Acquisition acquisition(mWindow, GetCamera(), {.hasTextOverlay = false});
  Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.figures.GetFrames() >= 2; });

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  Await(acquisition, AcquisitionState::Lost);

  EXPECT_TRUE(mWindow.GetTextOverlay().IsEmpty());
}

TEST_F(AcquisitionTest, Rates_AreThoseOfTheLastSecondAndEndWithTheStream) {
  Acquisition acquisition(mWindow, GetCamera());

  const AcquisitionProgress streaming =
      Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.framesPerSecond > 0; });
  ASSERT_TRUE(AwaitStop(acquisition).IsOK());

  EXPECT_GT(streaming.megabytesPerSecond, streaming.framesPerSecond) << "A frame has 1.2 MB.";
  EXPECT_EQ(acquisition.GetProgress().framesPerSecond, 0.0);
  EXPECT_GT(acquisition.GetProgress().statistics.received, 0u);
}

TEST_F(AcquisitionTest, TemperatureOfTheCamera_IsToldUntilItIsLost) {
  Acquisition acquisition(mWindow, GetCamera(), kStopped);

  const AcquisitionProgress progress =
      Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.temperatureC.has_value(); });
  ASSERT_TRUE(progress.temperatureC.has_value());
  EXPECT_GE(*progress.temperatureC, 40.0);
  EXPECT_LE(*progress.temperatureC, 45.0);

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  EXPECT_FALSE(Await(acquisition, AcquisitionState::Lost).temperatureC.has_value());
}

TEST_F(AcquisitionTest, SinkGivenAtTheBegin_HearsOfTheFirstStartAndEveryFrame) {
  CountedFrames counted;
  Acquisition acquisition(mWindow, GetCamera(), {.frameLimit = 3, .sink = &counted});

  EXPECT_EQ(Await(acquisition, AcquisitionState::Finished).state, AcquisitionState::Finished);

  EXPECT_EQ(counted.starts, 1);
  EXPECT_EQ(counted.frames, 3);
}

TEST_F(AcquisitionTest, TriggerThatTheCameraTakesFromElsewhere_IsSaidSo) {
  Acquisition acquisition(mWindow, GetCamera(), kStopped);
  ASSERT_TRUE(AwaitWork(acquisition, [](KrGenParameterArray& aParameters) {
                return aParameters.GetEnum("TriggerSource")->SetEntry("Line1");
              }).IsOK());

  const KrResult triggered = AwaitTrigger(acquisition);

  EXPECT_EQ(triggered.GetCode(), KrResult::Code::WrongState);
  EXPECT_NE(triggered.GetDescription().ToUtf8().find("TriggerSource is Line1"), std::string::npos);
}

TEST_F(AcquisitionTest, Rates_FallToZeroWhenTheCameraWaits) {
  Acquisition acquisition(mWindow, GetCamera());
  ASSERT_GT(Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.framesPerSecond > 0; })
                .framesPerSecond,
            0.0);

  ASSERT_TRUE(AwaitWork(acquisition, UseSoftwareTrigger).IsOK());

  const AcquisitionProgress waiting =
      Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.framesPerSecond == 0; });
  EXPECT_EQ(waiting.framesPerSecond, 0.0);
  EXPECT_EQ(waiting.megabytesPerSecond, 0.0);
  EXPECT_EQ(waiting.state, AcquisitionState::Streaming);
}

#include "acquisition/adviser.h"

#include <gmock/gmock.h>

using krviewer::AcquisitionProgress;
using krviewer::AcquisitionState;
using krviewer::Adviser;
using krviewer::CameraLink;
using krviewer::CameraSituation;
using krviewer::ExpectedFrames;
using krviewer::Remedy;
using testing::Contains;
using testing::HasSubstr;

namespace {

class AdviserTest : public testing::Test {
protected:
  std::string Look() {
    mRemedies = mAdviser.Look(mSituation).remedies;
    return mAdviser.Look(mSituation).text.ToUtf8();
  }
  void Fail(KrResult::Code aCode) {
    mProgress.state = AcquisitionState::Failed;
    mProgress.result = {aCode, "why"};
  }
  void Stream() {
    mProgress.state = AcquisitionState::Streaming;
    Look();
  }
  // Seconds of 30 frames each that come and are shown, but for what aLose does to the figures of each.
  template <typename Lose>
  std::string PassSeconds(int aSeconds, Lose aLose) {
    std::string text;
    for (int second = 0; second < aSeconds; ++second) {
      for (int i = 0; i < 30; ++i)
        mProgress.figures.Add(mSituation.nowMs * 1000000, 1000);
      mProgress.statistics.received += 30;
      mProgress.statistics.shown += 30;
      aLose(mProgress.statistics);
      mSituation.nowMs += 1000;
      text = Look();
    }
    return text;
  }
  std::string PassCalmSeconds(int aSeconds) {
    return PassSeconds(aSeconds, [](KrStreamStatistics&) {});
  }
  std::string PassDiscarding(int aSeconds) {
    return PassSeconds(aSeconds, [](KrStreamStatistics& aStatistics) { ++aStatistics.discarded; });
  }

  AcquisitionProgress mProgress;
  CameraSituation mSituation{.progress = mProgress, .nowMs = 5000, .link = CameraLink::GigEVision};
  Adviser mAdviser;
  std::vector<Remedy> mRemedies;
};

} // namespace

TEST_F(AdviserTest, CameraThatAnotherControls_CanBeTriedAgain) {
  Fail(KrResult::Code::AccessDenied);

  EXPECT_THAT(Look(), HasSubstr("another program on this computer"));
  EXPECT_THAT(mRemedies, Contains(Remedy::TryAgain));
}

TEST_F(AdviserTest, USBCameraWithoutPermission_NamesTheRule) {
  mSituation.link = CameraLink::USB3Vision;
  Fail(KrResult::Code::AccessDenied);

  EXPECT_THAT(Look(), HasSubstr("udev"));
}

TEST_F(AdviserTest, CameraOfAForeignSubnet_CanBeGivenAnAddress) {
  mSituation.isForeignSubnet = true;
  Fail(KrResult::Code::NotFound);

  EXPECT_THAT(Look(), HasSubstr("subnet"));
  EXPECT_THAT(mRemedies, Contains(Remedy::ConfigureIP));
}

TEST_F(AdviserTest, CameraThatTakesLongToConnect_IsCalledSlowAfterAWhile) {
  EXPECT_EQ(Look(), "");
  mSituation.nowMs += 3999;
  EXPECT_EQ(Look(), "");

  mSituation.nowMs += 1;

  EXPECT_THAT(Look(), HasSubstr("slow to answer"));
}

TEST_F(AdviserTest, CameraThatCouldNotBeStarted_CanBeStarted) {
  mProgress.state = AcquisitionState::Connected;
  EXPECT_EQ(Look(), "");

  mProgress.result = {KrResult::Code::SystemError, "no memory"};

  EXPECT_THAT(Look(), HasSubstr("no memory"));
  EXPECT_THAT(mRemedies, Contains(Remedy::Start));
}

TEST_F(AdviserTest, StreamWithoutFrames_NamesTheTriggerThatTheCameraWaitsFor) {
  mSituation.getExpected = [] { return ExpectedFrames{.trigger = "Line1"}; };
  Stream();

  mSituation.nowMs += 3000;

  EXPECT_THAT(Look(), HasSubstr("Line1"));
  EXPECT_EQ(PassCalmSeconds(1), "");
}

TEST_F(AdviserTest, StreamWithoutFramesOfACameraThatIsNotTriggered_NamesTheFirewall) {
  mSituation.getExpected = [] { return ExpectedFrames(); };
  Stream();

  mSituation.nowMs += 3000;

  EXPECT_THAT(Look(), HasSubstr("firewall"));
}

TEST_F(AdviserTest, FramesThatAreDiscarded_AreTroubleWhenThatLasts) {
  Stream();

  EXPECT_EQ(PassDiscarding(2), "");

  EXPECT_THAT(PassDiscarding(1), HasSubstr("discarded"));
}

TEST_F(AdviserTest, OneSecondWithALossNowAndThen_IsNoTrouble) {
  Stream();

  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(PassDiscarding(1), "");
    EXPECT_EQ(PassCalmSeconds(2), "");
  }
}

TEST_F(AdviserTest, LossesThatEnded_AreToldForTenSecondsMore) {
  Stream();
  PassDiscarding(3);

  EXPECT_THAT(PassCalmSeconds(9), HasSubstr("discarded"));

  EXPECT_EQ(PassCalmSeconds(1), "");
}

TEST_F(AdviserTest, FramesThatComeIncomplete_NameTheNetworkOrTheBus) {
  Stream();
  const auto lose = [](KrStreamStatistics& aStatistics) { ++aStatistics.incomplete; };

  EXPECT_THAT(PassSeconds(3, lose), HasSubstr("jumbo frames"));
  mSituation.link = CameraLink::USB3Vision;
  EXPECT_THAT(PassSeconds(1, lose), HasSubstr("usbfs_memory_mb"));
}

TEST_F(AdviserTest, FramesThatAreNotShown_NameTheDisplayWhereThePictureIsNotSmooth) {
  Stream();

  EXPECT_EQ(PassSeconds(3, [this](KrStreamStatistics&) { mSituation.droppedByDisplay += 10; }), "");

  EXPECT_THAT(PassSeconds(3, [this](KrStreamStatistics&) { mSituation.droppedByDisplay += 11; }),
              HasSubstr("not take them"));
}

TEST_F(AdviserTest, SeveralTroubles_TheComputersIsTold) {
  Stream();

  EXPECT_THAT(PassSeconds(3,
                          [](KrStreamStatistics& aStatistics) {
                            ++aStatistics.discarded;
                            ++aStatistics.incomplete;
                          }),
              HasSubstr("discarded"));
}

TEST_F(AdviserTest, StreamThatStartsAnew_BeginsWithoutTheTroubleOfTheLast) {
  Stream();
  PassDiscarding(3);

  mProgress.state = AcquisitionState::Connected;
  EXPECT_EQ(Look(), "");
  Stream();

  EXPECT_EQ(Look(), "");
}

TEST_F(AdviserTest, CameraWithoutAGoodDescription_IsToldWhileItStreams) {
  mProgress.parameters = {KrResult::Code::BadData, "line 3"};
  Stream();

  EXPECT_THAT(Look(), HasSubstr("line 3"));
}

TEST_F(AdviserTest, CameraWithoutAGoodDescription_IsToldWhileItIsStopped) {
  mProgress.state = AcquisitionState::Connected;
  mProgress.parameters = {KrResult::Code::BadData, "line 3"};

  EXPECT_THAT(Look(), HasSubstr("line 3"));
  EXPECT_THAT(Look(), HasSubstr("--faults"));
}

TEST_F(AdviserTest, CameraThatSendsNothingForWantOfADescription_IsToldBoth) {
  mProgress.state = AcquisitionState::Connected;
  mProgress.result = {KrResult::Code::NotFound, "no size"};
  mProgress.parameters = {KrResult::Code::BadData, "line 3"};

  EXPECT_THAT(Look(), HasSubstr("no size"));
  EXPECT_THAT(Look(), HasSubstr("line 3"));
  EXPECT_THAT(mRemedies, Contains(Remedy::TryAgain));
}

TEST_F(AdviserTest, CameraOfAFrameInFiveSeconds_IsNotCalledSilentBetweenThem) {
  Stream();
  mSituation.nowMs += 5000;

  for (int frame = 0; frame < 3; ++frame) {
    mProgress.figures.Add(mSituation.nowMs * 1000000, 1000);
    for (int second = 0; second < 5; ++second) {
      EXPECT_EQ(Look(), "") << "frame " << frame << ", second " << second;
      mSituation.nowMs += 1000;
    }
  }
}

TEST_F(AdviserTest, CameraThatExposesForFiveSeconds_IsCalledSilentAfterThreeTimesThat) {
  mSituation.getExpected = [] { return ExpectedFrames{.intervalMs = 5000}; };
  Stream();

  mSituation.nowMs += 14999;
  EXPECT_EQ(Look(), "");
  mSituation.nowMs += 1000; // It is asked for once a second.

  EXPECT_THAT(Look(), HasSubstr("No frames come"));
  EXPECT_THAT(mRemedies, Contains(Remedy::Restart));
}

TEST_F(AdviserTest, CameraThatWaitsForASoftwareTrigger_CanBeTriggered) {
  mSituation.getExpected = [] { return ExpectedFrames{.trigger = "Software"}; };
  Stream();

  mSituation.nowMs += 3000;

  EXPECT_THAT(Look(), HasSubstr("waits for a trigger (Software)"));
  EXPECT_THAT(mRemedies, Contains(Remedy::Trigger));
}

TEST_F(AdviserTest, DisplayThatCountsAnew_IsNoTrouble) {
  mSituation.droppedByDisplay = 1000;
  Stream();
  mSituation.droppedByDisplay = 0;

  EXPECT_EQ(PassCalmSeconds(5), "");
}

TEST_F(AdviserTest, CameraThatIsSlowToConnect_CanBeLetGo) {
  Look();
  mSituation.nowMs += 4000;
  Look();

  EXPECT_THAT(mRemedies, Contains(Remedy::Disconnect));
}

TEST_F(AdviserTest, LostCamera_IsAwaitedAlsoAtAnotherAddressWhereItHasOne) {
  mProgress.state = AcquisitionState::Lost;
  mProgress.result = {KrResult::Code::ConnectionLost, "why"};
  EXPECT_THAT(Look(), HasSubstr("also with another address"));
  EXPECT_THAT(mRemedies, Contains(Remedy::OpenFinder));

  mSituation.link = CameraLink::USB3Vision;

  EXPECT_THAT(Look(), testing::Not(HasSubstr("address")));
  EXPECT_THAT(Look(), HasSubstr("why"));
}

TEST_F(AdviserTest, LostCameraThatIsBackWhereItCannotBeReached_CanBeGivenAnAddress) {
  mProgress.state = AcquisitionState::Lost;
  mProgress.result = {KrResult::Code::ConnectionLost, "why"};
  mProgress.strayAddress = "169.254.3.4";

  EXPECT_THAT(Look(), HasSubstr("back as 169.254.3.4"));
  EXPECT_THAT(mRemedies, Contains(Remedy::ConfigureIP));
}

TEST_F(AdviserTest, CameraThatIsBackAndCannotBeStarted_IsNotSaidToBeLost) {
  mProgress.state = AcquisitionState::Lost;
  mProgress.isRefused = true;
  mProgress.result = {KrResult::Code::NotSupported, "why"};

  EXPECT_THAT(Look(), HasSubstr("is back, but cannot be started"));
  EXPECT_THAT(Look(), HasSubstr("why"));
  EXPECT_THAT(Look(), testing::Not(HasSubstr("is lost")));
}

TEST_F(AdviserTest, CameraThatBecomesSlow_IsToldUntilItIsPromptAgain) {
  Stream();
  EXPECT_EQ(PassCalmSeconds(2), "");

  mProgress.isSlow = true;
  EXPECT_THAT(Look(), HasSubstr("slow to answer"));
  mProgress.state = AcquisitionState::Connected;
  EXPECT_THAT(Look(), HasSubstr("slow to answer"));

  mProgress.isSlow = false;
  EXPECT_EQ(Look(), "");
}

TEST_F(AdviserTest, FramesThatAreDiscardedWhileTheCameraIsSlow_MayBeTheComputersFaultOrTheCameras) {
  Stream();
  mProgress.isSlow = true;

  EXPECT_THAT(PassDiscarding(3), HasSubstr("slow to answer"));
  EXPECT_THAT(Look(), HasSubstr("Where this computer does not keep up, lower the frame rate"));
  EXPECT_THAT(Look(), HasSubstr("where the camera keeps it waiting, check its cable"));

  mProgress.isSlow = false;
  EXPECT_THAT(PassDiscarding(1), HasSubstr("discarded"));
}

TEST_F(AdviserTest, DescriptionThatCameTooLate_IsAskedForAgainAndNotItsMaker) {
  mProgress.state = AcquisitionState::Connected;
  mProgress.parameters = {KrResult::Code::TimeLimitExceeded, "no answer"};

  for (const KrResult::Code result : {KrResult::Code::OK, KrResult::Code::NotFound}) {
    mProgress.result = {result, result == KrResult::Code::OK ? "" : "no size"};
    EXPECT_THAT(Look(), HasSubstr("no answer"));
    EXPECT_THAT(Look(), HasSubstr("did not answer in time"));
    EXPECT_THAT(Look(), testing::Not(HasSubstr("firmware")));
    EXPECT_THAT(mRemedies, Contains(Remedy::TryAgain));
  }
}

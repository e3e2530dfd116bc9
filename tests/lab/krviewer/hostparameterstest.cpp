// What the viewer's acquisition lends of the stream and of the connection.

#include "acquisitionfixture.h"
#include "krbase/krlogger.h"
#include "parametertext.h"

#include <gmock/gmock.h>

using krviewer::Acquisition;
using krviewer::AcquisitionProgress;
using krviewer::AcquisitionState;
using krviewer::HostSettings;
using krviewer::HostSide;
using krviewer::Loan;

namespace {

class AcquisitionHostParametersTest : public AcquisitionTest {
protected:
  // Borrowed as soon as they are lent.
  static KrGenParameterArray* AwaitHost(Acquisition& aAcquisition, HostSide aSide) {
    KrGenParameterArray* parameters = nullptr;
    Await(aAcquisition, [&](const AcquisitionProgress&) {
      parameters = aAcquisition.GetParameters(aSide).Borrow();
      return parameters != nullptr;
    });
    return parameters;
  }
};

} // namespace

TEST_F(AcquisitionHostParametersTest, HostParameters_OfACameraThatStreams_AreLentAndTellOfIt) {
  Acquisition acquisition(mWindow, GetCamera());
  KrGenParameterArray* const stream = AwaitHost(acquisition, HostSide::Stream);
  KrGenParameterArray* const connection = AwaitHost(acquisition, HostSide::Connection);
  ASSERT_TRUE(stream && connection);
  Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.figures.GetFrames() >= 3; });

  EXPECT_EQ(ReadText(*stream, "StreamIsGrabbing"), "1");
  EXPECT_GE(ReadNumber(*stream, "StreamDeliveredFrameCount"), 3);
  EXPECT_FALSE(IsWritable(*stream, "StreamBufferCountManual"));
  EXPECT_EQ(ReadText(*connection, "DeviceAccessStatus"), "OpenReadWrite");
  ASSERT_TRUE(AwaitStop(acquisition).IsOK());
  EXPECT_TRUE(IsWritable(*stream, "StreamBufferCountManual"));

  acquisition.GetParameters(HostSide::Stream).GiveBack();
  acquisition.GetParameters(HostSide::Connection).GiveBack();
}

TEST_F(AcquisitionHostParametersTest, HostParameters_OfACameraThatWasLostAndIsBack_AreSetAsBefore) {
  Acquisition acquisition(mWindow, GetCamera(), kStopped);
  for (const auto& [side, name, value] : {std::tuple{HostSide::Stream, "StreamFrameRetention", "123000"},
                                          {HostSide::Stream, "StreamBufferCountManual", "7"},
                                          {HostSide::Connection, "LinkCommandTimeout", "2500000"}}) {
    KrGenParameterArray* const parameters = AwaitHost(acquisition, side);
    ASSERT_TRUE(parameters);
    EXPECT_TRUE(SetText(*parameters, name, value).IsOK()) << name;
    acquisition.GetParameters(side).GiveBack();
  }
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  Await(acquisition, AcquisitionState::Lost);

  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
  Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.returns > 0; });
  Await(acquisition, AcquisitionState::Connected);

  KrGenParameterArray* const stream = AwaitHost(acquisition, HostSide::Stream);
  KrGenParameterArray* const connection = AwaitHost(acquisition, HostSide::Connection);
  ASSERT_TRUE(stream && connection);
  EXPECT_EQ(ReadNumber(*stream, "StreamFrameRetention"), 123000);
  EXPECT_EQ(ReadNumber(*stream, "StreamBufferCountManual"), 7);
  EXPECT_EQ(ReadText(*connection, "LinkCommandTimeout"), "2500000");
  acquisition.GetParameters(HostSide::Stream).GiveBack();
  acquisition.GetParameters(HostSide::Connection).GiveBack();
}

TEST_F(AcquisitionHostParametersTest, HostSettings_ThatWereChanged_AreThereInTheNextAcquisition) {
  HostSettings kept;
  {
    Acquisition acquisition(mWindow, GetCamera(), kStopped);
    for (const auto& [side, name, value] : {std::tuple{HostSide::Stream, "StreamBufferCountManual", "7"},
                                            {HostSide::Connection, "LinkCommandTimeout", "2500000"}}) {
      KrGenParameterArray* const parameters = AwaitHost(acquisition, side);
      ASSERT_TRUE(parameters);
      EXPECT_TRUE(SetText(*parameters, name, value).IsOK()) << name;
      acquisition.GetParameters(side).GiveBack();
    }
    acquisition.Stop();
    kept = acquisition.GetHostSettings();
  }
  EXPECT_EQ(kept, (HostSettings{{{{"StreamBufferCountManual", "7"}}, {{"LinkCommandTimeout", "2500000"}}}}))
      << "what nobody has changed is not kept";

  // It streams at once: after its begin the number of buffers could not be set any more.
  Acquisition acquisition(mWindow, GetCamera(), {.hostSettings = kept});
  KrGenParameterArray* const stream = AwaitHost(acquisition, HostSide::Stream);
  ASSERT_TRUE(stream);
  EXPECT_EQ(ReadText(*stream, "StreamIsGrabbing"), "1");
  EXPECT_EQ(ReadNumber(*stream, "StreamBufferCountManual"), 7);
  EXPECT_EQ(ReadNumber(*stream, "StreamAnnouncedBufferCount"), 7);
  acquisition.GetParameters(HostSide::Stream).GiveBack();
  acquisition.Stop();
  EXPECT_EQ(acquisition.GetHostSettings(), kept);
}

TEST_F(AcquisitionHostParametersTest, HostSettings_ThatDoNotFit_ArePassedOverAndLogged) {
  const HostSettings kept = {
      {{{"StreamBufferCountManual", "1000000"}, {"NoSuchFeature", "1"}, {"StreamFrameRetention", "123000"}}, {}}};
  const KrLogCapture log;

  Acquisition acquisition(mWindow, GetCamera(), {.hostSettings = kept});
  KrGenParameterArray* const stream = AwaitHost(acquisition, HostSide::Stream);

  ASSERT_TRUE(stream);
  EXPECT_EQ(ReadNumber(*stream, "StreamFrameRetention"), 123000);
  EXPECT_EQ(ReadText(*stream, "StreamIsGrabbing"), "1");
  acquisition.GetParameters(HostSide::Stream).GiveBack();
  for (const char* const name : {"StreamBufferCountManual", "NoSuchFeature"})
    EXPECT_THAT(log.GetRecords(),
                testing::Contains(testing::Field(&KrLogRecord::text,
                                                 testing::ResultOf([](const KrString& aText) { return aText.ToUtf8(); },
                                                                   testing::HasSubstr(name)))));
}

TEST_F(AcquisitionHostParametersTest, HostSettings_OfACameraThatCannotBeHad_StayKept) {
  const HostSettings kept = {{{{"StreamFrameRetention", "123000"}}, {}}};
  const krviewer::CameraInfo camera = GetCamera();
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  Acquisition acquisition(mWindow, camera, {.hostSettings = kept});
  EXPECT_EQ(Await(acquisition, AcquisitionState::Failed).state, AcquisitionState::Failed);
  acquisition.Stop();

  EXPECT_EQ(acquisition.GetHostSettings(), kept);
}

TEST_F(AcquisitionHostParametersTest, HostParameters_OfACameraThatIsLost_StayLentUntilItIsBack) {
  Acquisition acquisition(mWindow, GetCamera());
  Loan<KrGenParameterArray>& loan = acquisition.GetParameters(HostSide::Connection);
  KrGenParameterArray* const connection = AwaitHost(acquisition, HostSide::Connection);
  ASSERT_TRUE(connection);

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  Await(acquisition, AcquisitionState::Lost);
  EXPECT_FALSE(loan.IsWantedBack());
  EXPECT_EQ(ReadText(*connection, "DeviceAccessStatus"), "NoAccess");
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());

  EXPECT_TRUE(WaitUntil([&] { return loan.IsWantedBack(); }));
  loan.GiveBack();
  EXPECT_EQ(Await(acquisition, AcquisitionState::Streaming).state, AcquisitionState::Streaming);
}

// What the camera bridge manager tells of a connected camera, or its frame grabber, that goes or keeps silent.

#include "camerafixture.h"

#include "krbase/krlogger.h"

namespace krgui {

namespace {

class States : public CameraTest {
protected:
  void SetSilent(bool aIsSilent) { ASSERT_TRUE(mLab->GetFaults(kGrabberMAC)->SilenceSerialPort(0, aIsSilent).IsOK()); }
  bool AwaitState(const char* aBegin) const {
    return WaitFor([this, aBegin] { return GetText(id::kState).starts_with(aBegin); });
  }
  bool AwaitNoState() const {
    return WaitFor([this] { return GetText(id::kState).empty(); });
  }

  const KrLogCapture mLog; // The browser says there that its polling fails.
};

} // namespace

TEST_F(States, CameraThatAnswers_HasNothingToTell) {
  Open();
  EXPECT_EQ(GetText(id::kState), "");

  ConnectGenCP();

  EXPECT_EQ(GetText(id::kState), "");
}

TEST_F(States, FrameGrabberThatIsLost_IsNamedWithWhatToDo) {
  Open();
  ConnectGenCP();

  ASSERT_TRUE(mLab->Lose(kGrabberMAC).IsOK());

  ASSERT_TRUE(AwaitState("The connection is lost. "));
  EXPECT_THAT(GetText(id::kState), testing::HasSubstr(mDevice->GetDisplayID().ToUtf8()));
  EXPECT_THAT(GetText(id::kState), testing::HasSubstr("Check its cable and its power"));
}

TEST_F(States, CameraThatFallsSilent_IsNamedUntilItAnswersAgain) {
  Open();
  ConnectGenCP();

  SetSilent(true);

  EXPECT_TRUE(AwaitState("The camera does not answer. Serial0 of "));
  EXPECT_THAT(GetText(id::kState), testing::HasSubstr(mDevice->GetDisplayID().ToUtf8()));
  SetSilent(false);
  EXPECT_TRUE(AwaitNoState());
}

TEST_F(States, SilentCamera_IsToldAtItsOwnPortAlone) {
  Open();
  ConnectGenCP();
  SetSilent(true);
  ASSERT_TRUE(AwaitState("The camera does not answer. "));

  Pick(id::kDevicePort, "Serial1");

  EXPECT_TRUE(AwaitNoState());
}

TEST_F(States, SilentCameraThatIsDisconnected_IsToldNoMore) {
  Open();
  ConnectGenCP();
  SetSilent(true);
  ASSERT_TRUE(AwaitState("The camera does not answer. "));

  Click(id::kNone);

  EXPECT_TRUE(AwaitNoState());
}

} // namespace krgui

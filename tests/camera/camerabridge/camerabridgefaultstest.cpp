// What a user does while a camera is asked, and what he is told when that fails.

#include "camerabridgeuser.h"

#include "temporaryfolder.h"

namespace {

using browseruser::kGrid;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::uint32_t kSerial0 = 0;
constexpr std::uint32_t kBulk0 = 2;

class CameraBridgeFaults : public CameraBridgeUser {
protected:
  /// Looks for a camera that does not answer, until the dialog that tells so is there.
  static void AskSilentCamera(UserHands& aUser, const CameraHands& aHands) {
    aHands.PickPort("Serial0");
    aUser.ClickMark(kManager, bridge::kGenCP);
    ASSERT_TRUE(aHands.AwaitWait());
  }
  static bool HasBox(UserHands& aUser) {
    bool hasBox = false;
    aUser.Await("a glance", [&] {
      hasBox = !GetBoxText().isEmpty();
      return true;
    });
    return hasBox;
  }
  /// The window is as alive as before: its camera is found once it speaks.
  void ExpectFound(const CameraHands& aHands) {
    ASSERT_TRUE(mFaults->SilenceSerialPort(kSerial0, false).IsOK());
    aHands.PickPort("Serial0");
    aHands.ChooseKind(bridge::kNone);
    aHands.ChooseKind(bridge::kGenCP);
    EXPECT_TRUE(aHands.AwaitReady(bridge::kGenCPConnect));
    EXPECT_TRUE(aHands.AwaitTextWith(bridge::kGenCPXML, "Schema"));
  }
};

} // namespace

TEST_F(CameraBridgeFaults, EscapeDuringALongSearch_EndsItAndTheWindowGoesOn) {
  ASSERT_TRUE(mFaults->SilenceSerialPort(kSerial0, true).IsOK());
  Run([&](UserHands& aUser, const CameraHands& aHands) {
    AskSilentCamera(aUser, aHands);

    aUser.Press("Escape");

    ASSERT_TRUE(aHands.AwaitNoWait() && aUser.AwaitWindow(kManager));
    EXPECT_TRUE(AwaitChecked(aUser, kManager, bridge::kGenCP));
    EXPECT_FALSE(aUser.IsEnabled(kManager, bridge::kGenCPConnect));
    EXPECT_TRUE(aHands.AwaitText(bridge::kGenCPXML, ""));
    ExpectFound(aHands);
  });
}

TEST_F(CameraBridgeFaults, WindowClosedWhileItProbes_EndsTheProbeAndOpensAgain) {
  ASSERT_TRUE(mFaults->SilenceSerialPort(kBulk0, true).IsOK());
  Run([&](UserHands& aUser, const CameraHands& aHands) {
    aHands.PickPort("Bulk0");
    aHands.ChooseKind(bridge::kCLProtocol);
    ASSERT_TRUE(aHands.AwaitReady(bridge::kProbe));
    aUser.Click(kManager, bridge::kProbe);
    ASSERT_TRUE(aHands.AwaitWait());

    aUser.Press("alt+F4");
    ASSERT_TRUE(aHands.AwaitNoWait() && aUser.AwaitWindow(kManager));
    aUser.Press("alt+F4");
    ASSERT_TRUE(aUser.AwaitNoWindow(kManager));

    ASSERT_TRUE(mFaults->SilenceSerialPort(kBulk0, false).IsOK());
    ASSERT_TRUE(aHands.Open());
    aHands.PickPort("Bulk0");
    EXPECT_TRUE(AwaitChecked(aUser, kManager, bridge::kCLProtocol));
    ASSERT_TRUE(aHands.AwaitReady(bridge::kProbe));
    aUser.Click(kManager, bridge::kProbe);
    EXPECT_TRUE(aHands.AwaitTextWith(bridge::kProbeStatus, "SIM_CL_03"));
  });
}

TEST_F(CameraBridgeFaults, ViewerEndedWhileACameraIsAsked_EndsAtOnceWithIt) {
  ASSERT_TRUE(mFaults->SilenceSerialPort(kSerial0, true).IsOK());
  Run([&](UserHands& aUser, const CameraHands& aHands) {
    AskSilentCamera(aUser, aHands);

    EndViewer(aUser);

    EXPECT_TRUE(aHands.AwaitNoWait() && aUser.AwaitNoWindow(kManager));
  });
}

TEST_F(CameraBridgeFaults, GrabberUnpluggedWhileACameraIsAsked_IsLetGoAndTakenUpAgain) {
  ASSERT_TRUE(mFaults->SilenceSerialPort(kSerial0, true).IsOK());
  Run([&](UserHands& aUser, const CameraHands& aHands) {
    AskSilentCamera(aUser, aHands);

    mFaults->Disappear();
    ASSERT_TRUE(aHands.AwaitNoWait());
    ASSERT_TRUE(aUser.Await("no ports", [] { return GetShownText(bridge::kDevicePort).isEmpty(); }));
    // Whether the search notices before it is ended, and says so, is left to chance.
    if (HasBox(aUser)) {
      EXPECT_THAT(ReadBox(aUser), StartsWith("Error retrieving GenCP XML IDs.\n"));
    }
    ASSERT_TRUE(aUser.AwaitWindow(kManager));
    EXPECT_FALSE(aUser.IsEnabled(kManager, bridge::kGenCP));

    mFaults->Return();
    ASSERT_TRUE(aUser.AwaitEnabled(kManager, bridge::kDevicePort));
    EXPECT_TRUE(AwaitChecked(aUser, kManager, bridge::kNone));
    ExpectFound(aHands);
  });
}

TEST_F(CameraBridgeFaults, CameraFileWithMistakes_IsRefusedWithAllOfThem) {
  const TemporaryFolder folder;
  const std::string file = folder.GetFile("wrong.yml");
  TemporaryFolder::WriteFile(file, "cameraFile: 1\n"
                                   "camera: {vendor: V, model: M, colour: red}\n"
                                   "protocol: {baudRate: many, commandEnd: \"\\r\", answerEnd: \"\\r\"}\n"
                                   "categories: []\n");
  Run([&](UserHands& aUser, const CameraHands& aHands) {
    aHands.PickPort("Serial1");
    aHands.ChooseKind(bridge::kCameraFile);
    aUser.Click(kManager, bridge::kBrowse);
    ASSERT_TRUE(aHands.EnterFile(QString::fromStdString(file)));
    aUser.Click(kManager, bridge::kLoad);

    EXPECT_THAT(ReadBox(aUser, kLineLimitMs),
                AllOf(StartsWith("Error loading Tolvan Camera File:"), HasSubstr("colour"), HasSubstr("baudRate")));
    ASSERT_TRUE(aUser.AwaitWindow(kManager));
    EXPECT_TRUE(aHands.AwaitText(bridge::kCameraFileStatus, ""));

    aUser.Click(kManager, bridge::kBrowse);
    ASSERT_TRUE(aHands.EnterFile(kTextCameraFile));
    aUser.Click(kManager, bridge::kLoad);
    EXPECT_GT(aHands.AwaitConnected(bridge::kCameraFileStatus), 0);
  });
}

TEST_F(CameraBridgeFaults, NoCameraOfTheKind_IsToldAndAnotherKindIsChosen) {
  Run([&](UserHands& aUser, const CameraHands& aHands) {
    aHands.PickPort("Serial1"); // A camera that speaks texts.
    aUser.ClickMark(kManager, bridge::kGenCP);

    EXPECT_THAT(ReadBox(aUser, kLineLimitMs), StartsWith("Error retrieving GenCP XML IDs.\nNotFound: "));
    ASSERT_TRUE(aUser.AwaitWindow(kManager));
    EXPECT_FALSE(aUser.IsEnabled(kManager, bridge::kGenCPConnect));
    aHands.ChooseKind(bridge::kCameraFile);
    EXPECT_TRUE(aUser.AwaitEnabled(kManager, bridge::kLoad));
  });
}

TEST_F(CameraBridgeFaults, CameraThatLosesItsPower_RefusesToBeSetUntilItIsBack) {
  Run([&](UserHands& aUser, const CameraHands& aHands) {
    aHands.PickPort("Serial1");
    ASSERT_GT(aHands.ConnectTextCamera(), 0);
    ASSERT_TRUE(aUser.AwaitRow(kManager, kGrid, " dB"));

    aUser.ClickMark(kManager, bridge::kPoCL); // It lives on its cable's power.
    aUser.ClickRow(kManager, kGrid, "Gain |");
    aUser.Press("Return");
    ASSERT_TRUE(aUser.Await("an editor", browseruser::HasEditorFocus));
    aUser.Press("ctrl+a");
    aUser.Type("7");
    aUser.Press("Return");
    ASSERT_TRUE(aUser.AwaitWindow("Error"));
    aUser.Press("Return");
    ASSERT_TRUE(aUser.AwaitWindow(kManager));
    aUser.Click(kManager, bridge::kReset);
    ASSERT_TRUE(aHands.AwaitText(bridge::kBytesReceived, "Bytes received: 0"));
    aUser.ClickMark(kManager, bridge::kPoCL);
    ASSERT_TRUE(aUser.Await("several answers", [] {
      constexpr int kTwoTemperatures = 20;
      return GetShownText(bridge::kBytesReceived).section(' ', -1).toInt() > kTwoTemperatures;
    }));

    aUser.ClickRow(kManager, kGrid, "Gain |");
    EXPECT_TRUE(browseruser::SetNumber(aUser, kManager, "Gain", "9"));
  });

  ExpectCamera(ConnectCameraFile(), "Gain", 9);
}

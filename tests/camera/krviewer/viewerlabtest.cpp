// The viewer on cameras of a simulated lab that are as cameras in machines are: several, away for a while, somebody
// else's, of another subnet, slow, back at another address, and waiting for a trigger. What it says of each is read as
// its user reads it.

#include "viewersession.h"

#include <QFile>

namespace {

constexpr const char* kLab = R"(
adapters:
  - name: eth0
    addresses:
      - {address: 192.168.1.1, mask: 255.255.255.0}
    devices:
      - {kind: gigeVision, name: left, model: Left, mac: 02:00:00:00:01:01, address: 192.168.1.11, mask: 255.255.255.0}
      - {kind: gigeVision, name: right, model: Right, mac: 02:00:00:00:01:02, address: 192.168.1.12, mask: 255.255.255.0}
      - {kind: gigeVision, name: busy, model: Busy, mac: 02:00:00:00:01:03, address: 192.168.1.13, mask: 255.255.255.0,
         control: exclusive}
      - {kind: gigeVision, name: foreign, model: Foreign, mac: 02:00:00:00:01:04, address: 10.1.1.14, mask: 255.0.0.0}
      - {kind: gigeVision, name: loose, model: Loose, mac: 02:00:00:00:01:06, address: 192.168.1.16, mask: 255.255.255.0,
         awayWhile: AWAY, faults: {losesPower: true}}
      - {kind: gigeVision, name: moved, model: Moved, mac: 02:00:00:00:01:07, address: 192.168.1.17, mask: 255.255.255.0,
         awayWhile: AWAY, returnsAt: 192.168.1.71, faults: {losesPower: true}}
      - {kind: gigeVision, name: stray, model: Stray, mac: 02:00:00:00:01:08, address: 192.168.1.18, mask: 255.255.255.0,
         awayWhile: AWAY, returnsAt: 169.254.3.4}
      - {kind: gigeVision, name: slow, model: Slow, mac: 02:00:00:00:01:09, address: 192.168.1.19, mask: 255.255.255.0,
         faults: {registerDelay: 300}}
      - {kind: gigeVision, name: late, model: Late, mac: 02:00:00:00:01:0a, address: 192.168.1.20, mask: 255.255.255.0,
         faults: {silentRegisters: [{address: 0x0200, times: 1}]}}
)";

const QString kLeft = "Left (192.168.1.11)";
const QString kRight = "Right (192.168.1.12)";

class ViewerLab : public ViewerSession {
protected:
  void Open(const QStringList& aCameras) {
    const QByteArray lab = QByteArray(kLab).replace("AWAY", GetPath("away").toUtf8());
    Start(QStringList{"--lab", WriteFile("lab.yaml", lab)} + aCameras);
  }
  /// Takes the cameras that can be lost away, or brings them back.
  void Lose() { WriteFile("away", ""); }
  void Restore() { EXPECT_TRUE(QFile::remove(GetPath("away"))); }
  /// Gives a camera the last number of an address in the window for addresses, and closes that.
  void SetAddress(const QString& aCamera, const QString& aLastNumber, const QString& aThen) {
    ASSERT_TRUE(User().AwaitWindow("IP Configuration"));
    ASSERT_TRUE(User().Click("tree item", aCamera));
    ASSERT_TRUE(User().Click("push button", "Set IP Address..."));
    ASSERT_TRUE(User().AwaitWindow("Set IP Address"));
    ASSERT_TRUE(User().AwaitFocus("IP Address, field 4 of 4"));
    User().Press("ctrl+a");
    User().Type(aLastNumber);
    User().Press("Return");
    ASSERT_TRUE(User().AwaitNoWindow("Set IP Address"));
    ASSERT_TRUE(User().AwaitWindow("IP Configuration"));
    ASSERT_TRUE(User().AwaitControl("tree item", aThen));
    User().Press("Escape");
    ASSERT_TRUE(User().AwaitNoWindow("IP Configuration"));
  }
  bool HasWindow(const QString& aTitle) {
    return User()
        .GetScreen()
        .Find([&](const AccessibleItem& aItem) { return aItem.role == "frame" && aItem.name == aTitle; })
        .has_value();
  }
};

} // namespace

TEST_F(ViewerLab, SimulatedCameraTriedFromTheFirstPage_IsTheLabsFirst) {
  Open({});
  ASSERT_TRUE(User().AwaitWindow("krviewer"));

  User().Press("alt+s");

  EXPECT_TRUE(AwaitStreaming(kLeft));
}

TEST_F(ViewerLab, CameraMovedToAWindowOfItsOwn_StreamsThereAndComesBack) {
  Open({"left", "right"});
  ASSERT_TRUE(AwaitStreaming(kRight));

  ASSERT_TRUE(User().Choose("v", "Move to a Window of Its Own", "m"));
  ASSERT_TRUE(User().AwaitWindow(kRight));
  EXPECT_TRUE(User().Await("both windows", [&] { return HasWindow(kLeft) && HasWindow(kRight); }));

  ASSERT_TRUE(User().Choose("v", "Back to the Tabs", "b"));
  ASSERT_TRUE(User().AwaitWindow(kRight));
  EXPECT_TRUE(User().Await("one window", [&] { return !HasWindow(kLeft); }));
  EXPECT_TRUE(AwaitMoreFrames());
  User().Press("ctrl+Next");
  ASSERT_TRUE(User().AwaitWindow(kLeft));
  EXPECT_TRUE(AwaitMoreFrames());
}

TEST_F(ViewerLab, CameraOfAnotherHost_IsSaidToBe) {
  Open({"busy"});

  ASSERT_TRUE(User().AwaitWindow("Busy (192.168.1.13) - not connected"));
  EXPECT_TRUE(User().AwaitText("another application controls it"));
  EXPECT_TRUE(User().AwaitControl("push button", "Try Again"));
}

TEST_F(ViewerLab, CameraOfAnotherSubnet_IsOfferedAnAddress) {
  Open({"foreign"});
  ASSERT_TRUE(User().AwaitWindow("Foreign (10.1.1.14)"));
  EXPECT_TRUE(User().AwaitText("The camera's address is of another subnet"));

  ASSERT_TRUE(User().Click("push button", "Set Address…"));

  SetAddress("Foreign (10.1.1.14)", "99", "Foreign (192.168.1.99)");

  ASSERT_TRUE(User().Click("push button", "Try Again"));

  EXPECT_TRUE(AwaitStreaming("Foreign (192.168.1.99)"));
  EXPECT_TRUE(User().AwaitControl("page tab", "Foreign (192.168.1.99)"));
  EXPECT_FALSE(User().Has("10.1.1.14"));
}

TEST_F(ViewerLab, CameraThatWaitsForATrigger_SaysSoAndIsTriggered) {
  Open({"left"});
  ASSERT_TRUE(AwaitStreaming(kLeft));

  ASSERT_TRUE(SetFeature("TriggerMode", "On"));
  ASSERT_TRUE(User().AwaitText("The camera waits for a trigger"));
  const long long frames = GetFrames();
  User().Press("F7");

  EXPECT_TRUE(User().Await("one more frame", [&] { return GetFrames() == frames + 1; }));
}

TEST_F(ViewerLab, CameraThatLostItsPower_IsTakenUpWithItsSettings) {
  const QString camera = "Loose (192.168.1.16)";
  Open({"loose"});
  ASSERT_TRUE(AwaitStreaming(camera));
  ASSERT_TRUE(SetFeature("ExposureTime", "5000"));

  Lose();
  ASSERT_TRUE(User().AwaitText("The camera is lost; it is shown again as soon as it is back"));
  Restore();

  ASSERT_TRUE(AwaitStreaming(camera));
  EXPECT_TRUE(User().Await("its exposure time", [&] { return GetFeature("ExposureTime").startsWith("5000"); }));
  EXPECT_FALSE(User().Has("not set as before"));
}

TEST_F(ViewerLab, CameraThatComesBackAtAnotherAddress_IsTakenUpThereInItsTabWithItsSettings) {
  Open({"moved"});
  ASSERT_TRUE(AwaitStreaming("Moved (192.168.1.17)"));
  ASSERT_TRUE(SetFeature("ExposureTime", "5000"));

  Lose();
  ASSERT_TRUE(User().AwaitText("The camera is lost; it is shown again as soon as it is back"));
  Restore();

  ASSERT_TRUE(AwaitStreaming("Moved (192.168.1.71)"));
  EXPECT_TRUE(User().AwaitControl("page tab", "Moved (192.168.1.71)"));
  EXPECT_TRUE(User().Await("its exposure time", [&] { return GetFeature("ExposureTime").startsWith("5000"); }));
  EXPECT_FALSE(User().Has("not set as before"));
  End();

  Start({}); // It is known as it was known last.
  EXPECT_TRUE(User().AwaitControl("push button", "Moved (192.168.1.71)"));
  EXPECT_FALSE(User().Has("192.168.1.17"));
}

TEST_F(ViewerLab, CameraThatComesBackOutOfReach_IsShownWhenItIsGivenAnAddress) {
  Open({"stray"});
  ASSERT_TRUE(AwaitStreaming("Stray (192.168.1.18)"));
  Lose();
  ASSERT_TRUE(User().AwaitText("The camera is lost; it is shown again as soon as it is back"));
  Restore();
  ASSERT_TRUE(User().AwaitText("The camera is back as 169.254.3.4"));

  ASSERT_TRUE(User().Click("push button", "Set Address…"));
  SetAddress("Stray (169.254.3.4)", "77", "Stray (192.168.1.77)");

  EXPECT_TRUE(AwaitStreaming("Stray (192.168.1.77)"));
}

TEST_F(ViewerLab, SlowCamera_IsSaidToBeWhileItStreams) {
  Open({"slow"});
  ASSERT_TRUE(AwaitStreaming("Slow (192.168.1.19)"));

  EXPECT_TRUE(User().AwaitText("slow to answer"));
  EXPECT_TRUE(AwaitMoreFrames());
}

TEST_F(ViewerLab, CameraWhoseDescriptionCameTooLate_IsAskedForItOnceMore) {
  Open({"late"});
  ASSERT_TRUE(User().AwaitText("it did not answer in time when its description was read"));
  EXPECT_FALSE(User().Has("firmware"));

  ASSERT_TRUE(User().Click("push button", "Try Again"));

  ASSERT_TRUE(AwaitStreaming("Late (192.168.1.20)"));
  EXPECT_TRUE(User().AwaitControl("tree item", "ExposureTime"));
  EXPECT_TRUE(User().AwaitNoText("did not answer in time"));
}

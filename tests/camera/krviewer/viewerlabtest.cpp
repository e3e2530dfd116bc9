// The viewer on cameras of a simulated lab that are as cameras in machines are: several, away for a while, somebody
// else's, of another subnet, and waiting for a trigger. What it says of each is read as its user reads it.

#include "viewersession.h"

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
         vanishes: 50, appears: 60, every: 120, faults: {losesPower: true}}
)";

const QString kLeft = "Left (192.168.1.11)";
const QString kRight = "Right (192.168.1.12)";

class ViewerLab : public ViewerSession {
protected:
  void Open(const QStringList& aCameras) { Start(QStringList{"--lab", WriteFile("lab.yaml", kLab)} + aCameras); }
  bool HasWindow(const QString& aTitle) {
    return User()
        .GetScreen()
        .Find([&](const AccessibleItem& aItem) { return aItem.role == "frame" && aItem.name == aTitle; })
        .has_value();
  }
};

} // namespace

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

  ASSERT_TRUE(User().AwaitWindow("IP Configuration"));
  ASSERT_TRUE(User().Click("tree item", "Foreign (10.1.1.14)"));
  ASSERT_TRUE(User().Click("push button", "Set IP Address..."));
  ASSERT_TRUE(User().AwaitWindow("Set IP Address"));
  ASSERT_TRUE(User().AwaitFocus("IP Address, field 4 of 4"));
  User().Press("ctrl+a");
  User().Type("99");
  User().Press("Return");
  ASSERT_TRUE(User().AwaitNoWindow("Set IP Address"));
  ASSERT_TRUE(User().AwaitWindow("IP Configuration"));
  ASSERT_TRUE(User().AwaitControl("tree item", "Foreign (192.168.1.99)"));
  User().Press("Escape");
  ASSERT_TRUE(User().AwaitNoWindow("IP Configuration"));

  ASSERT_TRUE(User().Click("push button", "Try Again"));

  EXPECT_TRUE(AwaitStreaming("Foreign (10.1.1.14)")); // The tab keeps the name under which it was opened.
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

TEST_F(ViewerLab, CameraThatLosesItsPowerNowAndThen_IsTakenUpWithItsSettings) {
  const QString camera = "Loose (192.168.1.16)";
  Open({"loose"});
  ASSERT_TRUE(AwaitStreaming(camera));
  ASSERT_TRUE(SetFeature("ExposureTime", "5000"));

  ASSERT_TRUE(User().AwaitText("The camera is lost; it is shown again as soon as it is back"));

  ASSERT_TRUE(AwaitStreaming(camera));
  EXPECT_TRUE(User().Await("its exposure time", [&] { return GetFeature("ExposureTime").startsWith("5000"); }));
  EXPECT_FALSE(User().Has("not set as before"));
}

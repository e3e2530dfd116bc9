// The viewer on an independent camera, from finding it to losing it, by mouse and keyboard.

#include "fakecamera.h"
#include "networklab.h"
#include "viewersession.h"

#include <algorithm>

namespace {

const QString kAddress = "127.0.0.1";
const QString kCamera = "Fake (127.0.0.1)";
constexpr int kWidth = 512;
constexpr int kWheelUp = 4;
constexpr int kWheelDown = 5;

/// A camera on loopback that sends ten frames a second.
class ViewerCamera : public ViewerSession {
protected:
  ViewerCamera() { mCamera.SetFramePeriod(100'000); }

  void Open() {
    Start({kAddress});
    ASSERT_TRUE(AwaitStreaming(kCamera));
  }
  /// Waits for a pixel of one of these columns to be under the mouse.
  bool AwaitColumn(int aLeast, int aMost) {
    return User().Await(QStringLiteral("a column from %1 to %2").arg(aLeast).arg(aMost), [&] {
      const std::optional<QPoint> pixel = GetPixel();
      return pixel && pixel->x() >= aLeast && pixel->x() <= aMost;
    });
  }

  FakeCamera mCamera;
};

/// A camera behind a cable.
class ViewerNetwork : public ViewerSession {
protected:
  ViewerNetwork() : mHost(mLab.AddHost("cameras")) {
    mLab.Connect("eth0", mHost, "port0");
    mLab.SetAddress("eth0", "192.168.1.10/24");
    mHost.SetAddress("port0", "192.168.1.20/24");
    mCamera.emplace(FakeCameraOptions{.address = "192.168.1.20", .namespaceFile = mHost.GetNamespaceFile()});
    mCamera->SetFramePeriod(100'000);
  }

  NetworkLab mLab;
  NetworkHost& mHost;
  std::optional<FakeCamera> mCamera;
};

} // namespace

TEST_F(ViewerNetwork, CameraFoundAndPicked_IsShown) {
  Start({});
  ASSERT_TRUE(User().AwaitWindow("krviewer"));

  ASSERT_TRUE(User().Click("push button", "Find a camera"));
  ASSERT_TRUE(User().AwaitWindow("Device Selection"));
  ASSERT_TRUE(User().Click("tree item", "Fake (192.168.1.20)"));
  ASSERT_TRUE(User().Click("push button", "OK"));

  EXPECT_TRUE(AwaitStreaming("Fake (192.168.1.20)"));
  EXPECT_TRUE(AwaitMoreFrames());
}

TEST_F(ViewerCamera, FeatureSetInTheBrowser_IsSetInTheCamera) {
  Open();
  ASSERT_EQ(ReadFeature(kAddress, "ExposureTimeAbs"), "10000");

  ASSERT_TRUE(SetFeature("ExposureTimeAbs", "20000"));

  EXPECT_EQ(ReadFeature(kAddress, "ExposureTimeAbs"), "20000");
}

TEST_F(ViewerCamera, StoppedSingleFrameStarted_ByKeys_CountsItsFrames) {
  Open();

  User().Press("shift+F5");
  ASSERT_TRUE(User().AwaitWindow(kCamera + " - stopped"));
  const long long frames = GetFrames();

  ASSERT_TRUE(User().AwaitControl("push button", "Single Frame"));
  User().Press("F9");
  EXPECT_TRUE(User().Await("one more frame", [&] { return GetFrames() == frames + 1; }));
  EXPECT_TRUE(User().AwaitWindow(kCamera + " - stopped"));
  EXPECT_EQ(GetFrames(), frames + 1);

  User().Press("F5");
  EXPECT_TRUE(User().Await("frames", [&] { return GetFrames() > frames + 1; }));
  EXPECT_TRUE(User().AwaitNoWindow(kCamera + " - stopped"));
}

TEST_F(ViewerCamera, Zoom_ByKeysAndWheel_MovesThePixelsUnderTheMouse) {
  Open();
  const QRect place = GetPicturePlace();
  // As far right of the middle as there are columns of the picture between, at each zoom.
  const QPoint mouse = place.center() + QPoint(200, 0);
  const int fitted = kWidth / 2 + 200 * kWidth / std::min(place.width(), place.height());
  User().MoveMouse(mouse);
  EXPECT_TRUE(AwaitColumn(fitted - 2, fitted + 2));

  User().Press("ctrl+1");
  EXPECT_TRUE(AwaitColumn(455, 457));
  User().Press("ctrl+0");
  EXPECT_TRUE(AwaitColumn(fitted - 2, fitted + 2));
  User().Press("ctrl+plus");
  EXPECT_TRUE(AwaitColumn(kWidth / 2, fitted - 20));
  User().Press("ctrl+minus");
  EXPECT_TRUE(AwaitColumn(fitted - 2, fitted + 2));
  User().Click(mouse, kWheelUp);
  EXPECT_TRUE(AwaitColumn(kWidth / 2, fitted - 5));
  User().Click(mouse, kWheelDown);
  EXPECT_TRUE(AwaitColumn(fitted - 2, fitted + 2));
}

TEST_F(ViewerCamera, Disconnected_IsTakenUpFromTheRecentCameras) {
  Open();

  ASSERT_TRUE(User().Choose("c", "Disconnect", "d"));
  ASSERT_TRUE(User().AwaitWindow(kCamera + " - disconnected"));
  EXPECT_TRUE(User().AwaitText("is disconnected: others may use it now."));

  User().Press("alt+f");
  ASSERT_TRUE(User().AwaitControl("menu item", "Recent Cameras"));
  User().Press("r");
  ASSERT_TRUE(User().AwaitControl("menu item", "1  " + kCamera));
  User().Press("1");

  EXPECT_TRUE(AwaitStreaming(kCamera));
  EXPECT_TRUE(AwaitMoreFrames());
}

TEST_F(ViewerCamera, CameraThatDoesNotAnswer_SaysSoAndIsTriedAgain) {
  Open();
  ASSERT_TRUE(User().Choose("c", "Disconnect", "d"));
  ASSERT_TRUE(User().AwaitWindow(kCamera + " - disconnected"));
  mCamera.Pause();

  ASSERT_TRUE(User().Click("push button", "Connect"));
  ASSERT_TRUE(User().AwaitWindow(kCamera + " - not connected"));
  EXPECT_TRUE(User().AwaitText(kCamera + " cannot be shown."));

  mCamera.Resume();
  ASSERT_TRUE(User().Click("push button", "Try Again"));
  EXPECT_TRUE(AwaitStreaming(kCamera));
  EXPECT_TRUE(User().AwaitNoText("cannot be shown"));
}

TEST_F(ViewerCamera, WindowClosedWhileStreaming_EndsAndFreesTheCamera) {
  Open();

  User().Press("alt+F4");

  EXPECT_EQ(User().AwaitEnd(), 0) << User().GetErrors().toStdString();
  EXPECT_TRUE(User().GetOutput().contains("frames="));
  Start({kAddress});
  EXPECT_TRUE(AwaitStreaming(kCamera));
}

TEST_F(ViewerCamera, CameraWithoutPower_IsSaidLostAndTakenUpWithItsSettings) {
  Open();
  ASSERT_TRUE(SetFeature("ExposureTimeAbs", "20000"));
  ASSERT_TRUE(SetFeature("Width", "256"));

  mCamera.Kill();
  ASSERT_TRUE(User().AwaitWindow(kCamera + " - camera lost, waiting for it to come back"));
  EXPECT_TRUE(User().AwaitText("The camera is lost; it is shown again as soon as it is back"));
  EXPECT_TRUE(User().IsRunning());

  const FakeCamera again;
  EXPECT_TRUE(AwaitStreaming(kCamera));
  EXPECT_TRUE(User().AwaitNoText("The camera is lost"));
  EXPECT_TRUE(AwaitMoreFrames());
  EXPECT_EQ(ReadFeature(kAddress, "ExposureTimeAbs"), "20000");
  EXPECT_EQ(ReadFeature(kAddress, "Width"), "256");
  End();
}

TEST_F(ViewerNetwork, CameraThatIsBackAtAnotherAddress_IsTakenUpThereWithItsSettingsAndNoOtherInItsPlace) {
  mHost.SetAddress("port0", "192.168.1.21/24");
  Start({"192.168.1.20"});
  ASSERT_TRUE(AwaitStreaming("Fake (192.168.1.20)"));
  ASSERT_TRUE(SetFeature("ExposureTimeAbs", "20000"));

  mCamera->Kill();
  ASSERT_TRUE(User().AwaitWindow("Fake (192.168.1.20) - camera lost"));
  const FakeCamera other(
      FakeCameraOptions{.serialNumber = "GV99", .address = "192.168.1.20", .namespaceFile = mHost.GetNamespaceFile()});
  EXPECT_TRUE(User().AwaitText("another device answers"));
  EXPECT_TRUE(User().AwaitText("GV99"));
  mCamera.emplace(FakeCameraOptions{.address = "192.168.1.21", .namespaceFile = mHost.GetNamespaceFile()});

  EXPECT_TRUE(AwaitStreaming("Fake (192.168.1.21)"));
  EXPECT_TRUE(AwaitMoreFrames());
  EXPECT_EQ(ReadFeature("192.168.1.21", "ExposureTimeAbs"), "20000");
  EXPECT_EQ(ReadFeature("192.168.1.20", "ExposureTimeAbs"), "10000") << "The other camera was left alone.";
}

TEST_F(ViewerNetwork, CameraThatSomebodyHadWhoWasCutOff_IsTakenUpWhenItNoticesThat) {
  Start({"192.168.1.20"});
  ASSERT_TRUE(AwaitStreaming("Fake (192.168.1.20)"));

  mLab.Unplug("eth0");
  ASSERT_TRUE(User().AwaitWindow("Fake (192.168.1.20) - camera lost"));
  mHost.Run([&] { mCamera->TakeControlAndVanish(); });
  mLab.PlugIn("eth0");

  EXPECT_TRUE(AwaitStreaming("Fake (192.168.1.20)"));
  EXPECT_TRUE(AwaitMoreFrames());
}

TEST_F(ViewerNetwork, CameraWithoutAReadableDescription_SaysSo) {
  mCamera.reset();
  mCamera.emplace(FakeCameraOptions{.address = "192.168.1.20",
                                    .descriptionFile = WriteFile("broken.xml", "<RegisterDescription").toStdString(),
                                    .namespaceFile = mHost.GetNamespaceFile()});
  Start({"192.168.1.20"});

  EXPECT_TRUE(User().AwaitText("cannot be used: it is no XML, or not all of it"));
}

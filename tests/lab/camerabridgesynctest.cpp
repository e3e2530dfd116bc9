// The camera's size, offsets and pixel format on their way to the frame grabber.

#include "camerabridgefixture.h"

#include "krdevice/krstream.h"

namespace {

class CameraBridgeSyncTest : public testing::Test {
protected:
  /// A feature of a source of the device, whichever is selected.
  std::string GetDeviceText(const char* aSource, const char* aName) {
    const std::string selected = GetText(mLab.GetArray(), "SourceSelector");
    EXPECT_TRUE(IsFine(SetText(mLab.GetArray(), "SourceSelector", aSource)));
    const std::string text = GetText(mLab.GetArray(), aName);
    EXPECT_TRUE(IsFine(SetText(mLab.GetArray(), "SourceSelector", selected.c_str())));
    return text;
  }
  /// Waits, without touching the selector, for what the selected source has.
  bool AwaitDevice(const char* aName, const std::string& aValue) {
    return WaitUntil([&] { return GetText(mLab.GetArray(), aName) == aValue; });
  }
  bool AwaitText(const KrCameraBridge& aBridge, const char* aPart) {
    return WaitUntil([&] { return aBridge.GetParametersSyncText().ToUtf8().find(aPart) != std::string::npos; });
  }
  bool AwaitNoText(const KrCameraBridge& aBridge) {
    return WaitUntil([&] { return aBridge.GetParametersSyncText().IsEmpty(); });
  }

  const KrLogCapture mLog; // What cannot be carried is logged, which is no fault of the test's.
  BridgeLab mLab;
  KrStream mStream{*mLab.GetDevice()};
  KrCameraBridge mBridge{mLab.GetDevice(), KrDeviceSerial::Serial0, &mStream};
};

} // namespace

TEST_F(CameraBridgeSyncTest, SwitchedOn_WhileConnected_SetsTheDevice) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  ASSERT_TRUE(IsFine(SetText(*mBridge.GetParameters(), "PixelFormat", "Mono12")));

  ASSERT_TRUE(IsFine(mBridge.SetParametersSyncEnabled(true)));

  EXPECT_TRUE(AwaitDevice("PixelFormat", "Mono12"));
  EXPECT_TRUE(AwaitDevice("Width", "1024"));
  EXPECT_TRUE(AwaitDevice("Height", "768"));
  EXPECT_TRUE(AwaitNoText(mBridge));
}

TEST_F(CameraBridgeSyncTest, Connection_WithItSwitchedOn_SetsTheDevice) {
  ASSERT_TRUE(IsFine(mBridge.SetParametersSyncEnabled(true)));

  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));

  EXPECT_TRUE(AwaitDevice("Width", "1024"));
  EXPECT_TRUE(AwaitDevice("Height", "768"));
}

TEST_F(CameraBridgeSyncTest, Changes_OfTheCamera_AreCarriedWithinTheDevicesLimits) {
  ASSERT_TRUE(IsFine(mBridge.SetParametersSyncEnabled(true)));
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  ASSERT_TRUE(AwaitDevice("Height", "768"));
  // With this offset the camera's size would not fit into the device.
  ASSERT_TRUE(IsFine(SetText(mLab.GetArray(), "OffsetX", "1024")));
  ASSERT_TRUE(IsFine(SetText(mLab.GetArray(), "Width", "512")));
  KrGenParameterArray& camera = *mBridge.GetParameters();

  ASSERT_TRUE(IsFine(SetText(camera, "Height", "400")));
  EXPECT_TRUE(AwaitDevice("Height", "400"));
  EXPECT_TRUE(AwaitDevice("Width", "1024"));
  ASSERT_TRUE(IsFine(SetText(camera, "Width", "256")));
  ASSERT_TRUE(IsFine(SetText(camera, "OffsetX", "640")));
  ASSERT_TRUE(IsFine(SetText(camera, "OffsetY", "32")));

  EXPECT_TRUE(AwaitDevice("OffsetX", "640"));
  EXPECT_TRUE(AwaitDevice("OffsetY", "32"));
  EXPECT_TRUE(AwaitDevice("Width", "256"));
  EXPECT_TRUE(AwaitNoText(mBridge));
}

TEST_F(CameraBridgeSyncTest, SwitchedOff_ChangesNothing) {
  ASSERT_TRUE(IsFine(mBridge.SetParametersSyncEnabled(true)));
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  ASSERT_TRUE(AwaitNoText(mBridge));
  ASSERT_TRUE(IsFine(mBridge.SetParametersSyncEnabled(false)));
  ASSERT_TRUE(IsFine(SetText(*mBridge.GetParameters(), "Height", "400")));

  // What is told of the next change is told of the first, too.
  KrCameraBridge other(mLab.GetDevice(), KrDeviceSerial::Serial1, nullptr);
  ASSERT_TRUE(IsFine(other.SetSource("Source2")));
  ASSERT_TRUE(IsFine(other.SetParametersSyncEnabled(true)));
  ASSERT_TRUE(IsFine(other.ConnectTolvanCameraFile(kTextCameraFile)));
  ASSERT_TRUE(AwaitNoText(other));

  EXPECT_EQ(GetDeviceText("Source2", "Height"), "480");
  EXPECT_EQ(GetDeviceText("Source0", "Height"), "768");
}

TEST_F(CameraBridgeSyncTest, ChosenSource_IsSetAndTheSelectorPutBack) {
  ASSERT_TRUE(IsFine(mBridge.SetSource("Source1")));
  ASSERT_TRUE(IsFine(mBridge.SetParametersSyncEnabled(true)));
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));

  ASSERT_TRUE(AwaitNoText(mBridge));

  EXPECT_EQ(GetText(mLab.GetArray(), "SourceSelector"), "Source0");
  EXPECT_EQ(GetDeviceText("Source1", "Width"), "1024");
  EXPECT_EQ(GetDeviceText("Source0", "Width"), "2048");

  ASSERT_TRUE(IsFine(mBridge.SetSource("")));

  EXPECT_TRUE(AwaitDevice("Height", "768")) << "of the selected source";
}

TEST_F(CameraBridgeSyncTest, TwoCameras_OfTwoSources_BothReachTheirOwn) {
  KrCameraBridge text(mLab.GetDevice(), KrDeviceSerial::Serial1, &mStream);
  ASSERT_TRUE(IsFine(mBridge.SetSource("Source1")));
  ASSERT_TRUE(IsFine(text.SetSource("Source2")));
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  ASSERT_TRUE(IsFine(text.ConnectTolvanCameraFile(kTextCameraFile)));

  for (KrCameraBridge* const bridge : {&mBridge, &text})
    ASSERT_TRUE(IsFine(bridge->SetParametersSyncEnabled(true)));

  ASSERT_TRUE(AwaitNoText(mBridge));
  ASSERT_TRUE(AwaitNoText(text));
  EXPECT_EQ(GetText(mLab.GetArray(), "SourceSelector"), "Source0");
  EXPECT_EQ(GetDeviceText("Source0", "Width"), "2048");
  EXPECT_EQ(GetDeviceText("Source1", "Width"), "1024");
  EXPECT_EQ(GetDeviceText("Source2", "Width"), "640");
}

TEST_F(CameraBridgeSyncTest, RunningStream_IsWaitedFor) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  ASSERT_TRUE(IsFine(mStream.Start()));
  ASSERT_TRUE(IsFine(mBridge.SetParametersSyncEnabled(true)));
  ASSERT_TRUE(AwaitText(mBridge, "when its stream has stopped"));
  EXPECT_EQ(GetText(mLab.GetArray(), "Width"), "2048");

  mStream.Stop();

  EXPECT_TRUE(AwaitDevice("Width", "1024"));
  EXPECT_TRUE(AwaitNoText(mBridge));
}

TEST_F(CameraBridgeSyncTest, StreamThatTheBridgeDoesNotKnow_IsToldOfAndTriedAgainWithTheNextChange) {
  KrCameraBridge bridge(mLab.GetDevice(), KrDeviceSerial::Serial0, nullptr);
  ASSERT_TRUE(IsFine(ConnectGenCP(bridge)));
  ASSERT_TRUE(IsFine(mStream.Start()));

  ASSERT_TRUE(IsFine(bridge.SetParametersSyncEnabled(true)));

  ASSERT_TRUE(AwaitText(bridge, "The camera's Width 1024 could not be set on the device: "));
  mStream.Stop();
  ASSERT_TRUE(IsFine(SetText(*bridge.GetParameters(), "Height", "400")));
  EXPECT_TRUE(AwaitDevice("Height", "400"));
  EXPECT_TRUE(AwaitDevice("Width", "1024"));
  EXPECT_TRUE(AwaitNoText(bridge));
}

TEST_F(CameraBridgeSyncTest, SilentCamera_IsToldOfAndLogged) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  ASSERT_TRUE(mLab.GetFaults()->SilenceSerialPort(0, true).IsOK());

  ASSERT_TRUE(IsFine(mBridge.SetParametersSyncEnabled(true)));

  ASSERT_TRUE(AwaitText(mBridge, "The camera's size and pixel format could not be read: "));
  EXPECT_TRUE(mLog.Contains(KrLogLevel::Warning, mBridge.GetParametersSyncText()));
  ASSERT_TRUE(IsFine(mBridge.SetParametersSyncEnabled(false)));
  EXPECT_TRUE(mBridge.GetParametersSyncText().IsEmpty());
}

TEST_F(CameraBridgeSyncTest, LostDevice_IsToldOf) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  ASSERT_TRUE(mLab.Lose().IsOK());

  ASSERT_TRUE(IsFine(mBridge.SetParametersSyncEnabled(true)));

  EXPECT_TRUE(AwaitText(mBridge, "could not be read"));
  mBridge.Disconnect();
  EXPECT_TRUE(mBridge.GetParametersSyncText().IsEmpty());
}

TEST_F(CameraBridgeSyncTest, FormatThatTheDeviceLacks_IsToldWhileTheRestIsCarried) {
  // A device that has only Mono8 for a camera that is set to Mono12.
  BridgeLab lab(MakeGrabberLab("protocol: GenCP, sensor: {width: 320, height: 240, pixelFormats: [Mono12]}"), kMonoMAC);
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Serial0, nullptr);
  ASSERT_TRUE(IsFine(ConnectGenCP(bridge)));

  ASSERT_TRUE(IsFine(bridge.SetParametersSyncEnabled(true)));

  ASSERT_TRUE(AwaitText(bridge, "The camera's PixelFormat Mono12 could not be set on the device: "));
  EXPECT_EQ(GetText(lab.GetArray(), "Width"), "320");
  EXPECT_EQ(GetText(lab.GetArray(), "Height"), "240");
}

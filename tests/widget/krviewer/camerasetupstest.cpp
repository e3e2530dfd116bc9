// Setups of the viewer's camera bridges: loaded, saved, and taken up again when the device is back.

#include "camerabridgesfixture.h"
#include "duringmodalloop.h"
#include "krgenicam/krgenparameterarray.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "krtransport/krsimulatedfaults.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <filesystem>

using krviewer::BridgeNews;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr int kTextPort = 1; ///< The bridge's place, and the port's number.

class CameraSetups : public CameraBridgesTest {
protected:
  CameraSetups() {
    EXPECT_TRUE(KrFindSimulatedFaults(kGrabberMAC, mFaults).IsOK());
    std::filesystem::copy(KR_CAMERA_FILES "/simulated-camera.yml", mCameraFile);
    mBridges.SetTell([this](BridgeNews aNews, const KrStringList& aLines) {
      mNews.push_back(aNews);
      for (const KrString& line : aLines)
        mLines.push_back(line.ToUtf8());
    });
  }
  ~CameraSetups() override {
    mFaults->EndSerialFaults();
    if (mAcquisition)
      Close();
  }

  void LookAgain() override {
    if (mIsFileLookedAt)
      CameraBridgesTest::LookAgain();
    else
      mBridges.Follow(GetLoan());
  }
  /// A setup that connects the camera with texts.
  std::string WriteSetup(const char* aPort = "Serial1", const char* aGain = "7") {
    KrPropertyList bridge;
    bridge.Add({"Way", "TolvanCameraFile"});
    bridge.Add({"Path", KrString(mCameraFile)});
    bridge.Add({"Source", "Source1"});
    bridge.Add({"ParametersSync", "0"});
    bridge.Add({"Feature.Gain", aGain});
    KrPropertyList index;
    index.Add({"CameraBridge0", aPort});
    KrConfigurationWriter writer;
    EXPECT_TRUE(writer.Store(aPort, bridge).IsOK());
    EXPECT_TRUE(writer.Store("CameraBridgeIndex", index).IsOK());
    EXPECT_TRUE(writer.Save(mSetup).IsOK());
    return mSetup;
  }
  /// Reads a setup, and begins what is to come of it.
  void Load(const std::string& aFile) {
    mBridges.LoadSetup(aFile);
    ASSERT_TRUE(Await([this] { return !mBridges.GetFile().IsInUse(); }));
  }
  KrCameraBridge& GetBridge() { return *mBridges.GetWindow().GetBridge(kTextPort); }
  bool AwaitConnected() {
    return Await([this] { return !mBridges.IsWorking() && mBridges.HasPorts() && GetBridge().IsConnected(); });
  }
  bool AwaitIdle() {
    return Await([this] { return !mBridges.IsWorking() && !mBridges.GetFile().IsInUse(); });
  }
  double GetGain() {
    double gain = -1;
    EXPECT_TRUE(GetBridge().GetParameters()->GetFloat("Gain")->GetValue(gain).IsOK());
    return gain;
  }
  void SetGain(double aGain) { EXPECT_TRUE(GetBridge().GetParameters()->GetFloat("Gain")->SetValue(aGain).IsOK()); }
  KrPropertyList ReadSaved(const std::string& aFile, const char* aName) {
    KrConfigurationReader reader;
    KrPropertyList list;
    EXPECT_TRUE(reader.Load(aFile).IsOK());
    EXPECT_TRUE(reader.Restore(aName, list).IsOK()) << aName;
    return list;
  }

  TemporaryFolder mFolder;
  const std::string mCameraFile = mFolder.GetFile("camera.yml");
  const std::string mSetup = mFolder.GetFile("setup.xml");
  std::shared_ptr<KrSimulatedFaults> mFaults;
  bool mIsFileLookedAt = true;
  std::vector<BridgeNews> mNews;
  std::vector<std::string> mLines;
};

} // namespace

TEST_F(CameraSetups, Loaded_ConnectsItsCameraBesideTheViewer) {
  OpenGrabber();

  Load(WriteSetup());

  EXPECT_TRUE(mBridges.IsWorking());
  EXPECT_FALSE(mBridges.IsOffered());
  ASSERT_TRUE(AwaitConnected());
  EXPECT_TRUE(mBridges.IsOffered());
  EXPECT_STREQ(GetBridge().GetSource().CStr(), "Source1");
  EXPECT_EQ(GetGain(), 7);
  EXPECT_THAT(mLines, IsEmpty());
}

TEST_F(CameraSetups, LoadedInTheOpenWindow_IsShownThere) {
  OpenGrabber();
  ASSERT_TRUE(mBridges.Show(0).IsOK());

  Load(WriteSetup());

  EXPECT_FALSE(mBridges.IsWorking());
  EXPECT_TRUE(GetBridge().IsConnected());
  EXPECT_THAT(mLines, IsEmpty());
}

TEST_F(CameraSetups, LoadedWhileTheDeviceIsAway_ConnectsWhenItIsBack) {
  OpenGrabber();
  Lose();

  Load(WriteSetup());
  EXPECT_FALSE(mBridges.IsWorking());
  Return();

  ASSERT_TRUE(AwaitConnected());
  EXPECT_EQ(GetGain(), 7);
}

TEST_F(CameraSetups, ReadWhileTheDeviceComesBack_FollowsWhatIsTakenUpThen) {
  OpenGrabber();
  Load(WriteSetup());
  ASSERT_TRUE(AwaitConnected());
  Lose();
  ASSERT_TRUE(mFaults->SilenceSerialPort(kTextPort, true).IsOK());
  mBridges.LoadSetup(WriteSetup("Serial1", "9"));
  ASSERT_TRUE(mLab->Restore(kGrabberMAC).IsOK());
  // Nobody looks at the file before the bridges are at work.
  mIsFileLookedAt = false;
  ASSERT_TRUE(Await([this] { return mBridges.IsWorking(); }));
  mIsFileLookedAt = true;

  LookAgain();
  EXPECT_TRUE(mBridges.IsWorking());
  EXPECT_TRUE(mBridges.GetFile().IsInUse());
  ASSERT_TRUE(mFaults->SilenceSerialPort(kTextPort, false).IsOK());
  ASSERT_TRUE(AwaitIdle());

  EXPECT_TRUE(GetBridge().IsConnected());
  EXPECT_EQ(GetGain(), 9);
}

TEST_F(CameraSetups, DeviceLostAndBack_HasItsCameraAgainWithTheCamerasOwnValues) {
  OpenGrabber();
  Load(WriteSetup());
  ASSERT_TRUE(AwaitConnected());
  SetGain(3);
  for (int round = 0; round < 2; ++round) {
    Lose();
    Return();

    ASSERT_TRUE(AwaitConnected()) << round;
    EXPECT_EQ(GetGain(), 3);
    EXPECT_STREQ(GetBridge().GetSource().CStr(), "Source1");
  }
  EXPECT_THAT(mLines, IsEmpty());
}

TEST_F(CameraSetups, DeviceLostAndBackUnderTheOpenWindow_HasItsCameraAgain) {
  OpenGrabber();
  ASSERT_TRUE(mBridges.Show(0).IsOK());
  Load(WriteSetup());
  ASSERT_TRUE(AwaitConnected());

  Lose();
  EXPECT_EQ(CountListedPorts(), 0);
  Return();

  ASSERT_TRUE(AwaitConnected());
  EXPECT_EQ(CountListedPorts(), 3);
  EXPECT_THAT(mLines, IsEmpty());
}

TEST_F(CameraSetups, CameraThatTheUserDisconnected_IsNotConnectedAgain) {
  OpenGrabber();
  Load(WriteSetup());
  ASSERT_TRUE(AwaitConnected());
  GetBridge().Disconnect();

  Lose();
  Return();
  ASSERT_TRUE(AwaitIdle());

  EXPECT_FALSE(GetBridge().IsConnected());
}

TEST_F(CameraSetups, CameraThatIsNotThereWhenTheDeviceIsBack_IsToldAndTriedAgainTheNextTime) {
  OpenGrabber();
  Load(WriteSetup());
  ASSERT_TRUE(AwaitConnected());
  Lose();
  std::filesystem::rename(mCameraFile, mCameraFile + ".away");
  Return();
  ASSERT_TRUE(Await([this] { return !mNews.empty(); }));
  EXPECT_THAT(mNews, ElementsAre(BridgeNews::NotTakenUp));
  EXPECT_THAT(mLines, testing::Contains(HasSubstr("Serial1")));

  Lose();
  std::filesystem::rename(mCameraFile + ".away", mCameraFile);
  Return();

  EXPECT_TRUE(AwaitConnected());
}

TEST_F(CameraSetups, PortThatTheDeviceLacks_IsToldOnce) {
  OpenGrabber();

  Load(WriteSetup("Bulk7"));
  ASSERT_TRUE(AwaitIdle());

  EXPECT_THAT(mNews, ElementsAre(BridgeNews::NotAllLoaded));
  EXPECT_THAT(mLines, ElementsAre(HasSubstr("Bulk7")));
  Lose();
  Return();
  ASSERT_TRUE(AwaitIdle());
  EXPECT_EQ(mNews.size(), 1u);
}

TEST_F(CameraSetups, FileThatIsNone_ChangesNothing) {
  OpenGrabber();
  Load(WriteSetup());
  ASSERT_TRUE(AwaitConnected());
  KrConfigurationWriter other;
  ASSERT_TRUE(other.Store("SerialBridges", {}).IsOK());
  ASSERT_TRUE(other.Save(mSetup).IsOK());

  Load(mSetup);
  Load(mFolder.GetFile("none.xml"));

  EXPECT_THAT(mNews, ElementsAre(BridgeNews::NotLoaded, BridgeNews::NotLoaded));
  EXPECT_TRUE(GetBridge().IsConnected());
}

TEST_F(CameraSetups, Saved_HasWhatTheCameraIsSetTo) {
  OpenGrabber();
  Load(WriteSetup());
  ASSERT_TRUE(AwaitConnected());
  SetGain(5);
  for (const bool isInWindow : {false, true}) {
    const std::string file = mFolder.GetFile(isInWindow ? "window.xml" : "beside.xml");
    if (isInWindow) {
      ASSERT_TRUE(mBridges.Show(0).IsOK());
    }

    mBridges.SaveSetup(file);
    EXPECT_EQ(mBridges.IsWorking(), !isInWindow);
    ASSERT_TRUE(AwaitIdle());

    const KrPropertyList saved = ReadSaved(file, "Serial1");
    EXPECT_STREQ(saved.GetProperty("Feature.Gain")->GetValue().CStr(), "5") << isInWindow;
    EXPECT_STREQ(saved.GetProperty("Source")->GetValue().CStr(), "Source1");
    EXPECT_EQ(ReadSaved(file, "CameraBridgeIndex").GetCount(), 1u);
  }
  EXPECT_THAT(mLines, IsEmpty());
}

TEST_F(CameraSetups, SavedWhileTheDeviceIsAway_IsWhatIsTakenUpThen) {
  OpenGrabber();
  Load(WriteSetup());
  ASSERT_TRUE(AwaitConnected());
  Lose();

  const std::string file = mFolder.GetFile("away.xml");
  mBridges.SaveSetup(file);
  ASSERT_TRUE(AwaitIdle());

  EXPECT_STREQ(ReadSaved(file, "Serial1").GetProperty("Way")->GetValue().CStr(), "TolvanCameraFile");
}

TEST_F(CameraSetups, CameraThatIsSilentWhenItIsSaved_IsSavedAsItIsConnectedAndTold) {
  OpenGrabber();
  Load(WriteSetup());
  ASSERT_TRUE(AwaitConnected());
  ASSERT_TRUE(mFaults->SilenceSerialPort(kTextPort, true).IsOK());

  const std::string file = mFolder.GetFile("silent.xml");
  mBridges.SaveSetup(file);
  ASSERT_TRUE(AwaitIdle());

  EXPECT_THAT(mNews, ElementsAre(BridgeNews::NotAllSaved));
  EXPECT_STREQ(ReadSaved(file, "Serial1").GetProperty("Way")->GetValue().CStr(), "TolvanCameraFile");
}

TEST_F(CameraSetups, DeviceLostWhileItsCameraIsConnected_ConnectsItTheNextTime) {
  OpenGrabber();
  ASSERT_TRUE(mFaults->SilenceSerialPort(kTextPort, true).IsOK());
  Load(WriteSetup());
  ASSERT_TRUE(mBridges.IsWorking());

  Lose();
  EXPECT_FALSE(mBridges.IsWorking());
  ASSERT_TRUE(mFaults->SilenceSerialPort(kTextPort, false).IsOK());
  Return();

  ASSERT_TRUE(AwaitConnected());
  EXPECT_EQ(GetGain(), 7);
  EXPECT_THAT(mLines, IsEmpty());
}

TEST_F(CameraSetups, DeviceLostWhileItsCameraTellsWhatItIsSetTo_IsToldAsNotSaved) {
  OpenGrabber();
  Load(WriteSetup());
  ASSERT_TRUE(AwaitConnected());
  ASSERT_TRUE(mFaults->SilenceSerialPort(kTextPort, true).IsOK());
  mBridges.SaveSetup(mFolder.GetFile("lost.xml"));
  ASSERT_TRUE(mBridges.IsWorking());

  mBridges.GiveBack(GetLoan());

  EXPECT_THAT(mNews, ElementsAre(BridgeNews::NotSaved));
  EXPECT_FALSE(std::filesystem::exists(mFolder.GetFile("lost.xml")));
}

TEST_F(CameraSetups, ViewerEndedWhileACameraIsConnected_Ends) {
  OpenGrabber();
  ASSERT_TRUE(mFaults->SilenceSerialPort(kTextPort, true).IsOK());
  Load(WriteSetup());
  ASSERT_TRUE(mBridges.IsWorking());

  Close();

  EXPECT_FALSE(mBridges.IsWorking());
  EXPECT_FALSE(mBridges.HasDevice());
}

TEST_F(CameraSetups, WindowClosedWhileACameraIsConnected_LeavesThatGoingOn) {
  OpenGrabber();
  ASSERT_TRUE(mBridges.Show(0).IsOK());
  ASSERT_TRUE(mFaults->SilenceSerialPort(kTextPort, true).IsOK());
  bool wasWorking = false;
  krgui::DuringNextModalLoop([&](QWidget&) {
    LookAgain();
    wasWorking = mBridges.IsWorking();
    mBridges.DeviceWindow::Close();
    EXPECT_TRUE(mFaults->SilenceSerialPort(kTextPort, false).IsOK());
  });

  Load(WriteSetup());

  EXPECT_TRUE(wasWorking);
  EXPECT_TRUE(mBridges.IsWorking());
  EXPECT_TRUE(AwaitConnected());
  EXPECT_THAT(mLines, IsEmpty());
}

TEST_F(CameraSetups, DeviceWantedBackWhileTheWindowConnects_IsGivenBackAndTakenUpAgain) {
  OpenGrabber();
  ASSERT_TRUE(mBridges.Show(0).IsOK());
  ASSERT_TRUE(mFaults->SilenceSerialPort(kTextPort, true).IsOK());
  krgui::DuringNextModalLoop([&](QWidget&) {
    Lose();
    EXPECT_TRUE(mFaults->SilenceSerialPort(kTextPort, false).IsOK());
  });

  Load(WriteSetup());

  EXPECT_FALSE(mBridges.HasDevice());
  Return();
  EXPECT_TRUE(AwaitConnected());
  EXPECT_THAT(mLines, IsEmpty());
}

TEST_F(CameraSetups, Synchronization_WaitsForTheStreamOfTheViewer) {
  OpenGrabber();
  Load(WriteSetup());
  ASSERT_TRUE(AwaitConnected());

  ASSERT_TRUE(GetBridge().SetParametersSyncEnabled(true).IsOK());

  EXPECT_TRUE(Await([this] {
    return GetBridge().GetParametersSyncText().ToUtf8().find("when its stream has stopped") != std::string::npos;
  }));
}

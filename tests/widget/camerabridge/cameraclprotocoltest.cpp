// Cameras with a CL Protocol driver in the camera bridge manager: the driver that comes with the library, in a process
// of its own.

#include "camerafixture.h"

#include "logic/camerabridge/cameratexts.h"
#include "temporaryfolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace krgui {

namespace {

class CLProtocol : public CameraTest {
protected:
  CLProtocol() {
    setenv("KRGUI_CLPROTOCOL_HOST", KR_TEST_HOST, 1);
    setenv("GENICAM_CLPROTOCOL", KR_TEST_DRIVERS, 1);
  }
  /// Chooses CL Protocol for the port with such a camera.
  void Choose() {
    Open();
    Pick(id::kDevicePort, "Bulk0");
    Click(id::kCLProtocol);
    ASSERT_TRUE(WaitFor([this] { return !GetEntries(id::kTemplate).empty(); }));
  }
  void Connect() {
    Choose();
    Click(id::kProbe);
    ASSERT_FALSE(GetEntries(id::kCLProtocolXML).empty());
    Click(id::kCLProtocolConnect);
    ASSERT_TRUE(GetBridge(2).IsConnected());
  }
};

} // namespace

TEST_F(CLProtocol, Chosen_ListsTheTemplatesShortenedAndSelectsTheFirst) {
  Choose();

  KrStringList templates;
  ASSERT_TRUE(KrCameraBridge::GetCLProtocolTemplates(templates).IsOK());
  std::vector<std::string> shown;
  for (const KrString& whole : templates)
    shown.push_back(ShortenTemplate(whole).ToUtf8());
  EXPECT_EQ(GetEntries(id::kTemplate), shown);
  EXPECT_EQ(GetText(id::kTemplate), shown.front());
  EXPECT_TRUE(IsEnabled(id::kTemplate));
  EXPECT_TRUE(IsEnabled(id::kProbe));
  EXPECT_FALSE(IsEnabled(id::kCLProtocolXML));
  EXPECT_FALSE(IsEnabled(id::kCLProtocolConnect));
}

TEST_F(CLProtocol, ProbingAndConnecting_ShowTheWaitCursor) {
  Choose();

  EXPECT_TRUE(HasWaitCursorDuring([this] { Click(id::kProbe); }));
  EXPECT_TRUE(HasWaitCursorDuring([this] { Click(id::kCLProtocolConnect); }));
  EXPECT_TRUE(GetBridge(2).IsConnected());
}

TEST_F(CLProtocol, Probed_ShowsTheCameraAndItsDescriptions) {
  Choose();

  Click(id::kProbe);

  EXPECT_THAT(GetText(id::kProbeStatus), testing::HasSubstr("SIM_CL_03"));
  EXPECT_THAT(GetText(id::kProbeStatus), testing::Not(testing::HasSubstr("#")));
  ASSERT_FALSE(GetEntries(id::kCLProtocolXML).empty());
  EXPECT_EQ(GetText(id::kCLProtocolXML), GetEntries(id::kCLProtocolXML).front());
  EXPECT_THAT(GetText(id::kCLProtocolXML), testing::Not(testing::HasSubstr("@")));
  // Now a description is to be chosen, not another camera.
  EXPECT_FALSE(IsEnabled(id::kTemplate));
  EXPECT_FALSE(IsEnabled(id::kProbe));
  EXPECT_TRUE(IsEnabled(id::kCLProtocolXML));
  EXPECT_TRUE(IsEnabled(id::kCLProtocolConnect));
  EXPECT_FALSE(HasParameters());
}

TEST_F(CLProtocol, Keyboard_GoesFromTheProbeToTheDescriptionsAndFromThereToTheParameters) {
  Choose();
  const auto press = [this](int aButton) {
    Get(aButton).setFocus();
    QTest::keyClick(&Get(aButton), Qt::Key_Space);
  };
  const auto getFocused = [this] { return mWindow->GetWidget()->focusWidget(); };

  press(id::kProbe);
  ASSERT_FALSE(GetEntries(id::kCLProtocolXML).empty());
  EXPECT_EQ(getFocused(), &Get(id::kCLProtocolXML));

  press(id::kCLProtocolConnect);
  ASSERT_TRUE(GetBridge(2).IsConnected());
  ASSERT_NE(getFocused(), nullptr);
  EXPECT_NE(getFocused(), &Get(id::kSource));
  QTest::keyClick(getFocused(), Qt::Key_Down);
  EXPECT_TRUE(GetBridge(2).GetSource().IsEmpty());
}

TEST_F(CLProtocol, Connected_ShowsTheParametersAndCanOnlyBeEndedByAnotherKind) {
  Connect();

  EXPECT_TRUE(HasParameters());
  EXPECT_EQ(GetText(id::kCLProtocolStatus), MakeStatus(2));
  for (const int control : {id::kTemplate, id::kProbe, id::kCLProtocolXML, id::kCLProtocolConnect})
    EXPECT_FALSE(IsEnabled(control)) << control;

  Click(id::kNone);
  EXPECT_FALSE(GetBridge(2).IsConnected());
  EXPECT_EQ(GetText(id::kProbeStatus), "Not found");
  EXPECT_THAT(GetEntries(id::kTemplate), testing::IsEmpty());
}

TEST_F(CLProtocol, ConnectedAndShownAgain_HasItsTextsAlone) {
  Connect();
  const std::string camera = GetText(id::kProbeStatus);
  const std::string driver = GetText(id::kTemplate);
  const std::string description = GetText(id::kCLProtocolXML);

  Pick(id::kDevicePort, "Serial0");
  EXPECT_EQ(GetText(id::kProbeStatus), "Not found");
  Pick(id::kDevicePort, "Bulk0");

  EXPECT_EQ(GetText(id::kProbeStatus), camera);
  EXPECT_THAT(GetEntries(id::kTemplate), testing::ElementsAre(driver));
  EXPECT_THAT(GetEntries(id::kCLProtocolXML), testing::ElementsAre(description));
  EXPECT_EQ(GetText(id::kCLProtocolStatus), MakeStatus(2));
  EXPECT_TRUE(HasParameters());

  // So it is read back by an opening.
  ASSERT_TRUE(mWindow->Close().IsOK());
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  Pick(id::kDevicePort, "Bulk0");
  EXPECT_EQ(GetText(id::kProbeStatus), camera);
  EXPECT_THAT(GetEntries(id::kTemplate), testing::ElementsAre(driver));
  EXPECT_THAT(GetEntries(id::kCLProtocolXML), testing::ElementsAre(description));
}

TEST_F(CLProtocol, NotConnectedAndShownAgain_FetchesTheTemplatesAnew) {
  Choose();
  Click(id::kProbe);

  Pick(id::kDevicePort, "Serial0");
  Pick(id::kDevicePort, "Bulk0");

  ASSERT_TRUE(WaitFor([this] { return IsEnabled(id::kProbe); }));
  EXPECT_FALSE(GetEntries(id::kTemplate).empty());
  EXPECT_THAT(GetEntries(id::kCLProtocolXML), testing::IsEmpty());
  EXPECT_EQ(GetText(id::kProbeStatus), "Not found");
}

TEST_F(CLProtocol, NoSuchCameraBehindThePort_IsToldOf) {
  Open();
  // The one behind it lives on its cable.
  Click(id::kPoCL);
  Pick(id::kDevicePort, "Serial1");
  Click(id::kCLProtocol);
  ASSERT_TRUE(WaitFor([this] { return IsEnabled(id::kProbe); }));

  ExpectBoxes(1);
  Click(id::kProbe);

  ASSERT_EQ(mBoxes.size(), 1u);
  EXPECT_THAT(mBoxes[0],
              testing::StartsWith("Frame Grabber Camera Bridge: Error retrieving CL Protocol XML IDs.\nNotFound: "));
  EXPECT_EQ(GetText(id::kProbeStatus), "Not found");
  EXPECT_TRUE(IsEnabled(id::kProbe));
}

TEST_F(CLProtocol, CameraThatFallsSilentBeforeItIsConnected_IsToldOf) {
  Choose();
  Click(id::kProbe);
  ASSERT_TRUE(mLab->GetFaults(kGrabberMAC)->LoseSerialBytes(2, KrSerialDirection::Received, 1).IsOK());

  ExpectBoxes(1);
  Click(id::kCLProtocolConnect);

  ASSERT_EQ(mBoxes.size(), 1u);
  EXPECT_THAT(mBoxes[0], testing::StartsWith("Frame Grabber Camera Bridge: Error connecting CL Protocol camera.\n"));
  EXPECT_FALSE(GetBridge(2).IsConnected());
  EXPECT_EQ(GetText(id::kCLProtocolStatus), "Not initialized");
  EXPECT_TRUE(IsEnabled(id::kCLProtocolConnect));
}

TEST_F(CLProtocol, DriverThatIsNone_IsToldOf) {
  const TemporaryFolder folder;
  std::filesystem::copy(KR_TEST_DRIVERS, folder.GetPath(), std::filesystem::copy_options::recursive);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.GetPath())) {
    if (entry.is_regular_file())
      std::ofstream(entry.path()) << "no library";
  }
  setenv("GENICAM_CLPROTOCOL", folder.GetPath().c_str(), 1);
  Open();

  ExpectBoxes(1);
  Click(id::kCLProtocol);
  ASSERT_TRUE(WaitFor([this] { return !mBoxes.empty(); }));

  EXPECT_THAT(mBoxes[0],
              testing::StartsWith("Frame Grabber Camera Bridge: Error retrieving CL Protocol options.\nSystemError: "));
  EXPECT_THAT(GetEntries(id::kTemplate), testing::IsEmpty());
}

} // namespace krgui

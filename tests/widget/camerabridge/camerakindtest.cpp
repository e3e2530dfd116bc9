// How a camera is reached: choosing a kind, GenCP, CL Protocol, and what goes wrong.

#include "camerafixture.h"

#include <QGuiApplication>

namespace krgui {

namespace {

class Kinds : public CameraTest {
protected:
  /// Silences the camera behind the first port.
  void Silence() {
    ASSERT_TRUE(mLab->GetFaults(kGrabberMAC)->LoseSerialBytes(0, KrSerialDirection::Received, 1).IsOK());
  }
};

} // namespace

TEST_F(Kinds, GenCPChosen_ListsTheDescriptionsAndSelectsTheFirst) {
  Open();

  Click(id::kGenCP);

  KrStringList ids;
  ASSERT_TRUE(GetBridge(0).GetGenCPXMLIDs(ids).IsOK());
  ASSERT_GT(ids.GetCount(), 0u);
  EXPECT_EQ(GetEntries(id::kGenCPXML).size(), ids.GetCount());
  EXPECT_EQ(GetText(id::kGenCPXML), ids[0].ToUtf8());
  EXPECT_TRUE(IsEnabled(id::kGenCPConnect));
  EXPECT_TRUE(IsEnabled(id::kGenCPXMLLabel));
  EXPECT_TRUE(IsEnabled(id::kGenCPStatus));
  EXPECT_FALSE(IsEnabled(id::kTemplateLabel));
  EXPECT_FALSE(IsEnabled(id::kLoad));
  EXPECT_FALSE(HasParameters());
}

TEST_F(Kinds, GenCPConnected_ShowsTheParametersAndTheirNumber) {
  Open();

  ConnectGenCP();

  EXPECT_TRUE(GetBridge(0).IsConnected());
  EXPECT_TRUE(HasParameters());
  EXPECT_EQ(GetText(id::kGenCPStatus), MakeStatus(0));
  // It can be connected anew.
  EXPECT_TRUE(IsEnabled(id::kGenCPConnect));
}

TEST_F(Kinds, GenCPConnectedTwice_IsConnected) {
  Open();
  ConnectGenCP();

  Click(id::kGenCPConnect);

  EXPECT_TRUE(GetBridge(0).IsConnected());
  EXPECT_TRUE(HasParameters());
  EXPECT_EQ(GetText(id::kGenCPStatus), MakeStatus(0));
}

TEST_F(Kinds, KindThatIsSetAlready_ChangesNothing) {
  Open();
  ConnectGenCP();
  KrGenParameterArray* const parameters = GetBridge(0).GetParameters();

  Click(id::kGenCP);

  EXPECT_EQ(GetBridge(0).GetParameters(), parameters);
  EXPECT_TRUE(HasParameters());
  EXPECT_FALSE(GetEntries(id::kGenCPXML).empty());
}

TEST_F(Kinds, AnotherKind_DisconnectsFirst) {
  Open();
  ConnectGenCP();

  Click(id::kNone);

  EXPECT_FALSE(GetBridge(0).IsConnected());
  EXPECT_FALSE(HasParameters());
  EXPECT_EQ(GetText(id::kGenCPStatus), "Not initialized");
  EXPECT_THAT(GetEntries(id::kGenCPXML), testing::IsEmpty());
  EXPECT_FALSE(IsEnabled(id::kGenCPConnect));
}

TEST_F(Kinds, AnotherPort_ShowsThatOnesBridge) {
  Open();
  ConnectGenCP();

  Pick(id::kDevicePort, "Serial1");
  EXPECT_TRUE(IsChecked(id::kNone));
  EXPECT_FALSE(HasParameters());
  EXPECT_THAT(GetEntries(id::kGenCPXML), testing::IsEmpty());
  EXPECT_EQ(GetText(id::kGenCPStatus), "Not initialized");

  Pick(id::kDevicePort, "Serial0");
  EXPECT_TRUE(IsChecked(id::kGenCP));
  EXPECT_TRUE(HasParameters());
  EXPECT_THAT(GetEntries(id::kGenCPXML), testing::SizeIs(1));
  EXPECT_EQ(GetText(id::kGenCPStatus), MakeStatus(0));
}

TEST_F(Kinds, GenCPNotConnected_HasAnEmptyListWhenItsPortIsShownAgain) {
  Open();
  Click(id::kGenCP);

  Pick(id::kDevicePort, "Serial1");
  Pick(id::kDevicePort, "Serial0");

  EXPECT_TRUE(IsChecked(id::kGenCP));
  EXPECT_THAT(GetEntries(id::kGenCPXML), testing::IsEmpty());
  EXPECT_FALSE(IsEnabled(id::kGenCPConnect));
}

TEST_F(Kinds, SilentCamera_IsToldOfAndLeavesTheListEmpty) {
  Open();
  Silence();

  ExpectBoxes(1);
  Click(id::kGenCP);

  ASSERT_EQ(mBoxes.size(), 1u);
  EXPECT_THAT(mBoxes[0],
              testing::StartsWith("Frame Grabber Camera Bridge: Error retrieving GenCP XML IDs.\nNotFound: "));
  EXPECT_TRUE(IsChecked(id::kGenCP));
  EXPECT_THAT(GetEntries(id::kGenCPXML), testing::IsEmpty());
  EXPECT_FALSE(IsEnabled(id::kGenCPConnect));
}

TEST_F(Kinds, CameraThatFallsSilentBeforeItIsConnected_IsToldOf) {
  Open();
  Click(id::kGenCP);
  Silence();

  ExpectBoxes(1);
  Click(id::kGenCPConnect);

  ASSERT_EQ(mBoxes.size(), 1u);
  EXPECT_THAT(mBoxes[0], testing::StartsWith("Frame Grabber Camera Bridge: Error connecting GenCP camera.\n"));
  EXPECT_FALSE(GetBridge(0).IsConnected());
  EXPECT_EQ(GetText(id::kGenCPStatus), "Not initialized");
  EXPECT_TRUE(IsEnabled(id::kGenCPConnect));
}

TEST_F(Kinds, ConnectionThatFailsInASecondOpening_LeavesItsStatusAlone) {
  Open();
  ASSERT_TRUE(mWindow->Close().IsOK());
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  Click(id::kGenCP);
  ASSERT_TRUE(mLab->Lose(kGrabberMAC).IsOK());

  ExpectBoxes(1);
  Click(id::kGenCPConnect);

  EXPECT_EQ(GetText(id::kGenCPStatus), "Not initialized");
}

TEST_F(Kinds, ConnectedCameraThatCannotBeConnectedAnew_HasNoStatusOfBefore) {
  Open();
  ConnectGenCP();
  Silence();

  ExpectBoxes(1);
  Click(id::kGenCPConnect);

  ASSERT_EQ(mBoxes.size(), 1u);
  EXPECT_FALSE(GetBridge(0).IsConnected());
  EXPECT_EQ(GetText(id::kGenCPStatus), "Parameters not available");
  EXPECT_FALSE(HasParameters());
}

TEST_F(Kinds, CameraThatFallsSilentWhileItIsConnected_CanBeLeft) {
  Open();
  ConnectGenCP();
  Silence();

  Click(id::kNone);

  EXPECT_FALSE(GetBridge(0).IsConnected());
  EXPECT_TRUE(IsChecked(id::kNone));
  EXPECT_FALSE(HasParameters());
}

TEST_F(Kinds, DisturbedLine_IsConnectedAndBrowsedAllTheSame) {
  const std::shared_ptr<KrSimulatedFaults> faults = mLab->GetFaults(kGrabberMAC);
  ASSERT_TRUE(faults->CorruptSerialBytes(0, KrSerialDirection::Received, 1000).IsOK());
  ASSERT_TRUE(faults->RepeatSerialBytes(0, KrSerialDirection::Received, 997).IsOK());
  ASSERT_TRUE(faults->LoseSerialBytes(0, KrSerialDirection::Received, 991).IsOK());
  Open();

  ConnectGenCP();

  EXPECT_TRUE(GetBridge(0).IsConnected());
  EXPECT_TRUE(HasParameters());
  EXPECT_EQ(GetText(id::kGenCPStatus), MakeStatus(0));
  KrSimulatedSerialCounts counts;
  ASSERT_TRUE(faults->GetSerialCounts(0, counts).IsOK());
  EXPECT_GT(counts.lostReceived, 0u);
}

TEST_F(Kinds, LookingForAGenCPCamera_ShowsTheWaitCursorAndConnectingDoesNot) {
  Open();

  EXPECT_TRUE(HasWaitCursorDuring([this] { Click(id::kGenCP); }));
  EXPECT_FALSE(HasWaitCursorDuring([this] { Click(id::kGenCPConnect); }));
}

TEST_F(Kinds, CLProtocolWithoutDrivers_HasNothingToChooseFrom) {
  Open();
  Pick(id::kDevicePort, "Bulk0");

  Click(id::kCLProtocol);
  ASSERT_TRUE(WaitFor([this] { return IsEnabled(id::kTemplateLabel); }));
  QCoreApplication::processEvents();

  EXPECT_TRUE(IsChecked(id::kCLProtocol));
  EXPECT_THAT(GetEntries(id::kTemplate), testing::IsEmpty());
  for (const int control : {id::kTemplateLabel, id::kProbeStatus, id::kCLProtocolXMLLabel, id::kCLProtocolStatus})
    EXPECT_TRUE(IsEnabled(control)) << control;
  for (const int control : {id::kTemplate, id::kProbe, id::kCLProtocolXML, id::kCLProtocolConnect})
    EXPECT_FALSE(IsEnabled(control)) << control;
}

} // namespace krgui

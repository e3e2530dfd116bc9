// Which controls of the camera bridge manager each fact enables, and which of them are seen.

#include "camerafixture.h"

#include "camerabridge/cameracontrols.h"
#include "controlhands.h"

#include <QAbstractItemView>
#include <QScreen>

#include <set>

namespace krgui {

namespace {

using Enabling = CameraBridgeEnabling;

struct Row {
  const char* fact;
  bool Enabling::*isSet;
  std::set<int> controls;
};

const Row kRows[] = {
    {"a port",
     &Enabling::port,
     {id::kDevicePort, id::kNone, id::kCLProtocol, id::kGenCP, id::kSynchronization, id::kBytesSent, id::kBytesReceived,
      id::kReset}},
    {"CL Protocol",
     &Enabling::clProtocol,
     {id::kTemplateLabel, id::kProbeStatus, id::kCLProtocolXMLLabel, id::kCLProtocolStatus}},
    {"templates", &Enabling::templates, {id::kTemplate, id::kProbe}},
    {"CL Protocol identifiers", &Enabling::clProtocolXML, {id::kCLProtocolXML, id::kCLProtocolConnect}},
    {"GenCP", &Enabling::genCP, {id::kGenCPXMLLabel, id::kGenCPStatus}},
    {"GenCP identifiers", &Enabling::genCPXML, {id::kGenCPXML, id::kGenCPConnect}},
    {"camera files", &Enabling::cameraFileKind, {id::kCameraFile}},
    {"a camera file",
     &Enabling::cameraFile,
     {id::kPathLabel, id::kPath, id::kBrowse, id::kLoad, id::kCameraFileStatus}},
    {"sources", &Enabling::sources, {id::kSourceLabel, id::kSource}},
    {"Power over Camera Link", &Enabling::poCL, {id::kPoCL}},
    {"visible camera files", &Enabling::isCameraFileVisible, {}},
};
constexpr int kCameraFileControls[] = {id::kCameraFile, id::kPathLabel, id::kPath,
                                       id::kBrowse,     id::kLoad,      id::kCameraFileStatus};

class Controls : public CameraTest {
protected:
  static std::set<int> GetAll() {
    std::set<int> all;
    for (const Row& row : kRows)
      all.insert(row.controls.begin(), row.controls.end());
    return all;
  }
  std::set<int> GetEnabled() const {
    std::set<int> enabled;
    for (const int control : GetAll()) {
      if (IsEnabled(control))
        enabled.insert(control);
    }
    return enabled;
  }
  CameraControls FindControls() const {
    return CameraControls([&window = *mWindow->GetWidget()](int aID) {
      return window.findChild<QWidget*>(QStringLiteral("control%1").arg(aID));
    });
  }
};

} // namespace

TEST_F(Controls, EachFact_EnablesItsControlsAlone) {
  Open();
  CameraControls controls = FindControls();

  for (const Row& row : kRows) {
    Enabling enabling;
    enabling.*row.isSet = true;

    (void)controls.Enable(enabling);

    EXPECT_EQ(GetEnabled(), row.controls) << row.fact;
    for (const int control : kCameraFileControls)
      EXPECT_EQ(Get(control).isVisible(), enabling.isCameraFileVisible) << row.fact << control;
  }
}

TEST_F(Controls, PortWithoutAKind_HasTheKindsAndWhatBelongsToEveryPort) {
  Open();

  EXPECT_EQ(GetEnabled(), (std::set<int>{id::kDevicePort, id::kNone, id::kCLProtocol, id::kGenCP, id::kCameraFile,
                                         id::kSourceLabel, id::kSource, id::kSynchronization, id::kBytesSent,
                                         id::kBytesReceived, id::kReset, id::kPoCL}));
}

TEST_F(Controls, DeviceWithoutPorts_EnablesNothing) {
  std::unique_ptr<KrDevice> camera;
  ASSERT_TRUE(LabTest::Open(kRangeMAC, camera).IsOK());
  ASSERT_TRUE(mWindow->SetDevice(camera.get()).IsOK());

  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  EXPECT_EQ(GetEnabled(), std::set<int>());
  mWindow.reset();
}

TEST_F(Controls, HiddenCameraFile_KeepsItsKindAndItsCamera) {
  Open();
  ConnectCameraFile();

  mWindow->HidePCF();

  for (const int control : kCameraFileControls)
    EXPECT_FALSE(Get(control).isVisible()) << control;
  EXPECT_FALSE(IsEnabled(id::kCameraFile));
  EXPECT_TRUE(IsChecked(id::kCameraFile));
  EXPECT_TRUE(GetBridge(1).IsConnected());
  EXPECT_TRUE(HasParameters());

  mWindow->ShowPCF();
  EXPECT_TRUE(IsEnabled(id::kLoad));
  EXPECT_EQ(GetText(id::kCameraFileStatus), MakeStatus(1));
}

TEST_F(Controls, TextsOfADeviceInAList_AreOneLineOfALimitedLengthAndKeptAsTheyWere) {
  Open();
  const CameraControls controls = FindControls();
  const KrString texts[] = {"Source 0", "Source\n0", "\xff", std::string(5000, 'x')};

  controls.Fill(id::kSource, {std::begin(texts), std::end(texts)});

  EXPECT_THAT(GetEntries(id::kSource), testing::ElementsAre("Source 0", "Source 0", "\uFFFD", std::string(1023, 'x')));
  for (const KrString& text : texts) {
    controls.Select(id::kSource, text);
    EXPECT_EQ(controls.GetSelectedText(id::kSource), text);
  }
}

TEST_F(Controls, ListOfALongText_DoesNotOutgrowTheScreen) {
  Open();

  FindControls().Fill(id::kSource, {std::string(5000, 'x')});

  const auto& list = Get<QComboBox>(id::kSource);
  EXPECT_EQ(list.view()->minimumWidth(), list.screen()->availableGeometry().width());
}

TEST_F(Controls, EmptyList_HasNoTooltip) {
  Open();
  EXPECT_EQ(Get(id::kGenCPXML).toolTip(), "");
  EXPECT_TRUE(Get(id::kDevicePort).toolTip().contains("Serial0"));

  ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());

  EXPECT_EQ(Get(id::kDevicePort).toolTip(), "");
}

TEST_F(Controls, Wheel_ChoosesInNoList) {
  Open();
  Click(id::kGenCP);
  ASSERT_TRUE(WaitFor([this] { return IsEnabled(id::kSource); }));

  for (const int list : {id::kDevicePort, id::kGenCPXML, id::kSource}) {
    Get(list).setFocus();
    const std::string before = GetText(list);

    EXPECT_FALSE(krtest::TurnWheel(Get(list), false)) << list;
    EXPECT_FALSE(krtest::TurnWheel(Get(list), true)) << list;
    EXPECT_EQ(GetText(list), before) << list;
  }
}

} // namespace krgui

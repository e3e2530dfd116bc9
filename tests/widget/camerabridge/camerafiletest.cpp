// Camera files in the camera bridge manager.

#include "camerafixture.h"

#include "temporaryfolder.h"

#include <QFileDialog>

namespace krgui {

namespace {

class CameraFiles : public CameraTest {
protected:
  std::string MakeFile(const char* aText) {
    const std::string path = mFolder.GetFile("camera.yml");
    std::ofstream(path) << aText;
    return path;
  }
  TemporaryFolder mFolder;
};

constexpr int kControls[] = {id::kCameraFile, id::kPathLabel, id::kPath, id::kBrowse, id::kLoad, id::kCameraFileStatus};

} // namespace

TEST_F(CameraFiles, Chosen_EnablesWhatBelongsToThem) {
  Open();
  EXPECT_FALSE(IsEnabled(id::kLoad));

  Click(id::kCameraFile);

  for (const int control : kControls)
    EXPECT_TRUE(IsEnabled(control)) << control;
  EXPECT_TRUE(Get<QLineEdit>(id::kPath).isReadOnly());
  EXPECT_EQ(GetText(id::kCameraFileStatus), "");
}

TEST_F(CameraFiles, Dialog_HasItsTitleAndFilters) {
  Open();
  Click(id::kCameraFile);
  QString title;
  QStringList filters;
  OnNextDialog("camerafile", [&](QWidget& aDialog) {
    title = aDialog.windowTitle();
    const auto* const list = aDialog.findChild<QComboBox*>("fileTypeCombo");
    for (int index = 0; list && index < list->count(); ++index)
      filters.append(list->itemText(index));
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  Click(id::kBrowse);

  EXPECT_EQ(title, "Select Tolvan Camera File");
  EXPECT_EQ(filters, QStringList({"Tolvan Camera Files (*.yml)", "All files (*.*)"}));
  EXPECT_EQ(GetText(id::kPath), "");
}

TEST_F(CameraFiles, FileThatIsChosen_IsShownAndNotLoadedYet) {
  Open();
  Click(id::kCameraFile);

  ChooseFile(kTextCameraFile);

  EXPECT_EQ(GetText(id::kPath), kTextCameraFile);
  EXPECT_FALSE(GetBridge(0).IsConnected());
}

TEST_F(CameraFiles, Loaded_ShowsTheParametersAndTheirNumber) {
  Open();

  ConnectCameraFile();

  ASSERT_TRUE(GetBridge(1).IsConnected());
  EXPECT_TRUE(HasParameters());
  EXPECT_EQ(GetText(id::kCameraFileStatus), MakeStatus(1));

  Pick(id::kDevicePort, "Serial0");
  EXPECT_EQ(GetText(id::kPath), "");
  EXPECT_EQ(GetText(id::kCameraFileStatus), "Not initialized");

  Pick(id::kDevicePort, "Serial1");
  EXPECT_TRUE(IsChecked(id::kCameraFile));
  EXPECT_EQ(GetText(id::kPath), kTextCameraFile);
  EXPECT_EQ(GetText(id::kCameraFileStatus), MakeStatus(1));
  EXPECT_TRUE(HasParameters());
}

TEST_F(CameraFiles, Loading_ShowsTheWaitCursor) {
  Open();
  Pick(id::kDevicePort, "Serial1");
  Click(id::kCameraFile);
  ChooseFile(kTextCameraFile);

  EXPECT_TRUE(HasWaitCursorDuring([this] { Click(id::kLoad); }));
  EXPECT_TRUE(GetBridge(1).IsConnected());
}

TEST_F(CameraFiles, LoadedAgain_IsConnectedAnew) {
  Open();
  ConnectCameraFile();

  Click(id::kLoad);

  EXPECT_TRUE(GetBridge(1).IsConnected());
  EXPECT_TRUE(HasParameters());
}

TEST_F(CameraFiles, FileWithMistakes_HasThemListed) {
  Open();
  Click(id::kCameraFile);
  ChooseFile(MakeFile("cameraFile: 1\ncamera: {vendor: V, modle: M}\n"));

  ExpectBoxes(1);
  Click(id::kLoad);

  const KrStringList mistakes = GetBridge(0).GetTolvanCameraFileParserErrors();
  ASSERT_FALSE(mistakes.IsEmpty());
  ASSERT_EQ(mBoxes.size(), 1u);
  std::string expected = "Frame Grabber Camera Bridge: Error loading Tolvan Camera File:";
  for (const KrString& mistake : mistakes)
    expected += "\n" + mistake.ToUtf8();
  EXPECT_THAT(mBoxes[0], testing::StartsWith(expected + "\nBadData: "));
  EXPECT_FALSE(GetBridge(0).IsConnected());
}

TEST_F(CameraFiles, NoFile_IsToldOfWithoutLines) {
  Open();
  Click(id::kCameraFile);

  ExpectBoxes(1);
  Click(id::kLoad);

  ASSERT_EQ(mBoxes.size(), 1u);
  EXPECT_THAT(mBoxes[0], testing::StartsWith("Frame Grabber Camera Bridge: Error loading Tolvan Camera File.\n"));
  EXPECT_THAT(mPictures, testing::ElementsAre("Warning"));
}

TEST_F(CameraFiles, FileThatFailsAfterAnother_EndsThatOnesStatus) {
  Open();
  ConnectCameraFile();
  ChooseFile(MakeFile("no: file\n"));

  ExpectBoxes(1);
  Click(id::kLoad);

  EXPECT_FALSE(GetBridge(1).IsConnected());
  EXPECT_FALSE(HasParameters());
  EXPECT_EQ(GetText(id::kCameraFileStatus), "Parameters not available");
}

TEST_F(CameraFiles, FileThatFailsAfterAnother_IsNotThePortsFile) {
  Open();
  ConnectCameraFile();
  ChooseFile(MakeFile("no: file\n"));
  ExpectBoxes(1);
  Click(id::kLoad);

  Pick(id::kDevicePort, "Serial0");
  Pick(id::kDevicePort, "Serial1");

  EXPECT_TRUE(IsChecked(id::kCameraFile));
  EXPECT_EQ(GetText(id::kPath), kTextCameraFile);
  EXPECT_EQ(GetText(id::kCameraFileStatus), "Parameters not available");
}

TEST_F(CameraFiles, KindWithoutAFile_IsThereInTheNextOpening) {
  Open();
  Click(id::kCameraFile);
  ASSERT_TRUE(mWindow->Close().IsOK());

  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  EXPECT_TRUE(IsChecked(id::kCameraFile));
  EXPECT_TRUE(IsEnabled(id::kLoad));
  EXPECT_EQ(GetText(id::kPath), "");
  EXPECT_EQ(GetText(id::kCameraFileStatus), "Parameters not available");
}

TEST_F(CameraFiles, Hidden_AreGoneAndComeBack) {
  Open();
  EXPECT_TRUE(mWindow->IsPCFVisible());

  mWindow->HidePCF();
  EXPECT_FALSE(mWindow->IsPCFVisible());
  for (const int control : kControls)
    EXPECT_FALSE(Get(control).isVisible()) << control;
  EXPECT_FALSE(IsEnabled(id::kCameraFile));

  mWindow->ShowPCF();
  EXPECT_TRUE(mWindow->IsPCFVisible());
  for (const int control : kControls)
    EXPECT_TRUE(Get(control).isVisible()) << control;
  EXPECT_TRUE(IsEnabled(id::kCameraFile));
}

TEST_F(CameraFiles, HiddenBeforeTheWindowOpens_StayHidden) {
  mWindow->HidePCF();

  Open();

  for (const int control : kControls)
    EXPECT_FALSE(Get(control).isVisible()) << control;
}

} // namespace krgui

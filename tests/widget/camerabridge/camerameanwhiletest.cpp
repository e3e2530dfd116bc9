// What becomes of what is under way when bridges are loaded, or the window is opened anew, meanwhile.

#include "camerawaitingfixture.h"

#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "temporaryfolder.h"

namespace krgui {

namespace {

class Meanwhile : public WaitingTest {
protected:
  /// Connects the first port's GenCP camera, and remembers that as what is loaded.
  void ConnectAndSave() {
    Open();
    ConnectGenCP();
    KrConfigurationWriter writer;
    ASSERT_TRUE(mWindow->Save(writer).IsOK());
    const std::string file = mFolder.GetFile("bridges.xml");
    ASSERT_TRUE(writer.Save(file).IsOK());
    ASSERT_TRUE(mReader.Load(file).IsOK());
  }
  /// As a timer of the application may do.
  void Load() {
    mClock->SetStopped(false);
    KrStringList errors;
    EXPECT_TRUE(mWindow->Load(mReader, errors).IsOK());
    EXPECT_TRUE(errors.IsEmpty());
  }
  void LoadWhileItWaits() {
    WhileItWaits([this](QWidget&) { Load(); });
  }
  /// What was loaded, and nothing of what was under way.
  void ExpectLoaded() {
    EXPECT_TRUE(GetBridge(0).IsConnected());
    EXPECT_TRUE(IsChecked(id::kGenCP));
    EXPECT_THAT(GetEntries(id::kGenCPXML), testing::SizeIs(1));
    EXPECT_EQ(GetText(id::kGenCPStatus), MakeStatus(0));
    EXPECT_EQ(GetText(id::kCameraFileStatus), "Not initialized");
    EXPECT_EQ(GetText(id::kPath), "");
    EXPECT_TRUE(HasParameters());
  }

  TemporaryFolder mFolder;
  KrConfigurationReader mReader;
};

} // namespace

TEST_F(Meanwhile, LoadedWhileAnotherKindDisconnects_HasTheKindThatWasLoaded) {
  ConnectAndSave();

  LoadWhileItWaits();
  Click(id::kNone);

  EXPECT_EQ(mWaits, 1);
  ExpectLoaded();
  // It is the bridge's kind, too: choosing none ends it.
  Click(id::kNone);
  EXPECT_FALSE(GetBridge(0).IsConnected());
}

TEST_F(Meanwhile, LoadedWhileACameraFileConnects_ShowsWhatWasLoaded) {
  ConnectAndSave();
  Click(id::kCameraFile);
  ChooseFile(kTextCameraFile);

  LoadWhileItWaits();
  Click(id::kLoad);

  EXPECT_EQ(mWaits, 1);
  ExpectLoaded();
}

TEST_F(Meanwhile, LoadedWhileACameraIsLookedFor_ShowsWhatWasLoaded) {
  ConnectAndSave();
  Click(id::kNone);

  LoadWhileItWaits();
  Click(id::kGenCP);

  EXPECT_EQ(mWaits, 1);
  ExpectLoaded();
}

TEST_F(Meanwhile, LoadedUnderTheFileDialog_EndsIt) {
  ConnectAndSave();
  Click(id::kCameraFile);

  OnNextDialog("camerafile", [this](QWidget&) { Load(); });
  Click(id::kBrowse);

  ExpectLoaded();
}

TEST_F(Meanwhile, LoadedWhileItLoads_IsCancelledAndLoadsTheLatter) {
  ConnectAndSave();
  KrStringList errors;

  LoadWhileItWaits();
  EXPECT_EQ(mWindow->Load(mReader, errors), KrResult::Code::Cancelled);

  EXPECT_EQ(mWaits, 1);
  ExpectLoaded();
}

TEST_F(Meanwhile, OpenedAnewWhileAnotherKindDisconnects_ShowsThatKind) {
  ConnectAndSave();

  WhileItWaits([this](QWidget&) {
    mClock->SetStopped(false);
    EXPECT_TRUE(mWindow->Close().IsOK());
    EXPECT_TRUE(mWindow->ShowModeless(0).IsOK());
  });
  Click(id::kNone);

  EXPECT_EQ(mWaits, 1);
  EXPECT_FALSE(GetBridge(0).IsConnected());
  EXPECT_TRUE(IsChecked(id::kNone));
  Click(id::kGenCP);
  EXPECT_FALSE(GetEntries(id::kGenCPXML).empty());
}

} // namespace krgui

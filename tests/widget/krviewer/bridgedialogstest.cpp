// Setups of serial bridges that are loaded and saved: what their user is told of files and disks.

#include "bridges/bridgedialogs.h"

#include "bridges/serialbridges.h"
#include "hangingdisk.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "temporaryfolder.h"
#include "windowwait.h"

#include <QFileDialog>
#include <QMessageBox>

#include <gtest/gtest.h>

#include <filesystem>

using krviewer::BridgeDialogs;

namespace {

/// A disk and its folder. Who has been on it is on it for good, which the tests' own thread is.
struct SlowDisk {
  SlowDisk() { EXPECT_TRUE(disk.Enter()); }
  static SlowDisk& Get() {
    static SlowDisk slow;
    return slow;
  }

  const TemporaryFolder folder;
  HangingDisk disk{folder.GetPath().string()};
};

class BridgeDialogsTest : public testing::Test {
protected:
  ~BridgeDialogsTest() override { SlowDisk::Get().disk.Recover(); }

  void Load(const std::string& aFile) {
    mDialogs.AskForLoading();
    Answer(aFile);
  }
  void Save(const std::string& aFile) {
    mDialogs.AskForSaving();
    Answer(aFile);
  }
  /// Waits until the file is used up.
  bool AwaitUsed() {
    return krtest::AwaitCondition([this] {
      mDialogs.LookAgain();
      return mDialogs.CanUseFiles();
    });
  }
  QString GetMessage() const {
    const auto* const box = mPage.findChild<QMessageBox*>();
    return box ? box->text() : QString();
  }
  /// Saves to a file on a disk that stops answering.
  void SaveWhereTheDiskHangs() {
    SlowDisk::Get().disk.Hang();
    Save(mHanging);
    ASSERT_TRUE(krtest::AwaitCondition([] { return SlowDisk::Get().disk.CountWaiting() > 0; }));
  }

  const TemporaryFolder mFolder;
  const std::string mHanging = SlowDisk::Get().folder.GetFile("hanging.xml");
  QWidget mPage;
  krviewer::SerialBridges mBridges;
  BridgeDialogs mDialogs{mPage, mBridges, krviewer::GetSerialBridgeWords()};

private:
  void Answer(const std::string& aFile) {
    auto* const dialog = mPage.findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    Q_EMIT dialog->fileSelected(QString::fromStdString(aFile));
    delete dialog;
  }
};

} // namespace

TEST_F(BridgeDialogsTest, setupLoadedWithoutADevice_isSavedAsItWas) {
  KrPropertyList bridges;
  bridges.Add({"Bulk0", "CLDLL"});
  KrConfigurationWriter writer;
  ASSERT_TRUE(writer.Store("SerialBridges", bridges).IsOK());
  ASSERT_TRUE(writer.Save(mFolder.GetFile("setup.xml")).IsOK());

  Load(mFolder.GetFile("setup.xml"));
  ASSERT_TRUE(AwaitUsed());
  Save(mFolder.GetFile("saved.xml"));
  ASSERT_TRUE(AwaitUsed());

  KrConfigurationReader reader;
  KrPropertyList saved;
  ASSERT_TRUE(reader.Load(mFolder.GetFile("saved.xml")).IsOK());
  ASSERT_TRUE(reader.Restore("SerialBridges", saved).IsOK());
  ASSERT_EQ(saved.GetCount(), 1U);
  EXPECT_EQ(saved.GetProperty("Bulk0")->GetValue(), "CLDLL");
}

TEST_F(BridgeDialogsTest, fileThatIsBeingRead_keepsAnotherFromBeingUsedAndSaysSo) {
  Load(mFolder.GetFile("none.xml"));

  EXPECT_FALSE(mDialogs.CanUseFiles());
  EXPECT_EQ(mDialogs.GetHindrance(), "none.xml is being read; its disk takes its time.");
  EXPECT_FALSE(mDialogs.IsWriting());

  ASSERT_TRUE(AwaitUsed());
  EXPECT_TRUE(mDialogs.GetHindrance().isEmpty());
  EXPECT_TRUE(GetMessage().contains("none.xml")) << GetMessage().toStdString();
}

TEST_F(BridgeDialogsTest, savingToADiskThatHangs_holdsNothingUp) {
  ASSERT_NO_FATAL_FAILURE(SaveWhereTheDiskHangs());

  mDialogs.LookAgain();
  EXPECT_EQ(mDialogs.GetHindrance(), "hanging.xml is being written; its disk takes its time.");
  EXPECT_TRUE(mDialogs.IsWriting());
  EXPECT_FALSE(std::filesystem::exists(mHanging));

  SlowDisk::Get().disk.Recover();
  ASSERT_TRUE(AwaitUsed());
  EXPECT_TRUE(std::filesystem::exists(mHanging));
  EXPECT_EQ(GetMessage(), "");
}

TEST_F(BridgeDialogsTest, savingThatFails_isTold) {
  Save(mFolder.GetFile("none/setup.xml"));

  ASSERT_TRUE(AwaitUsed());
  EXPECT_TRUE(GetMessage().startsWith("The bridges were not saved:")) << GetMessage().toStdString();
}

TEST_F(BridgeDialogsTest, savingThatFailsAfterTheEnd_isKeptForWhoeverIsLeft) {
  Save(mFolder.GetFile("none/setup.xml"));

  mDialogs.End();
  mDialogs.AwaitWritten();

  EXPECT_FALSE(mDialogs.IsWriting());
  EXPECT_EQ(GetMessage(), "");
  ASSERT_EQ(mDialogs.GetFailures().size(), 1);
  EXPECT_TRUE(mDialogs.GetFailures()[0].contains("none/setup.xml")) << mDialogs.GetFailures()[0].toStdString();
}

TEST_F(BridgeDialogsTest, diskThatHangsAtTheEnd_needNotBeWaitedFor) {
  ASSERT_NO_FATAL_FAILURE(SaveWhereTheDiskHangs());

  mDialogs.End();
  mDialogs.FollowFile();
  EXPECT_TRUE(mDialogs.IsWriting());
  mDialogs.LeaveFile();

  EXPECT_FALSE(mDialogs.IsWriting());
  ASSERT_EQ(mDialogs.GetFailures().size(), 1);
  EXPECT_TRUE(mDialogs.GetFailures()[0].contains("hanging.xml")) << mDialogs.GetFailures()[0].toStdString();
}

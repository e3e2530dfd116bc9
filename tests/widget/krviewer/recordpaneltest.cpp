// The panel that records: what its controls ask for, and what it says.

#include "recording/recordpanel.h"

#include "recordings.h"
#include "windowwait.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>

#include <filesystem>

using namespace krviewer;

namespace {

class RecordPanelTest : public testing::Test {
protected:
  RecordPanelTest() {
    Find<QLineEdit>("recordFolder").setText(QString::fromStdString(mPlace.GetPath().string()));
    Find<QSpinBox>("recordFreeDisk").setValue(0);
    mPanel.show();
  }

  template <typename Control>
  Control& Find(const char* aName) {
    return *mPanel.findChild<Control*>(aName);
  }
  QString GetText(const char* aLabel) { return Find<QLabel>(aLabel).text(); }
  void Click() { Find<QPushButton>("recordButton").click(); }
  void Give(std::uint64_t aFirst, std::uint64_t aLast) {
    for (std::uint64_t frameID = aFirst; frameID <= aLast; ++frameID)
      mRecorder.OnFrame(MakeNumberedFrame(frameID), frameID);
  }
  bool AwaitText(const char* aLabel, const QString& aText) {
    return krtest::AwaitCondition([&] { return GetText(aLabel).contains(aText); });
  }
  QMessageBox* FindMessage() { return mPanel.findChild<QMessageBox*>(); }

  TemporaryFolder mPlace;
  Recorder mRecorder;
  RecordPanel mPanel{mRecorder, "Sim Mono", "02:4b"};
};

} // namespace

TEST_F(RecordPanelTest, StartAndStop_RecordUnderTheNameShown) {
  Click();
  const QString name = Find<QLineEdit>("recordName").text();
  EXPECT_TRUE(name.startsWith("Sim-Mono-2")) << name.toStdString();
  EXPECT_TRUE(mRecorder.IsBusy());
  EXPECT_EQ(Find<QPushButton>("recordButton").text(), "Stop Record&ing");
  EXPECT_FALSE(Find<QLineEdit>("recordFolder").isEnabled());
  Give(1, 3);
  Click();

  ASSERT_TRUE(AwaitText("recordState", "Stopped."));
  EXPECT_EQ(GetText("recordWritten"), "3 frames, 384 bytes");
  EXPECT_EQ(GetText("recordLosses"), "No frame was lost.");
  EXPECT_TRUE(Find<QLineEdit>("recordFolder").isEnabled());
  EXPECT_EQ(ReadColumn(mPlace.GetFile(name.toStdString()), "frame_id").size(), 3U);
}

TEST_F(RecordPanelTest, Controls_AreWhatIsRecorded) {
  Find<QLineEdit>("recordName").setText("mine");
  Find<QComboBox>("recordFormat").setCurrentIndex(2);
  Find<QSpinBox>("recordMostFrames").setValue(2);
  Find<QSpinBox>("recordEveryNth").setValue(2);
  Find<QCheckBox>("recordIncomplete").setChecked(true);

  Click();
  Give(1, 10);

  ASSERT_TRUE(AwaitText("recordState", "the number of frames was reached"));
  EXPECT_EQ(ReadColumn(mPlace.GetFile("mine"), "file"),
            (std::vector<std::string>{"frame-00000001.png", "frame-00000002.png"}));
  EXPECT_EQ(Find<QProgressBar>("recordDone").value(), Find<QProgressBar>("recordDone").maximum());
}

TEST_F(RecordPanelTest, NameThatIsTaken_IsToldAndNothingIsRecordedOver) {
  std::filesystem::create_directory(mPlace.GetFile("mine"));
  Find<QLineEdit>("recordName").setText("mine");

  Click();

  ASSERT_TRUE(AwaitText("recordState", "Failed:"));
  EXPECT_TRUE(GetText("recordState").contains("mine")) << GetText("recordState").toStdString();
  EXPECT_EQ(GetText("recordLosses"), "");
  EXPECT_EQ(Find<QLineEdit>("recordName").text(), "mine") << "What was typed is there to be changed.";
  EXPECT_TRUE(std::filesystem::is_empty(mPlace.GetFile("mine")));
}

TEST_F(RecordPanelTest, NameThatIsMissing_IsAskedFor) {
  Find<QLineEdit>("recordName").setText("  ");

  Click();

  ASSERT_NE(FindMessage(), nullptr);
  EXPECT_FALSE(mRecorder.IsBusy());
}

TEST_F(RecordPanelTest, CameraThatDoesNotStream_IsSaidWhileItRecords) {
  mRecorder.OnAcquisitionStarted();
  Click();

  mRecorder.OnAcquisitionEnded({});
  EXPECT_TRUE(AwaitText("recordState", "the camera does not stream"));
  mRecorder.OnAcquisitionStarted();

  EXPECT_TRUE(krtest::AwaitCondition([this] { return !GetText("recordState").contains("does not stream"); }));
}

TEST_F(RecordPanelTest, CameraThatIsNotThere_IsNotRecorded) {
  auto& button = Find<QPushButton>("recordButton");

  mPanel.SetCameraThere(false);
  EXPECT_FALSE(button.isEnabled());
  mPanel.SetCameraThere(true);
  EXPECT_TRUE(button.isEnabled());
  Click();
  mPanel.SetCameraThere(false);

  EXPECT_TRUE(button.isEnabled()); // It stops.
}

TEST_F(RecordPanelTest, Losses_StandOut) {
  KrBuffer torn = MakeNumberedFrame(1);
  torn.SetStatus(KrBufferStatus::Incomplete);
  Click();

  mRecorder.OnFrame(torn, 0);

  ASSERT_TRUE(AwaitText("recordLosses", "1 frame left out: a part never came."));
  EXPECT_TRUE(Find<QLabel>("recordLosses").font().bold());
}

TEST_F(RecordPanelTest, FreeRoom_IsThatOfTheFolder) {
  EXPECT_TRUE(AwaitText("recordRoom", "B"));

  Find<QLineEdit>("recordFolder").setText(QString::fromStdString(mPlace.GetFile("none")));

  EXPECT_TRUE(AwaitText("recordRoom", "There is no such folder."));
}

TEST_F(RecordPanelTest, Controls_AreKept) {
  Find<QComboBox>("recordFormat").setCurrentIndex(1);
  Find<QSpinBox>("recordMostSeconds").setValue(30);
  Find<QSpinBox>("recordQueue").setValue(99);
  RecordPanel other(mRecorder, "Sim Mono", "02:4b");

  other.RestoreState(mPanel.SaveState());

  EXPECT_EQ(other.findChild<QComboBox*>("recordFormat")->currentIndex(), 1);
  EXPECT_EQ(other.findChild<QSpinBox*>("recordMostSeconds")->value(), 30);
  EXPECT_EQ(other.findChild<QSpinBox*>("recordQueue")->value(), 99);
  EXPECT_EQ(other.findChild<QLineEdit*>("recordFolder")->text(), Find<QLineEdit>("recordFolder").text());
  EXPECT_EQ(other.SaveState(), mPanel.SaveState());
}

TEST_F(RecordPanelTest, StateThatIsNone_ChangesNothing) {
  const QByteArray before = mPanel.SaveState();
  for (const QByteArray& state : {QByteArray(), QByteArray("nonsense"), before.left(20), QByteArray(200, '\xff')}) {
    mPanel.RestoreState(state);

    EXPECT_EQ(mPanel.SaveState(), before);
  }
}

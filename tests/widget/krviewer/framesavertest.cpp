// Saving the frame that is shown, through the dialog.

#include "recording/framesaver.h"

#include "await.h"
#include "hangingdisk.h"
#include "recordings.h"
#include "windowwait.h"

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QThread>

#include <filesystem>

using namespace krviewer;

namespace {

class FrameSaverTest : public testing::Test {
protected:
  FrameSaverTest() {
    QObject::connect(&mSaver, &FrameSaver::Saved, &mSaver, [this](const QString& aText) { mSaved = aText; });
  }

  QFileDialog* FindDialog() { return mWindow.findChild<QFileDialog*>(); }
  static QString GetName(QFileDialog& aDialog) { return aDialog.findChild<QLineEdit*>("fileNameEdit")->text(); }
  void Accept(const QString& aName) {
    FindDialog()->findChild<QLineEdit*>("fileNameEdit")->setText(aName);
    QMetaObject::invokeMethod(FindDialog(), "accept");
  }
  QString GetPath(const char* aName) const { return QString::fromStdString(mPlace.GetFile(aName)); }
  bool AwaitSaved() {
    return krtest::AwaitCondition([this] { return !mSaved.isEmpty(); });
  }
  static bool AwaitCall(const HangingDisk& aDisk) {
    return krtest::Await([&] { return aDisk.CountWaiting() > 0; });
  }
  QMessageBox* FindMessage() { return mWindow.findChild<QMessageBox*>(); }

  TemporaryFolder mPlace;
  QWidget mWindow;
  NewestFrame mFrames;
  FrameSaver mSaver{mFrames, "Sim Mono", "02:4b"};
  QString mSaved;
};

} // namespace

TEST_F(FrameSaverTest, WithoutAFrame_SaysSo) {
  mSaver.Ask(&mWindow);

  EXPECT_FALSE(mSaver.HasFrame());
  EXPECT_EQ(FindDialog(), nullptr);
  ASSERT_NE(FindMessage(), nullptr);
  EXPECT_TRUE(FindMessage()->text().contains("no whole frame"));
}

TEST_F(FrameSaverTest, Dialog_ProposesANameOfCameraAndFrame) {
  mFrames.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(77)));

  mSaver.Ask(&mWindow);

  ASSERT_NE(FindDialog(), nullptr);
  EXPECT_EQ(GetName(*FindDialog()), "Sim-Mono-77.tif");
}

TEST_F(FrameSaverTest, FormatChosenInTheDialog_ShowsInTheName) {
  mFrames.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(77)));
  mSaver.Ask(&mWindow);
  ASSERT_NE(FindDialog(), nullptr);

  auto* const types = FindDialog()->findChild<QComboBox*>("fileTypeCombo");
  types->setCurrentIndex(2);
  Q_EMIT types->activated(2);

  EXPECT_EQ(GetName(*FindDialog()), "Sim-Mono-77.raw");
}

TEST_F(FrameSaverTest, FrameOfTheMomentOfTheCommand_IsSaved) {
  mFrames.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(7)));
  mSaver.Ask(&mWindow);
  mFrames.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(8)));

  Accept(GetPath("shot.raw"));

  ASSERT_TRUE(AwaitSaved());
  EXPECT_EQ(TemporaryFolder::ReadFile(mPlace.GetFile("shot.raw")), std::string(kFrameBytes, 7));
  const std::string text = TemporaryFolder::ReadFile(mPlace.GetFile("shot.raw.txt"));
  EXPECT_NE(text.find("frame_id=7\n"), std::string::npos) << text;
  EXPECT_NE(text.find("device_id=02:4b\n"), std::string::npos) << text;
  EXPECT_EQ(mSaved, "Frame 7 was saved as " + GetPath("shot.raw"));
}

TEST_F(FrameSaverTest, FolderAndFormat_AreKept) {
  mFrames.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(7)));
  mSaver.Save(mFrames.Get(), GetPath("shot.png"), &mWindow);
  ASSERT_TRUE(AwaitSaved());
  FrameSaver other(mFrames, "Sim Mono", "02:4b");

  other.RestoreState(mSaver.SaveState());
  other.Ask(&mWindow);

  ASSERT_NE(FindDialog(), nullptr);
  EXPECT_EQ(GetName(*FindDialog()), "Sim-Mono-7.png");
  EXPECT_EQ(FindDialog()->directory().absolutePath(), QString::fromStdString(mPlace.GetPath().string()));
}

TEST_F(FrameSaverTest, StateThatIsNone_ChangesNothing) {
  const QByteArray before = mSaver.SaveState();
  for (const QByteArray& state : {QByteArray(), QByteArray("nonsense"), before.left(9), QByteArray(100, '\xff')}) {
    mSaver.RestoreState(state);

    EXPECT_EQ(mSaver.SaveState(), before);
  }
}

TEST_F(FrameSaverTest, PlaceThatTakesNoFile_IsToldInAMessage) {
  mFrames.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(7)));

  mSaver.Save(mFrames.Get(), GetPath("none/shot.tif"), &mWindow);

  ASSERT_TRUE(krtest::AwaitCondition([this] { return FindMessage() != nullptr; }));
  EXPECT_TRUE(FindMessage()->text().contains("none/shot.tif")) << FindMessage()->text().toStdString();
  EXPECT_TRUE(mSaved.isEmpty());
}

TEST_F(FrameSaverTest, EndingOfNoFormatThatCanBeWritten_IsRefusedAndAskedForAgain) {
  mFrames.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(7)));
  mSaver.Ask(&mWindow);
  mFrames.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(8)));

  Accept(GetPath("shot.jpg"));

  ASSERT_NE(FindMessage(), nullptr);
  EXPECT_TRUE(FindMessage()->text().contains("shot.jpg")) << FindMessage()->text().toStdString();
  for (const char* ending : {".png", ".tif", ".raw"})
    EXPECT_TRUE(FindMessage()->text().contains(ending)) << ending;
  delete FindMessage();
  ASSERT_TRUE(krtest::AwaitCondition([this] { return mWindow.findChildren<QFileDialog*>().size() == 1; }));
  EXPECT_EQ(GetName(*FindDialog()), "shot.tif") << "What was typed is not to be typed again.";
  Accept(GetPath("shot.raw"));
  ASSERT_TRUE(AwaitSaved());
  EXPECT_EQ(TemporaryFolder::ReadFile(mPlace.GetFile("shot.raw")), std::string(kFrameBytes, 7));
  EXPECT_FALSE(std::filesystem::exists(mPlace.GetFile("shot.jpg")));
}

TEST_F(FrameSaverTest, FormatThatLosesBits_IsSaidSo) {
  mFrames.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(7, 16, KrPixel::YUV422_8)));

  mSaver.Save(mFrames.Get(), GetPath("shot.tif"), &mWindow);

  ASSERT_TRUE(AwaitSaved());
  EXPECT_TRUE(mSaved.contains("as it is shown, in 8 bits")) << mSaved.toStdString();
}

TEST_F(FrameSaverTest, FailureAfterTheEnd_IsKeptForWhoeverIsLeft) {
  mFrames.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(7)));
  mSaver.Save(mFrames.Get(), GetPath("none/first.tif"), &mWindow);
  mSaver.Save(mFrames.Get(), GetPath("second.raw"), &mWindow);

  mSaver.End();
  mSaver.AwaitWritten();

  ASSERT_EQ(mSaver.GetFailures().size(), 1);
  EXPECT_TRUE(mSaver.GetFailures()[0].contains("none/first.tif")) << mSaver.GetFailures()[0].toStdString();
  EXPECT_EQ(FindMessage(), nullptr);
  EXPECT_EQ(TemporaryFolder::ReadFile(mPlace.GetFile("second.raw")).size(), kFrameBytes);
}

TEST_F(FrameSaverTest, AcceptedFrames_AreWrittenEvenAtTheEnd) {
  mFrames.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(7)));
  {
    FrameSaver saver(mFrames, "Sim Mono", "02:4b");
    saver.Save(mFrames.Get(), GetPath("first.raw"), &mWindow);
    saver.Save(mFrames.Get(), GetPath("second.raw"), &mWindow);
    EXPECT_TRUE(saver.IsBusy());
  }

  EXPECT_EQ(TemporaryFolder::ReadFile(mPlace.GetFile("first.raw")).size(), kFrameBytes);
  EXPECT_EQ(TemporaryFolder::ReadFile(mPlace.GetFile("second.raw")).size(), kFrameBytes);
}

TEST_F(FrameSaverTest, DiskThatTakesALargeFileBitByBit_IsSeenToGetOn) {
  constexpr std::uint32_t kWidth = 1 << 20U; // 8 MiB in all.
  HangingDisk disk(mPlace.GetPath().string());
  disk.Hang();
  std::vector<std::uint64_t> seen;
  const std::unique_ptr<QThread> thread(QThread::create([&] {
    ASSERT_TRUE(disk.Enter());
    FrameSaver saver(mFrames, "Sim Mono", "02:4b");
    saver.Save(std::make_shared<const KrBuffer>(MakeNumberedFrame(7, kWidth)), GetPath("large.raw"), nullptr);
    // The text beside it, its folder, and two parts of the file.
    for (int step = 0; step < 4; ++step) {
      ASSERT_TRUE(AwaitCall(disk));
      seen.push_back(saver.GetDone());
      ASSERT_TRUE(disk.TakeOne());
    }
    ASSERT_TRUE(AwaitCall(disk));
    seen.push_back(saver.GetDone());
    disk.Recover();
    saver.End();
    saver.AwaitWritten();
    EXPECT_TRUE(saver.GetFailures().isEmpty());
  }));

  thread->start();
  ASSERT_TRUE(thread->wait(krtest::kGenerousMs));

  const std::uint64_t bytes = std::uint64_t{kWidth} * kFrameHeight;
  EXPECT_EQ(seen, (std::vector<std::uint64_t>{bytes, bytes, bytes, bytes * 3 / 2, bytes * 2}));
}

// On a thread of its own, as a thread that was on such a disk is on it for good.
TEST_F(FrameSaverTest, DiskThatDoesNotAnswer_NeedNotBeWaitedForAfterTheEnd) {
  HangingDisk disk(mPlace.GetPath().string());
  disk.Hang();
  QStringList failures;
  const std::unique_ptr<QThread> thread(QThread::create([&] {
    ASSERT_TRUE(disk.Enter());
    FrameSaver saver(mFrames, "Sim Mono", "02:4b");
    for (const char* const name : {"first.raw", "second.raw"})
      saver.Save(std::make_shared<const KrBuffer>(MakeNumberedFrame(7)), GetPath(name), nullptr);
    ASSERT_TRUE(AwaitCall(disk));
    saver.End();
    saver.Leave();
    EXPECT_FALSE(saver.IsBusy());
    failures = saver.GetFailures();
  }));

  thread->start();
  ASSERT_TRUE(thread->wait(krtest::kGenerousMs));

  ASSERT_EQ(failures.size(), 2);
  EXPECT_TRUE(failures[0].contains(GetPath("first.raw"))) << failures[0].toStdString();
  EXPECT_TRUE(failures[1].contains(GetPath("second.raw"))) << failures[1].toStdString();
  disk.Recover();
  // What the disk was given before is whole then.
  EXPECT_TRUE(krtest::AwaitCondition([this] { return std::filesystem::exists(mPlace.GetFile("first.raw")); }));
  EXPECT_FALSE(std::filesystem::exists(mPlace.GetFile("second.raw")));
}

// Runs that end by themselves or are ended, with a camera that does not let go in time or is lost.

#include "filesizelimit.h"
#include "gate.h"
#include "plainpicture.h"
#include "viewerfixture.h"
#include "window/endingwindow.h"

#include <QEventLoop>
#include <QFile>
#include <QFileDialog>
#include <QImage>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>

#include <csignal>
#include <cstdio>

using krviewer::EndingWindow;

namespace {

class ViewerEndTest : public ViewerTest {
protected:
  /// Of a run that leaves pictures.
  krviewer::CommandLine MakeCommandLine(std::uint32_t aSeconds) const {
    krviewer::CommandLine commandLine;
    commandLine.seconds = aSeconds;
    commandLine.screenshotFolder = QString::fromStdString(mFolder.GetFile("shots"));
    return commandLine;
  }
  /// The camera is at work until the gate is opened, and is given back by nobody meanwhile.
  void HoldCamera() {
    GetPage()->Do({.run = [this](KrGenParameterArray&) {
      mGate.Wait({});
      return KrResult();
    }});
    ASSERT_TRUE(mGate.AwaitReached());
  }
  bool HasPicture(const char* aName) const {
    return QFile::exists(QString::fromStdString(mFolder.GetFile("shots/" + std::string(aName))));
  }
  static EndingWindow* FindEndingWindow() {
    for (QWidget* const window : QApplication::topLevelWidgets())
      if (auto* const ending = qobject_cast<EndingWindow*>(window))
        return ending;
    return nullptr;
  }

  Gate mGate;
};

} // namespace

TEST_F(ViewerEndTest, RunThatEndsByItself_GivesUpWhatDoesNotEndAndSaysSo) {
  int givenUp = 0;
  mHost.endLimits = {.pictures = std::chrono::milliseconds(1), .batch = std::chrono::milliseconds(1)};
  mHost.giveUp = [&] {
    ++givenUp;
    mGate.Open(); // The program would end here.
  };
  Begin(MakeCommandLine(100));
  OpenStreaming();
  ASSERT_TRUE(Await([this] { return GetPage()->GetProgress().figures.GetFrames() > 0; }));
  ASSERT_NO_FATAL_FAILURE(HoldCamera());
  testing::internal::CaptureStderr();

  mViewer->Finish();

  const std::string told = testing::internal::GetCapturedStderr();
  EXPECT_EQ(givenUp, 1);
  EXPECT_NE(told.find("Simulated Mono Camera"), std::string::npos) << told;
  EXPECT_NE(told.find("is being given back"), std::string::npos) << told;
  EXPECT_TRUE(HasPicture("window.png"));
}

TEST_F(ViewerEndTest, RunThatItsUserEnds_ShowsWhatItWaitsFor) {
  mHost.endLimits = {.pictures = std::chrono::milliseconds(1), .batch = std::chrono::milliseconds(1)};
  mHost.giveUp = [] { FAIL() << "Its user looks at it."; };
  Begin(MakeCommandLine(0));
  OpenStreaming();
  ASSERT_TRUE(Await([this] { return GetPage()->GetProgress().figures.GetFrames() > 0; }));
  ASSERT_NO_FATAL_FAILURE(HoldCamera());
  bool wasSeen = false;
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, [&] {
    EndingWindow* const window = FindEndingWindow();
    if (!window || !window->isVisible())
      return;
    wasSeen = true;
    mGate.Open();
  });
  look.start(1);

  mViewer->Finish();

  EXPECT_TRUE(wasSeen);
  EXPECT_TRUE(HasPicture("display.png"));
}

TEST_F(ViewerEndTest, CameraThatDoesNotAnswer_IsLeftWhenItsUserWantsThat) {
  int givenUp = 0;
  mHost.giveUp = [&] {
    ++givenUp;
    EXPECT_NE(TemporaryFolder::ReadFile(mSettingsFile.toStdString()).find("Simulated Mono Camera"), std::string::npos);
    mGate.Open(); // The program would end here.
  };
  Begin();
  OpenStreaming();
  ASSERT_NO_FATAL_FAILURE(HoldCamera());
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, [&] {
    EndingWindow* const window = FindEndingWindow();
    if (!window || !window->isVisible())
      return;
    look.stop();
    window->findChild<QAbstractButton*>("leaveCamera")->click();
  });
  look.start(1);
  testing::internal::CaptureStderr();

  mViewer->Finish();

  const std::string told = testing::internal::GetCapturedStderr();
  EXPECT_EQ(givenUp, 1);
  EXPECT_NE(told.find("Simulated Mono Camera"), std::string::npos) << told;
  EXPECT_NE(told.find("nobody waited for it any longer"), std::string::npos) << told;
}

TEST_F(ViewerEndTest, CameraThatDoesNotAnswerInItsTime_IsLeftByItself) {
  int givenUp = 0;
  mHost.endLimits.camera = std::chrono::milliseconds(1);
  mHost.giveUp = [&] {
    ++givenUp;
    mGate.Open(); // The program would end here.
  };
  Begin();
  OpenStreaming();
  ASSERT_NO_FATAL_FAILURE(HoldCamera());
  testing::internal::CaptureStderr();

  mViewer->Finish();

  const std::string told = testing::internal::GetCapturedStderr();
  EXPECT_EQ(givenUp, 1);
  EXPECT_NE(told.find("nobody waited for it any longer"), std::string::npos) << told;
}

TEST_F(ViewerEndTest, SettingsThatCannotBeWrittenAtTheEnd_AreToldInItsWindow) {
  mHost.settingsFile = QString::fromStdString(mFolder.GetFile("settings/krviewer.ini"));
  Begin();
  TemporaryFolder::WriteFile(mFolder.GetFile("settings"), "a file where the folder is to be");
  QString told;
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, [&] {
    EndingWindow* const window = FindEndingWindow();
    if (!window || !window->isVisible())
      return;
    told = window->GetText();
    window->findChild<QAbstractButton*>("close")->click();
  });
  look.start(1);

  mViewer->Finish();

  EXPECT_TRUE(told.contains(mHost.settingsFile + ": Not a directory.")) << told.toStdString();
}

TEST_F(ViewerEndTest, CameraThatLetsGo_LeavesAllPicturesAtOnce) {
  mHost.giveUp = [] { FAIL() << "Everything ends."; };
  Begin(MakeCommandLine(100));
  OpenStreaming();
  ASSERT_TRUE(Await([this] { return GetPage()->GetProgress().figures.GetFrames() > 0; }));

  mViewer->Finish();

  for (const char* const picture : {"window.png", "display.png", "browser.png", "frame.png", "display.txt"})
    EXPECT_TRUE(HasPicture(picture)) << picture;
}

TEST_F(ViewerEndTest, RunWhoseFramesAllCameBeforeTheFirstLook_LeavesAllPictures) {
  krviewer::CommandLine commandLine = MakeCommandLine(0);
  commandLine.frames = 1;
  Begin(commandLine);
  Open(kMonoMAC);
  // The page's timer does not run meanwhile.
  ASSERT_TRUE(krtest::Await([this] { return GetPage()->CanSaveFrame(); }));

  EXPECT_EQ(mViewer->Run(), 0);

  for (const char* const picture : {"window.png", "display.png", "browser.png", "frame.png", "display.txt"})
    EXPECT_TRUE(HasPicture(picture)) << picture;
  const QImage browser(QString::fromStdString(mFolder.GetFile("shots/browser.png")));
  EXPECT_GT(plainpicture::Count(browser, browser.rect(), Qt::black), 200) << "There are no features in it.";
}

TEST_F(ViewerEndTest, RunWhoseCameraIsLostAtItsEnd_HasFailedAndSaysSo) {
  krviewer::CommandLine commandLine;
  commandLine.seconds = 1000;
  Begin(commandLine);
  OpenStreaming();
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  ASSERT_TRUE(Await([this] { return GetPage()->GetProgress().state == krviewer::AcquisitionState::Lost; }));
  testing::internal::CaptureStderr();

  QTimer::singleShot(0, &*mViewer, &krviewer::Viewer::Finish);
  const int exitCode = mViewer->Run();

  const std::string told = testing::internal::GetCapturedStderr();
  EXPECT_EQ(exitCode, 1);
  EXPECT_NE(told.find("The camera was lost"), std::string::npos) << told;
}

TEST_F(ViewerEndTest, RunThatASignalEnds_ExitsWithItsNumberWhereItHasAnEndOfItsOwn) {
  struct Row {
    const char* name;
    std::uint64_t frames;
    std::uint32_t seconds;
    int signal;
    int exitCode;
  };
  for (const Row& row : {Row{"frames", 1000, 0, SIGINT, 128 + SIGINT}, Row{"seconds", 0, 1000, SIGTERM, 128 + SIGTERM},
                         Row{"no end", 0, 0, SIGTERM, 0}}) {
    SCOPED_TRACE(row.name);
    krviewer::CommandLine commandLine;
    commandLine.frames = row.frames;
    commandLine.seconds = row.seconds;
    Begin(commandLine);
    std::raise(row.signal);

    EXPECT_EQ(mViewer->Run(), row.exitCode);
    mViewer.reset();
  }
}

TEST_F(ViewerEndTest, RunThatASignalEnds_LeavesItsPicturesAndFigures) {
  Begin(MakeCommandLine(1000));
  OpenStreaming();
  ASSERT_TRUE(Await([this] { return GetPage()->GetProgress().figures.GetFrames() > 0; }));
  testing::internal::CaptureStdout();
  std::raise(SIGTERM);

  EXPECT_EQ(mViewer->Run(), 128 + SIGTERM);

  std::fflush(stdout);
  const std::string printed = testing::internal::GetCapturedStdout();
  EXPECT_NE(printed.find("frames="), std::string::npos) << printed;
  EXPECT_TRUE(HasPicture("browser.png"));
}

TEST_F(ViewerEndTest, RecordingThatFailsBeforeTheEnd_IsToldThenAndFailsTheRun) {
  Begin();
  OpenStreaming();
  GetPage()->findChild<QLineEdit*>("recordFolder")->setText(QString::fromStdString(mFolder.GetFile("")));
  int failed = 0;
  QObject::connect(GetPage(), &krviewer::CameraPage::RecordingFailed, [&] { ++failed; });
  testing::internal::CaptureStderr();
  {
    const FileSizeLimit limit(100'000); // A frame is larger.
    EXPECT_TRUE(Choose("record"));
    EXPECT_TRUE(Await([&] { return failed > 0; }));
  }
  const std::string told = testing::internal::GetCapturedStderr();
  EXPECT_NE(told.find("The recording of Simulated Mono Camera"), std::string::npos) << told;
  EXPECT_NE(told.find("is not whole. Failed: "), std::string::npos) << told;
  testing::internal::CaptureStderr();

  QTimer::singleShot(0, &*mViewer, &krviewer::Viewer::Finish);
  const int exitCode = mViewer->Run();

  EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "It is told once.";
  EXPECT_EQ(exitCode, 1);
  EXPECT_EQ(failed, 1);
}

TEST_F(ViewerEndTest, MenuOfAFileDialogThatIsOpen_IsLeftFirst) {
  Begin();
  OpenStreaming();
  ASSERT_TRUE(Await([this] { return GetPage()->CanSaveFrame(); }));
  GetPage()->SaveFrame();
  const QPointer<QFileDialog> dialog = GetPage()->findChild<QFileDialog*>();
  ASSERT_NE(dialog, nullptr);
  auto* const files = dialog->findChild<QWidget*>("treeView");
  ASSERT_NE(files, nullptr);
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, [&] {
    if (QApplication::activePopupWidget() == nullptr)
      return;
    look.stop();
    mViewer->Finish();
  });
  look.start(1);
  // The menu's loop runs inside of this.
  QTimer::singleShot(0, files, [files] { emit files->customContextMenuRequested({1, 1}); });

  EXPECT_EQ(mViewer->Run(), 0);

  EXPECT_FALSE(look.isActive()) << "There was a menu.";
  EXPECT_EQ(dialog, nullptr);
}

TEST_F(ViewerEndTest, ViewerThatNobodyRuns_EndsNoLoopThatComesLater) {
  Begin();
  End();
  QEventLoop later;
  QTimer::singleShot(0, &later, [&later] { later.exit(7); });

  EXPECT_EQ(later.exec(), 7);
}

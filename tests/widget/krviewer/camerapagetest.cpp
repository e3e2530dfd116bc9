// A camera's page: what its state makes of entries, title and message.

#include "krgenicam/krgensettings.h"
#include "krtransport/krsimulatedfaults.h"
#include "viewerfixture.h"

#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTimer>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <utility>

using krviewer::AcquisitionState;

namespace {

constexpr const char* kBusyMAC = "02:4b:52:00:78:10";
/// So that all settings of a camera take longer than a busy machine keeps the windows waiting.
constexpr std::uint32_t kSlowAnswerMs = 200;

/// Asks something at the moment at which a window is hidden for the first time.
class FirstHiding : public QObject {
public:
  FirstHiding(QWidget& aWindow, std::function<bool()> aQuestion) : mQuestion(std::move(aQuestion)) {
    aWindow.installEventFilter(this);
  }
  std::optional<bool> GetAnswer() const { return mAnswer; }

private:
  bool eventFilter(QObject*, QEvent* aEvent) override {
    if (aEvent->type() == QEvent::Hide && !mAnswer)
      mAnswer = mQuestion();
    return false;
  }

  const std::function<bool()> mQuestion;
  std::optional<bool> mAnswer;
};

class CameraPageTest : public ViewerTest {
protected:
  void SetUp() override { Begin(); }
  bool AwaitState(AcquisitionState aState) {
    return Await([=, this] { return GetPage() && GetPage()->GetProgress().state == aState; });
  }
  /// In the folder of the test and those in it.
  int CountFiles(const std::string& aExtension) const {
    int count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(mFolder.GetPath()))
      count += entry.path().extension() == aExtension ? 1 : 0;
    return count;
  }
  /// The files that the recording's index names.
  int CountIndexed(const std::string& aExtension) const {
    int count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(mFolder.GetPath())) {
      std::ifstream index(entry.path().filename() == "index.csv" ? entry.path() : std::filesystem::path());
      for (std::string line; std::getline(index, line);)
        count += line.find(aExtension) != std::string::npos ? 1 : 0;
    }
    return count;
  }
  /// Does something with the camera's exposure time; false where that failed.
  bool DoWithExposure(const std::function<KrResult(KrGenFloat&)>& aWork) {
    std::optional<KrResult> end;
    GetPage()->Do({.run =
                       [=](KrGenParameterArray& aParameters) {
                         KrGenFloat* const exposure = aParameters.GetFloat("ExposureTime");
                         return exposure ? aWork(*exposure) : KrResult(KrResult::Code::NotFound);
                       },
                   .then = [&](const KrResult& aResult) { end = aResult; }});
    return Await([&] { return end.has_value(); }) && end->IsOK();
  }
  bool SetExposure(double aMicroseconds) {
    return DoWithExposure([=](KrGenFloat& aExposure) { return aExposure.SetValue(aMicroseconds); });
  }
  /// How many of the settings the page says to be done; 0 where it says nothing of it.
  int GetPercent() {
    static const QRegularExpression percent("([0-9]+) % are done\\.$");
    return percent.match(GetMessage(*GetPage())).captured(1).toInt();
  }
  /// Waits for the page to say this, and that more than so many percent are done.
  bool AwaitPercent(const QString& aWhat, int aPercent) {
    return Await([&, this] { return GetMessage(*GetPage()).contains(aWhat) && GetPercent() > aPercent; });
  }
  double GetExposure() {
    double value = -1;
    return DoWithExposure([&](KrGenFloat& aExposure) { return aExposure.GetValue(value); }) ? value : -1;
  }
};

} // namespace

TEST_F(CameraPageTest, StopAndStart_ByTheirKeys) {
  OpenStreaming();
  ASSERT_TRUE(Await([this] { return IsOffered("stop"); }));
  EXPECT_FALSE(IsOffered("start"));

  Press(Qt::Key_F5, Qt::ShiftModifier);
  EXPECT_TRUE(AwaitState(AcquisitionState::Connected));
  EXPECT_TRUE(Await([this] { return IsOffered("start") && !IsOffered("stop"); }));
  EXPECT_TRUE(Await([this] { return GetWindow().windowTitle().endsWith("stopped"); }));

  Press(Qt::Key_F5);
  EXPECT_TRUE(AwaitState(AcquisitionState::Streaming));
}

TEST_F(CameraPageTest, SingleFrame_IsOneMore) {
  OpenStreaming();
  ASSERT_TRUE(Choose("stop"));
  ASSERT_TRUE(AwaitState(AcquisitionState::Connected));
  const std::uint64_t frames = GetPage()->GetProgress().figures.GetFrames();

  ASSERT_TRUE(Choose("single"));

  EXPECT_TRUE(Await([&] {
    return GetPage()->GetProgress().figures.GetFrames() == frames + 1 &&
           GetPage()->GetProgress().state == AcquisitionState::Connected;
  }));
}

TEST_F(CameraPageTest, CameraThatDoesNotAnswer_LeavesItsTabAtOnce) {
  const std::shared_ptr<KrSimulatedFaults> faults = mLab->GetFaults(kMonoMAC);
  faults->SilenceRegisters();
  Open(kMonoMAC);
  EXPECT_EQ(GetPage()->GetProgress().state, AcquisitionState::Connecting);

  ASSERT_TRUE(Choose("closeCamera"));

  EXPECT_TRUE(IsFirstPageShown());
  faults->EndRegisterFaults();
  EXPECT_TRUE(AwaitFree(kMonoMAC));
}

TEST_F(CameraPageTest, CameraThatDoesNotAnswer_HoldsUpNoEnd) {
  const std::shared_ptr<KrSimulatedFaults> faults = mLab->GetFaults(kMonoMAC);
  OpenStreaming();
  faults->SilenceRegisters();
  const FirstHiding hiding(GetWindow(), [page = GetPage()] { return page->HasEnded(); });

  GetWindow().close();

  EXPECT_TRUE(mViewer->IsOver());
  EXPECT_FALSE(GetWindow().isVisible());
  EXPECT_EQ(hiding.GetAnswer(), false) << "The window stood there until the camera was given back.";
  faults->EndRegisterFaults();
}

TEST_F(CameraPageTest, SettingsSaved_AreSetAgainWhenLoaded) {
  const QString file = QString::fromStdString(mFolder.GetFile("camera.txt"));
  OpenStreaming();
  ASSERT_TRUE(SetExposure(2000));

  GetPage()->GetSettings().Save(file);
  ASSERT_TRUE(Await([this] { return !GetPage()->GetSettings().IsWorking(); }));
  EXPECT_EQ(GetMessage(*GetPage()), "The camera's settings are in camera.txt.");
  ASSERT_TRUE(SetExposure(7000));
  GetPage()->GetSettings().Load(file);

  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()) == "The camera is set as camera.txt says."; }))
      << GetMessage(*GetPage()).toStdString();
  EXPECT_EQ(GetExposure(), 2000);
  EXPECT_TRUE(AwaitState(AcquisitionState::Streaming));
}

TEST_F(CameraPageTest, SettingsOfAnotherModelThatDoNotFit_AreSaidToBeWithBothNames) {
  const QString file = QString::fromStdString(mFolder.GetFile("camera.txt"));
  KrGenSettings settings;
  settings.SetDevice("Vendor Other");
  settings.Add("FeatureOfTheOther", "1");
  ASSERT_TRUE(settings.Save(file.toStdString()).IsOK());
  OpenStreaming();

  GetPage()->GetSettings().Load(file);

  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).contains("FeatureOfTheOther"); }))
      << GetMessage(*GetPage()).toStdString();
  for (const char* name : {"another model", "\"Vendor Other\"", "\"KrGUI SimulatedMonoCamera\""})
    EXPECT_TRUE(GetMessage(*GetPage()).contains(name)) << GetMessage(*GetPage()).toStdString();
}

TEST_F(CameraPageTest, FileThatHasNoSettings_IsSaidSo) {
  const QString file = QString::fromStdString(mFolder.GetFile("other.txt"));
  {
    QFile other(file);
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    other.write("<?xml version=\"1.0\"?>");
  }
  OpenStreaming();

  GetPage()->GetSettings().Load(file);

  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).startsWith("The camera is not set as other.txt says:"); }))
      << GetMessage(*GetPage()).toStdString();
  EXPECT_TRUE(GetMessage(*GetPage()).contains("no file of a device's settings"));
}

TEST_F(CameraPageTest, SettingsThatTakeLong_AreSaidSoAndCanBeCancelled) {
  const QString file = QString::fromStdString(mFolder.GetFile("camera.txt"));
  const std::shared_ptr<KrSimulatedFaults> faults = mLab->GetFaults(kMonoMAC);
  OpenStreaming();
  faults->SilenceRegisters();

  GetPage()->GetSettings().Save(file);
  EXPECT_TRUE(GetMessage(*GetPage()).contains("being saved to camera.txt")) << GetMessage(*GetPage()).toStdString();
  ASSERT_TRUE(Click(*GetPage(), "Canc&el"));
  faults->EndRegisterFaults();

  EXPECT_TRUE(Await([this] { return !GetPage()->GetSettings().IsWorking(); }));
  EXPECT_TRUE(Await([this] { return FindButton(*GetPage(), "Canc&el") == nullptr; }));
  EXPECT_FALSE(QFile::exists(file));
}

TEST_F(CameraPageTest, SettingsBeingSaved_TellHowManyAreDoneBesideAnyFilesName) {
  const QString file = QString::fromStdString(mFolder.GetFile("a%1.txt")); // Like a place for the number.
  const std::shared_ptr<KrSimulatedFaults> faults = mLab->GetFaults(kMonoMAC);
  OpenStreaming();
  faults->SlowRegisters(kSlowAnswerMs);

  GetPage()->GetSettings().Save(file);
  EXPECT_TRUE(AwaitPercent("being saved to a%1.txt", 0));
  const int before = GetPercent();
  EXPECT_TRUE(AwaitPercent("being saved to a%1.txt", before));
  faults->EndRegisterFaults();

  EXPECT_TRUE(Await([this] { return !GetPage()->GetSettings().IsWorking(); }));
  EXPECT_TRUE(QFile::exists(file));
}

TEST_F(CameraPageTest, SettingsBeingLoaded_TellHowManyAreDoneAndCanBeCancelled) {
  const QString file = QString::fromStdString(mFolder.GetFile("camera.txt"));
  const std::shared_ptr<KrSimulatedFaults> faults = mLab->GetFaults(kMonoMAC);
  OpenStreaming();
  GetPage()->GetSettings().Save(file);
  ASSERT_TRUE(Await([this] { return !GetPage()->GetSettings().IsWorking(); }));
  faults->SlowRegisters(kSlowAnswerMs);

  GetPage()->GetSettings().Load(file);
  EXPECT_TRUE(AwaitPercent("being set as camera.txt says", 0));
  ASSERT_TRUE(Click(*GetPage(), "Canc&el"));
  faults->EndRegisterFaults();

  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).startsWith("The camera is not set as camera.txt says:"); }))
      << GetMessage(*GetPage()).toStdString();
  EXPECT_FALSE(GetPage()->GetSettings().IsWorking());
  EXPECT_EQ(FindButton(*GetPage(), "Canc&el"), nullptr);
  EXPECT_TRUE(AwaitState(AcquisitionState::Streaming));
}

TEST_F(CameraPageTest, ClosedWhileSettingsAreLoaded_Ends) {
  const QString file = QString::fromStdString(mFolder.GetFile("camera.txt"));
  OpenStreaming();
  GetPage()->GetSettings().Save(file);
  ASSERT_TRUE(Await([this] { return !GetPage()->GetSettings().IsWorking(); }));
  GetPage()->GetSettings().Load(file);
  ASSERT_TRUE(GetPage()->GetSettings().IsWorking());

  ASSERT_TRUE(Choose("closeCamera"));

  EXPECT_TRUE(IsFirstPageShown());
  EXPECT_TRUE(AwaitFree(kMonoMAC));
}

TEST_F(CameraPageTest, RegionOfInterest_IsDrawnSetAndSaidInTheStatusBar) {
  OpenStreaming();
  ASSERT_TRUE(Await([this] { return GetPage()->GetDisplay().GetMapping().has_value(); }));

  ASSERT_TRUE(Choose("region"));
  ASSERT_TRUE(Await([this] { return GetPage()->GetRegion().IsEditing(); }));
  EXPECT_TRUE(GetPage()->GetRegion().GetBar().isVisible());
  Press(Qt::Key_Left, Qt::ShiftModifier);
  Press(Qt::Key_Return);

  EXPECT_TRUE(Await([this] { return !GetWindow().statusBar()->currentMessage().isEmpty(); }));
  EXPECT_FALSE(GetPage()->GetRegion().IsEditing());
  EXPECT_TRUE(AwaitState(AcquisitionState::Streaming));
}

TEST_F(CameraPageTest, DisconnectedWhileARegionIsDrawn_GivesItUp) {
  OpenStreaming();
  ASSERT_TRUE(Await([this] { return GetPage()->GetDisplay().GetMapping().has_value(); }));
  ASSERT_TRUE(Choose("region"));
  ASSERT_TRUE(Await([this] { return GetPage()->GetRegion().IsEditing(); }));

  ASSERT_TRUE(Choose("disconnect"));

  EXPECT_FALSE(GetPage()->GetRegion().IsEditing());
  EXPECT_TRUE(AwaitFree(kMonoMAC));
}

TEST_F(CameraPageTest, Recording_IsStartedAndStoppedByItsKeyAndWrittenBeforeTheEnd) {
  OpenStreaming();
  auto* const folder = GetPage()->findChild<QLineEdit*>("recordFolder");
  ASSERT_NE(folder, nullptr);
  folder->setText(QString::fromStdString(mFolder.GetFile("")));
  ASSERT_TRUE(Await([this] { return IsOffered("record"); }));

  Press(Qt::Key_R, Qt::ControlModifier);
  EXPECT_TRUE(GetPage()->IsRecording());
  EXPECT_TRUE(GetPage()->GetPanels().IsShown(krviewer::Panel::Recording));
  ASSERT_TRUE(Await([this] { return CountFiles(".raw") > 2; }));
  GetWindow().close();

  // The index names every file, which it does when the recording has come to its end.
  ASSERT_TRUE(mViewer->IsOver());
  EXPECT_EQ(CountIndexed(".raw"), CountFiles(".raw"));
}

TEST_F(CameraPageTest, RecordingOfALostCamera_IsRefusedWithTheReason) {
  OpenStreaming();
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  ASSERT_TRUE(AwaitState(AcquisitionState::Lost));
  ASSERT_TRUE(Await([this] { return IsOffered("record") && !IsOffered("stop"); }));

  Press(Qt::Key_R, Qt::ControlModifier);

  auto* const box = GetPage()->findChild<QMessageBox*>();
  ASSERT_NE(box, nullptr);
  EXPECT_TRUE(box->text().contains("the camera is lost")) << box->text().toStdString();
  EXPECT_TRUE(box->text().contains("SIM-0001")) << box->text().toStdString();
  EXPECT_FALSE(GetPage()->IsRecording());
  EXPECT_FALSE(GetPage()->GetPanels().IsShown(krviewer::Panel::Recording));
  box->close();
}

TEST_F(CameraPageTest, RecordingWhoseTabIsClosed_TellsWhatCameOfIt) {
  OpenStreaming();
  GetPage()->findChild<QLineEdit*>("recordFolder")->setText(QString::fromStdString(mFolder.GetFile("")));
  ASSERT_TRUE(Choose("record"));
  ASSERT_TRUE(Await([this] { return CountFiles(".raw") > 2; }));

  testing::internal::CaptureStdout();
  ASSERT_TRUE(Choose("closeCamera"));
  End();
  std::fflush(stdout);
  const std::string printed = testing::internal::GetCapturedStdout();

  const std::string line = "recording=ended written=" + std::to_string(CountFiles(".raw")) + ' ';
  EXPECT_NE(printed.find(line), std::string::npos) << printed << "rather than " << line;
}

TEST_F(CameraPageTest, FrameThatCannotBeSavedAfterItsTabWasClosed_IsToldInTheWindow) {
  OpenStreaming();
  ASSERT_TRUE(Await([this] { return GetPage()->CanSaveFrame(); }));
  GetPage()->SaveFrame();
  auto* const dialog = GetPage()->findChild<QFileDialog*>();
  ASSERT_NE(dialog, nullptr);
  dialog->findChild<QLineEdit*>("fileNameEdit")->setText("/proc/shot.raw"); // Takes no files, not even root's.
  QMetaObject::invokeMethod(dialog, "accept");

  ASSERT_TRUE(Choose("closeCamera"));

  EXPECT_TRUE(Await([this] { return GetWindow().GetBar().GetText().contains("/proc/shot.raw"); }))
      << GetWindow().GetBar().GetText().toStdString();
  QTimer::singleShot(0, &*mViewer, &krviewer::Viewer::Finish);
  EXPECT_EQ(mViewer->Run(), 1);
}

TEST_F(CameraPageTest, BridgeSetupThatCannotBeSavedAfterItsTabWasClosed_IsToldInTheWindow) {
  OpenStreaming();
  GetPage()->GetTools().GetSerialBridges().AskForSaving();
  auto* const dialog = GetPage()->findChild<QFileDialog*>();
  ASSERT_NE(dialog, nullptr);
  dialog->findChild<QLineEdit*>("fileNameEdit")->setText("/proc/setup.xml");
  QMetaObject::invokeMethod(dialog, "accept");
  ASSERT_TRUE(GetPage()->IsWriting());

  ASSERT_TRUE(Choose("closeCamera"));

  EXPECT_TRUE(Await([this] { return GetWindow().GetBar().GetText().contains("/proc/setup.xml"); }))
      << GetWindow().GetBar().GetText().toStdString();
}

TEST_F(CameraPageTest, EntriesForBridgeSetups_SayWhyTheyCannotBeChosen) {
  OpenStreaming();
  const auto* const entry = GetWindow().findChild<QAction*>("loadSerialBridges");
  ASSERT_TRUE(Await([=] { return entry->isEnabled(); }));
  EXPECT_FALSE(entry->toolTip().contains("is being read"));

  // The page does not look before the window does.
  GetPage()->GetTools().GetSerialBridges().AskForLoading();
  auto* const dialog = GetPage()->findChild<QFileDialog*>();
  ASSERT_NE(dialog, nullptr);
  Q_EMIT dialog->fileSelected("/proc/none.xml");
  dialog->close();
  GetWindow().LookAgain();

  EXPECT_FALSE(entry->isEnabled());
  EXPECT_TRUE(entry->toolTip().contains("none.xml is being read")) << entry->toolTip().toStdString();
  EXPECT_TRUE(Await([=] { return entry->isEnabled() && !entry->toolTip().contains("is being read"); }));
}

TEST_F(CameraPageTest, SaveFrame_AsksWhereAsSoonAsThereIsOne) {
  EXPECT_FALSE(IsOffered("saveFrame"));
  OpenStreaming();

  ASSERT_TRUE(Choose("saveFrame"));

  EXPECT_TRUE(Await([this] {
    const auto* const dialog = GetPage()->findChild<QFileDialog*>();
    return dialog && dialog->isVisible();
  }));
}

TEST_F(CameraPageTest, Disconnected_IsFreeForOthersUntilConnected) {
  OpenStreaming();

  ASSERT_TRUE(Choose("disconnect"));

  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).contains("is disconnected"); }))
      << GetMessage(*GetPage()).toStdString();
  EXPECT_TRUE(Await([this] { return GetWindow().windowTitle().endsWith("disconnected"); }));
  EXPECT_TRUE(AwaitFree(kMonoMAC));
  ASSERT_TRUE(Choose("connect"));
  EXPECT_TRUE(AwaitState(AcquisitionState::Streaming));
  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).isEmpty(); }));
}

TEST_F(CameraPageTest, CameraLost_IsSaidSoUntilItIsBack) {
  OpenStreaming();

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).contains("lost"); }));
  EXPECT_TRUE(Await([this] { return GetWindow().windowTitle().contains("camera lost"); }));

  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
  EXPECT_TRUE(AwaitState(AcquisitionState::Streaming));
  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).isEmpty(); }));
}

TEST_F(CameraPageTest, LostCameraDisconnected_IsNotWaitedFor) {
  OpenStreaming();
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  ASSERT_TRUE(Await([this] { return GetMessage(*GetPage()).contains("lost"); }));

  ASSERT_TRUE(Click(*GetPage(), "&Disconnect"));

  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).contains("is disconnected"); }));
  EXPECT_TRUE(GetPage()->CanConnect());
}

TEST_F(CameraPageTest, CameraThatCannotBeHad_SaysWhyAndIsTriedAgain) {
  Open(kForeignMAC);
  int ends = 0;
  QObject::connect(GetPage(), &krviewer::CameraPage::AcquisitionEnded, GetPage(), [&] { ++ends; });

  EXPECT_TRUE(AwaitState(AcquisitionState::Failed));
  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).contains("subnet"); }))
      << GetMessage(*GetPage()).toStdString();
  ASSERT_TRUE(Await([&] { return ends == 1; }));
  ASSERT_TRUE(Click(*GetPage(), "Tr&y Again"));
  EXPECT_TRUE(Await([&] { return ends == 2; }));
}

TEST_F(CameraPageTest, CameraOfAnotherHost_SaysWhyAndOffersTheFinder) {
  Open(kBusyMAC);

  EXPECT_TRUE(Await([this] { return GetMessage(*GetPage()).contains("cannot be shown"); }));

  EXPECT_TRUE(Click(*GetPage(), "Fi&nd a Camera…"));
}

TEST_F(CameraPageTest, ClosedInEachState_EndsAndFreesTheCamera) {
  struct Row {
    const char* name;
    std::function<void()> prepare;
  };
  for (const Row& row :
       {Row{"connecting", [] {}}, Row{"streaming", [this] { EXPECT_TRUE(AwaitState(AcquisitionState::Streaming)); }},
        Row{"stopped", [this] { EXPECT_TRUE(Choose("stop")); }},
        Row{"lost",
            [this] {
              EXPECT_TRUE(AwaitState(AcquisitionState::Streaming));
              EXPECT_TRUE(mLab->Lose(kMonoMAC).IsOK());
              EXPECT_TRUE(AwaitState(AcquisitionState::Lost));
            }},
        Row{"disconnected", [this] { EXPECT_TRUE(Choose("disconnect")); }}}) {
    SCOPED_TRACE(row.name);
    Open(kMonoMAC);
    row.prepare();

    ASSERT_TRUE(Choose("closeCamera"));

    EXPECT_TRUE(IsFirstPageShown());
    if (row.name == std::string("lost")) {
      EXPECT_TRUE(mLab->Restore(kMonoMAC).IsOK());
    }
    EXPECT_TRUE(AwaitFree(kMonoMAC));
  }
}

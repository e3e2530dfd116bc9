// The viewer's windows: how it begins, tabs, and what is kept of them.

#include "viewerfixture.h"

#include <QFile>
#include <QMessageBox>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTreeView>
#include <QTreeWidget>

#include <algorithm>

using krviewer::Panel;

namespace {

class ViewerWindowTest : public ViewerTest {
protected:
  static QWidget* FindFinder() { return FindWindow("Device Selection"); }
  /// Selects a camera in the finder once it is listed, and accepts it.
  static bool PickInFinder(const QString& aName) {
    if (!Await([] { return FindFinder() != nullptr; }))
      return false;
    auto* const tree = FindFinder()->findChild<QTreeView*>("control1049");
    QModelIndexList found;
    const bool isListed = tree && Await([&] {
                            found = tree->model()->match(tree->model()->index(0, 0), Qt::DisplayRole, aName, 1,
                                                         Qt::MatchContains | Qt::MatchRecursive);
                            return !found.isEmpty();
                          });
    if (!isListed)
      return false;
    tree->setCurrentIndex(found.constFirst());
    auto* const ok = FindFinder()->findChild<QAbstractButton*>("control1");
    if (!ok || !Await([=] { return ok->isEnabled(); }))
      return false;
    ok->click();
    return true;
  }
  /// Looks for a node of the finder until it is listed.
  static bool IsListedInFinder(const QString& aTitle, const QString& aName) {
    const QWidget* const finder = FindWindow(aTitle);
    const auto* const tree = finder ? finder->findChild<QTreeView*>("control1049") : nullptr;
    return tree && Await([&] {
             return !tree->model()
                         ->match(tree->model()->index(0, 0), Qt::DisplayRole, aName, 1,
                                 Qt::MatchContains | Qt::MatchRecursive)
                         .isEmpty();
           });
  }
  QStringList GetTitles(int aWindow = 0) {
    QStringList titles;
    for (krviewer::CameraPage* const page : GetWindow(aWindow).GetPages())
      titles += page->GetTitle();
    return titles;
  }
};

} // namespace

TEST_F(ViewerWindowTest, BegunWithoutACamera_ShowsHowToBegin) {
  Begin();

  EXPECT_TRUE(IsFirstPageShown());
  EXPECT_EQ(GetWindow().windowTitle(), "krviewer");
  EXPECT_FALSE(IsOffered("start"));
  EXPECT_FALSE(IsOffered("closeCamera"));
  EXPECT_TRUE(IsOffered("find"));
}

TEST_F(ViewerWindowTest, SimulatedCameraWantedByKeys_IsShown) {
  Begin();

  Press(Qt::Key_Tab);
  Press(Qt::Key_Return);

  EXPECT_TRUE(Await([this] { return GetPage() && GetPage()->IsStreaming(); }));
  EXPECT_FALSE(IsFirstPageShown());
  EXPECT_TRUE(GetWindow().windowTitle().startsWith("Simulated Mono Camera"));
}

TEST_F(ViewerWindowTest, CameraPickedInTheFinder_IsShown) {
  Begin();

  Press(Qt::Key_O, Qt::ControlModifier);
  ASSERT_TRUE(PickInFinder("Simulated Colour Camera"));

  EXPECT_TRUE(Await([this] { return GetPage() && GetPage()->IsStreaming(); }));
  EXPECT_EQ(FindFinder(), nullptr);
  EXPECT_TRUE(GetWindow().windowTitle().startsWith("Simulated Colour Camera"));
}

TEST_F(ViewerWindowTest, AddressesWanted_ListsTheCamerasThatCannotBeReached) {
  Begin();

  ASSERT_TRUE(Choose("ipConfiguration"));

  ASSERT_TRUE(Await([] { return FindWindow("IP Configuration") != nullptr; }));
  EXPECT_TRUE(IsListedInFinder("IP Configuration", "10.20.30.40"));
}

TEST_F(ViewerWindowTest, FinderWantedAfterTheAddresses_TakesTheirPlace) {
  Begin();
  ASSERT_TRUE(Choose("ipConfiguration"));
  ASSERT_TRUE(Await([] { return FindWindow("IP Configuration") != nullptr; }));

  ASSERT_TRUE(Choose("find"));

  EXPECT_TRUE(Await([] { return FindFinder() != nullptr && FindWindow("IP Configuration") == nullptr; }));
}

TEST_F(ViewerWindowTest, SameCameraTwice_BringsItsTabForward) {
  Begin();
  Open(kMonoMAC);
  Open(kColourMAC);
  ASSERT_EQ(GetTitles().size(), 2);

  Open(kMonoMAC);

  EXPECT_EQ(GetTitles().size(), 2);
  EXPECT_EQ(GetPage()->GetCamera().GetUniqueID(), kMonoMAC);
}

TEST_F(ViewerWindowTest, SameCameraWithoutMACAtAnotherAddress_IsKnownByItsSerialNumber) {
  Begin();
  mViewer->Open(MakeCameraWithoutMAC("192.168.77.70"));
  ASSERT_EQ(GetTitles().size(), 1);

  mViewer->Open(MakeCameraWithoutMAC("192.168.77.71"));
  EXPECT_EQ(GetTitles().size(), 1);
  ASSERT_TRUE(Choose("closeCamera"));
  mViewer->Open(MakeCameraWithoutMAC("192.168.77.71")); // What has ended is seen by a loop alone.

  EXPECT_EQ(GetTitles().size(), 0);
  EXPECT_TRUE(GetMessage(GetWindow()).contains("being given back")) << GetMessage(GetWindow()).toStdString();
}

TEST_F(ViewerWindowTest, DisconnectedCameraOpenedAgain_IsConnectedInItsTab) {
  Begin();
  OpenStreaming();
  ASSERT_TRUE(Choose("disconnect"));
  ASSERT_TRUE(Await([this] { return GetPage()->CanConnect(); }));

  Open(kMonoMAC);

  EXPECT_TRUE(Await([this] { return GetPage()->IsStreaming(); }));
  EXPECT_EQ(GetWindow().GetPages().size(), 1);
}

TEST_F(ViewerWindowTest, Tabs_AreReachedByKeys) {
  Begin();
  Open(kMonoMAC);
  Open(kColourMAC);
  ASSERT_EQ(GetPage()->GetCamera().GetUniqueID(), kColourMAC);
  ASSERT_TRUE(Await([this] { return IsOffered("nextCamera"); }));

  Press(Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_EQ(GetPage()->GetCamera().GetUniqueID(), kMonoMAC);

  Press(Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_EQ(GetPage()->GetCamera().GetUniqueID(), kColourMAC);
}

TEST_F(ViewerWindowTest, CameraClosed_IsFreeForOthers) {
  Begin();
  OpenStreaming();

  Press(Qt::Key_W, Qt::ControlModifier);

  EXPECT_TRUE(IsFirstPageShown());
  EXPECT_TRUE(AwaitFree(kMonoMAC));
}

TEST_F(ViewerWindowTest, CameraOpenedAgainBeforeItIsGivenBack_WaitsForThatWithoutHoldingUpTheWindow) {
  Begin();
  OpenStreaming();
  const auto* const info = FindInfo<KrDeviceInfo>(kMonoMAC);
  ASSERT_NE(info, nullptr);

  ASSERT_TRUE(Choose("closeCamera"));
  mViewer->Open(krviewer::BorrowCamera(*info)); // What has ended is seen by a loop alone.

  EXPECT_EQ(GetPage(), nullptr);
  EXPECT_TRUE(GetMessage(GetWindow()).contains("being given back")) << GetMessage(GetWindow()).toStdString();
  EXPECT_TRUE(Await([this] { return GetPage() && GetPage()->IsStreaming(); }));
  EXPECT_FALSE(GetWindow().GetBar().isVisible());
}

TEST_F(ViewerWindowTest, LastWindowClosed_EndsTheViewer) {
  Begin();
  OpenStreaming();

  GetWindow().close();

  EXPECT_TRUE(mViewer->IsOver());
  EXPECT_TRUE(AwaitFree(kMonoMAC));
}

TEST_F(ViewerWindowTest, WindowClosedWhileTheFinderIsOpen_EndsBoth) {
  Begin();
  Press(Qt::Key_O, Qt::ControlModifier);
  ASSERT_TRUE(Await([] { return FindFinder() != nullptr; }));

  GetWindow().close();

  EXPECT_TRUE(mViewer->IsOver());
  EXPECT_EQ(FindFinder(), nullptr);
}

TEST_F(ViewerWindowTest, WindowClosedWhileACameraIsLookedFor_Ends) {
  Begin();
  ASSERT_TRUE(Choose("simulation"));

  GetWindow().close();

  EXPECT_TRUE(mViewer->IsOver());
}

TEST_F(ViewerWindowTest, CameraShownOnce_IsOfferedInTheNextRun) {
  Begin();
  OpenStreaming();
  End();

  Begin();
  ASSERT_TRUE(Click(GetWindow().GetFirstPage(), "Simulated Mono Camera (192.168.77.10)"));

  EXPECT_TRUE(Await([this] { return GetPage() && GetPage()->IsStreaming(); }));
}

TEST_F(ViewerWindowTest, CameraThatIsNotThereAnyMore_IsSaidSo) {
  Begin();
  OpenStreaming();
  End();
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  Begin();
  ASSERT_TRUE(Click(GetWindow().GetFirstPage(), "Simulated Mono Camera (192.168.77.10)"));

  EXPECT_TRUE(Await([this] { return GetMessage(GetWindow()).contains("was not found"); }));
  EXPECT_TRUE(GetMessage(GetWindow()).contains("Simulated Mono Camera"));
  EXPECT_FALSE(GetMessage(GetWindow()).contains('\n'));
  EXPECT_FALSE(GetMessage(GetWindow()).contains("Colour")) << "the cameras that were found are not the message's";
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
  ASSERT_TRUE(Click(GetWindow(), "Tr&y Again"));
  EXPECT_TRUE(Await([this] { return GetPage() && GetPage()->IsStreaming(); }));
  EXPECT_EQ(GetMessage(GetWindow()), "");
}

TEST_F(ViewerWindowTest, SeveralCamerasAskedForAndSomeMissing_ShowsTheOthersAndNamesTheMissing) {
  Begin();

  for (const char* const name : {"no-such-camera", "sim-mono", "nor-this-one"})
    mViewer->Search(name);

  EXPECT_TRUE(Await([this] { return GetMessage(GetWindow()).contains("not found"); }));
  EXPECT_TRUE(GetMessage(GetWindow()).startsWith("no-such-camera, nor-this-one were not found."))
      << GetMessage(GetWindow()).toStdString();
  EXPECT_EQ(GetTitles().size(), 1);
}

TEST_F(ViewerWindowTest, SearchCancelled_IsOver) {
  Begin();
  mViewer->Search("sim-mono");
  mViewer->Search("sim-colour");

  ASSERT_TRUE(Click(GetWindow(), "Cancel"));

  EXPECT_EQ(GetMessage(GetWindow()), "");
  EXPECT_TRUE(IsFirstPageShown());
  mViewer->Search("sim-mono");
  EXPECT_TRUE(Await([this] { return GetPage() != nullptr; }));
  EXPECT_EQ(GetTitles().size(), 1);
}

TEST_F(ViewerWindowTest, RecentCamerasCleared_AreForgotten) {
  Begin();
  OpenStreaming();

  ASSERT_TRUE(Choose("clearRecent"));
  End();

  Begin();
  EXPECT_EQ(FindButton(GetWindow().GetFirstPage(), "Simulated Mono Camera (192.168.77.10)"), nullptr);
}

TEST_F(ViewerWindowTest, StatusBar_CountsTheFramesOfTheCameraInFront) {
  Begin();
  OpenStreaming();
  const auto* const bar = GetWindow().findChild<krviewer::FigureBar*>();
  ASSERT_NE(bar, nullptr);
  const auto hasFigure = [=](const QString& aPart) {
    const QList<QLabel*> labels = bar->findChildren<QLabel*>();
    return std::ranges::any_of(
        labels, [&](const QLabel* aLabel) { return aLabel->isVisible() && aLabel->text().contains(aPart); });
  };

  const auto hasNumber = [=](const QString& aUnit) {
    const QRegularExpression number("^(\\d+\\.\\d)" + QRegularExpression::escape(aUnit) + "$");
    const QList<QLabel*> labels = bar->findChildren<QLabel*>();
    return std::ranges::any_of(labels, [&](const QLabel* aLabel) {
      return aLabel->isVisible() && number.match(aLabel->text()).captured(1).toDouble() > 0;
    });
  };

  EXPECT_TRUE(Await([=] { return hasNumber(" frames/s"); }));
  EXPECT_TRUE(Await([=] { return hasNumber(" MB/s"); }));
  EXPECT_TRUE(Await([=] { return hasNumber(" °C"); }));

  ASSERT_TRUE(Choose("closeCamera"));
  EXPECT_TRUE(Await([=] { return !hasFigure("frames/s"); }));
}

TEST_F(ViewerWindowTest, StatusBarOfAWindowAsItBegins_HasRoomForRatesLossesTemperatureAndPixel) {
  Begin();
  OpenStreaming(kColourMAC);
  krviewer::FigureBar bar;
  bar.resize(GetWindow().findChild<krviewer::FigureBar*>()->size());
  bar.show();

  bar.Show({.framesPerSecond = 100.5,
            .megabytesPerSecond = 1234.5,
            .frames = 1'234'567,
            .temperatureC = 45.5,
            .pixel = KrDisplayPixel{
                .x = 1919, .y = 1199, .raw = {1, {4095}, {'R'}}, .red = 255, .green = 255, .blue = 255}});

  QStringList shown;
  for (const auto* const label : bar.findChildren<QLabel*>())
    if (label->isVisible())
      shown += label->text();
  for (const char* const figure :
       {"x 1919  y 1199   raw R 4095   shown 255 255 255", "100.5 frames/s", "1234.5 MB/s", "1234567 frames",
        "incomplete 0", "missing frames 0", "missing packets 0", "resent 0", "45.5 °C"})
    EXPECT_TRUE(shown.contains(figure)) << figure;
}

TEST_F(ViewerWindowTest, SettingsThatMakeNoSense_BeginAnew) {
  {
    QFile file(mSettingsFile);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[window]\nlayout=@ByteArray(12:AAAA)\n[page]\nlayout=\xff\xfe\n[cameras]\nrecent\\size=1000000\n");
  }

  Begin();
  OpenStreaming();

  EXPECT_TRUE(GetPage()->GetPanels().IsShown(Panel::Features));
}

TEST_F(ViewerWindowTest, RunWithAnEndOfItsOwn_KeepsNothing) {
  krviewer::CommandLine commandLine;
  commandLine.frames = 3;
  Begin(commandLine);
  Open(kMonoMAC);

  EXPECT_TRUE(Await([this] { return mViewer->IsOver(); }));

  mViewer.reset();
  EXPECT_FALSE(QFile::exists(mSettingsFile));
}

TEST_F(ViewerWindowTest, CameraLostBehindOthers_IsMarkedOnItsTab) {
  Begin();
  OpenStreaming(kMonoMAC);
  OpenStreaming(kColourMAC);
  const auto* const tabs = GetWindow().findChild<QTabWidget*>();
  ASSERT_TRUE(Await([=] { return tabs->tabIcon(0).isNull() && tabs->tabIcon(1).isNull(); }));

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  EXPECT_TRUE(Await([=] { return !tabs->tabIcon(0).isNull(); }));
  EXPECT_TRUE(tabs->tabIcon(1).isNull());

  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
  EXPECT_TRUE(Await([=] { return tabs->tabIcon(0).isNull(); }));
}

TEST_F(ViewerWindowTest, Keys_AreListedWithWhatTheyDo) {
  Begin();

  Press(Qt::Key_F1);

  const auto* const box = GetWindow().findChild<QDialog*>("keysBox");
  ASSERT_NE(box, nullptr);
  const auto* const list = box->findChild<QTreeWidget*>();
  const QList<QTreeWidgetItem*> found = list->findItems("Shift+F5", Qt::MatchExactly);
  ASSERT_EQ(found.size(), 1);
  EXPECT_EQ(found.constFirst()->text(1), "Stop");
}

TEST_F(ViewerWindowTest, AboutBox_SaysTheVersionsAndWaitsForNobody) {
  Begin();

  ASSERT_TRUE(Choose("about"));

  const auto* const box = GetWindow().findChild<QMessageBox*>("aboutBox");
  ASSERT_NE(box, nullptr);
  EXPECT_TRUE(box->isVisible());
  EXPECT_TRUE(box->text().contains(QString("Qt ") + qVersion()));
  EXPECT_TRUE(box->text().contains(QRegularExpression("Aravis 0\\.[0-9]+\\.[0-9]+, ")));
  EXPECT_TRUE(box->text().contains(QRegularExpression("libpng 1\\.[0-9]+\\.[0-9]+, libtiff 4\\.[0-9]+\\.[0-9]+$")))
      << box->text().toStdString();
  GetWindow().close();
  EXPECT_TRUE(mViewer->IsOver());
}

TEST_F(ViewerWindowTest, SettingsThatCannotBeWritten_AreSaidOnceWithTheReason) {
  mHost.settingsFile = QString::fromStdString(mFolder.GetFile("settings/krviewer.ini"));
  Begin();
  TemporaryFolder::WriteFile(mFolder.GetFile("settings"), "a file where the folder is to be");

  OpenStreaming();

  EXPECT_TRUE(Await([this] { return GetMessage(GetWindow()).contains(mHost.settingsFile + ": Not a directory."); }));
  GetWindow().GetBar().Clear();
  ASSERT_TRUE(Choose("closeCamera"));
  OpenStreaming(kColourMAC);
  EXPECT_EQ(GetMessage(GetWindow()), "");
}

TEST_F(ViewerWindowTest, CameraBridgesOfADeviceWithoutPorts_AreSaidToHaveNone) {
  Begin();
  OpenStreaming(kRangeMAC);

  ASSERT_TRUE(Choose("cameraBridges"));

  ASSERT_TRUE(Await([] { return FindWindow("Camera Bridges") != nullptr; }));
  const auto* const box = qobject_cast<QMessageBox*>(FindWindow("Camera Bridges"));
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->text(), "The device has no serial port.");
}

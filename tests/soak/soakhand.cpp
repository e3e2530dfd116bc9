#include "soakhand.h"

#include "browser/propertiesgrid.h"
#include "camerabridge/camerabridgeids.h"
#include "scene.h"
#include "serial/rollingedit.h"
#include "serial/serialbridgeids.h"
#include "serial/terminalids.h"
#include "soakrecords.h"
#include "soakstation.h"
#include "watchdog.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QTest>
#include <QTreeWidget>

namespace {

namespace camera = krgui::cameraid;
namespace serial = krgui::bridgeid;
namespace terminal = krgui::terminalid;

constexpr int kFinderTree = 1049;
constexpr int kFinderUnreachable = 1040;
constexpr const char* kSought[] = {"a", "trigger", "Width", "xyz", "gain"};

} // namespace

const std::array<SoakHand::Deed, 15> SoakHand::kDeeds = {{
    {"opening and closing a window", 15, &SoakHand::ReopenWindow},
    {"using a display", 30, &SoakHand::UseDisplay},
    {"using the finder", 8, &SoakHand::UseFinder},
    {"talking in the terminal", 8, &SoakHand::UseTerminal},
    {"using a browser", 10, &SoakHand::UseBrowser},
    {"searching in a browser", 6, &SoakHand::SearchBrowser},
    {"saving a browser's options", 4, &SoakHand::SaveBrowser},
    {"changing format and size", 10, &SoakHand::ChangeFormat},
    {"saving and loading a camera's settings", 2, &SoakHand::RestoreSettings},
    {"setting a camera behind the frame grabber", 8, &SoakHand::UseCameraBridge},
    {"using the managers of bridges", 6, &SoakHand::UseManagers},
    {"losing packets and frames", 6, &SoakHand::LoseFrames},
    {"saving and loading bridges", 3, &SoakHand::SaveBridges},
    {"losing a camera", 5, &SoakHand::LoseCamera},
    {"silencing a camera", 3, &SoakHand::SilenceCamera},
}};

SoakHand::SoakHand(SoakStation& aStation, SoakRecords& aRecords, Watchdog& aWatchdog, std::uint32_t aSeed)
    : mStation(aStation), mRecords(aRecords), mWatchdog(aWatchdog),
      mDice(aSeed), mUsers{RandomUser(*aStation.GetDisplays()[0], aSeed + 1),
                           RandomUser(*aStation.GetDisplays()[1], aSeed + 2)} {}

void SoakHand::Step() {
  int total = 0;
  for (const Deed& deed : kDeeds)
    total += deed.weight;
  int choice = mDice.Draw(0, total - 1);
  const Deed* deed = kDeeds.data();
  for (; choice >= deed->weight; ++deed)
    choice -= deed->weight;
  mWatchdog.Begin(deed->name);
  (this->*deed->act)();
  mWatchdog.Begin("handling events");
  Linger(30);
}

void SoakHand::Linger(int aMostMs) {
  QTest::qWait(mDice.Draw(0, aMostMs));
}

void SoakHand::ReopenWindow() {
  const auto index = static_cast<std::size_t>(mDice.Draw(0, static_cast<int>(SoakStation::kWindows) - 1));
  scene::Require(mStation.GetWindow(index).Close());
  Linger(50);
  mStation.Show(index);
}

void SoakHand::UseDisplay() {
  const auto index = static_cast<std::size_t>(mDice.Draw(0, 1));
  mUsers[index].Step();
  if (mUsers[index].GetFailures() != 0)
    throw std::runtime_error("A display refused what it offers.");
}

void SoakHand::UseFinder() {
  const QWidget& window = *mStation.GetFinder().GetWidget();
  auto& tree = scene::Get<QTreeWidget>(window, kFinderTree);
  if (mDice.HasLuck(4))
    scene::Get<QAbstractButton>(window, kFinderUnreachable).click();
  else if (const int roots = tree.topLevelItemCount(); roots > 0) {
    QTreeWidgetItem* const root = tree.topLevelItem(mDice.Draw(0, roots - 1));
    const int devices = root->childCount();
    tree.setCurrentItem(devices > 0 ? root->child(mDice.Draw(0, devices - 1)) : root);
  }
}

void SoakHand::UseTerminal() {
  const QWidget& window = *mStation.GetTerminal().GetWidget();
  const auto* const transcript = window.findChild<krgui::RollingEdit*>();
  const auto ask = [&](const std::string& aText, const std::string& aAnswer) {
    scene::Get<QAbstractButton>(window, terminal::kClear).click();
    scene::Get<QLineEdit>(window, terminal::kData).setText(QString::fromStdString(aText));
    scene::Get<QAbstractButton>(window, terminal::kSend).click();
    const std::u16string answer(aAnswer.begin(), aAnswer.end());
    scene::Await("answer in the terminal",
                 [&] { return transcript->GetShownText().find(answer) != std::u16string_view::npos; });
  };
  const std::string value = std::to_string(mDice.Draw(-9999, 9999));
  ask("VALUE " + value, "OK\r\n");
  ask("VALUE?", "VALUE " + value + "\r\n");
}

void SoakHand::UseBrowser() {
  KrGenBrowserWnd& browser = *mStation.GetBrowsers()[static_cast<std::size_t>(mDice.Draw(0, 1))];
  auto* const grid = browser.GetWidget()->findChild<krgui::PropertiesGrid*>();
  switch (mDice.Draw(0, 3)) {
  case 0:
    scene::Require(browser.SetVisibility(static_cast<KrGenVisibility>(mDice.Draw(0, 2))));
    break;
  case 1:
    scene::Require(browser.SetRefreshMode(static_cast<KrGenRefresh>(mDice.Draw(0, 2))));
    break;
  case 2:
    browser.Refresh();
    break;
  default:
    for (int keys = mDice.Draw(1, 8); keys > 0; --keys)
      QTest::keyClick(grid, mDice.HasLuck(3) ? Qt::Key_PageDown : Qt::Key_Down);
  }
}

void SoakHand::SearchBrowser() {
  KrGenBrowserWnd& browser = *mStation.GetBrowsers()[static_cast<std::size_t>(mDice.Draw(0, 1))];
  QTest::keyClick(browser.GetWidget()->findChild<krgui::PropertiesGrid*>(), Qt::Key_F, Qt::ControlModifier);
  auto* const field = browser.GetWidget()->findChild<QLineEdit*>();
  if (!field)
    throw std::runtime_error("The browser has no search field.");
  QTest::keyClicks(field, kSought[mDice.Draw(0, std::size(kSought) - 1)]);
  for (int keys = mDice.Draw(0, 3); keys > 0; --keys)
    QTest::keyClick(field, Qt::Key_Return);
  QTest::keyClick(field, Qt::Key_Escape);
}

void SoakHand::SaveBrowser() {
  KrGenBrowserWnd& browser = *mStation.GetBrowsers()[static_cast<std::size_t>(mDice.Draw(0, 1))];
  const KrGenVisibility visibility = browser.GetVisibility();
  KrPropertyList saved;
  scene::Require(browser.Save(saved));
  scene::Require(browser.SetVisibility(KrGenVisibility::Beginner));
  scene::Require(browser.Load(saved));
  if (browser.GetVisibility() != visibility)
    throw std::runtime_error("The browser did not load what it saved.");
}

void SoakHand::ChangeFormat() {
  LiveDisplay& live = *mStation.GetLive()[static_cast<std::size_t>(mDice.Draw(0, 1))];
  live.Stop();
  live.ChangeFormat(mDice);
  live.Start();
  live.AwaitFrames();
}

/// What was changed since is as it was saved.
void SoakHand::RestoreSettings() {
  const auto index = static_cast<std::size_t>(mDice.Draw(0, 1));
  LiveDisplay& live = *mStation.GetLive()[index];
  KrGenParameterArray& array = mStation.GetCamera(SoakStation::kCameras[index]).GetParameters();
  live.Stop();
  KrGenSettings saved;
  KrGenSettings loaded;
  KrStringList problems;
  scene::Require(array.StoreSettings(saved, problems));
  live.ChangeFormat(mDice);
  scene::Require(loaded.FromText(saved.ToText()));
  scene::Require(array.RestoreSettings(loaded, problems));
  scene::Require(array.StoreSettings(loaded, problems));
  if (loaded.GetSettings() != saved.GetSettings())
    throw std::runtime_error("The camera's settings are not as they were saved.");
  live.Start();
}

void SoakHand::UseCameraBridge() {
  mStation.GetGrabber().Exchange(mDice);
}

void SoakHand::UseManagers() {
  if (mDice.HasLuck(2)) {
    const QWidget& window = *mStation.GetSerialBridges().GetWidget();
    auto& ports = scene::Get<QComboBox>(window, serial::kDevicePort);
    scene::Pick(window, serial::kDevicePort, ports.itemText(mDice.Draw(0, ports.count() - 1)));
    scene::Get<QAbstractButton>(window, serial::kReset).click();
    return;
  }
  const QWidget& window = *mStation.GetCameraBridges().GetWidget();
  for (int clicks = 0; clicks < 2; ++clicks) // Off, and on again.
    scene::Get<QAbstractButton>(window, camera::kSynchronization).click();
  scene::Get<QAbstractButton>(window, camera::kReset).click();
}

/// The stream goes on with what is whole.
void SoakHand::LoseFrames() {
  const auto index = static_cast<std::size_t>(mDice.Draw(0, 1));
  KrSimulatedFaults& faults = mStation.GetCamera(SoakStation::kCameras[index]).GetFaults();
  const auto frames = static_cast<std::uint32_t>(mDice.Draw(1, 3));
  switch (mDice.Draw(0, 2)) {
  case 0:
    faults.LosePackets(frames, frames, frames);
    break;
  case 1:
    faults.DelayPackets(frames, frames, 20);
    break;
  default:
    faults.DropFrames(frames);
  }
  mStation.GetLive()[index]->AwaitFrames();
}

void SoakHand::SaveBridges() {
  if (mDice.HasLuck(2))
    mStation.GetBridges().SaveAndLoad();
  else
    mStation.GetGrabber().SaveAndLoad();
}

void SoakHand::LoseCamera() {
  const SoakStation::Camera camera = SoakStation::kCameras[static_cast<std::size_t>(mDice.Draw(0, 2))];
  mRecords.BeginTrouble(mStation.GetCamera(camera).GetNames());
  KrSimulatedFaults& faults = mStation.GetCamera(camera).GetFaults();
  if (mDice.HasLuck(2))
    faults.Disappear();
  else
    faults.LosePower();
  Linger(300);
  if (mDice.HasLuck(3))
    ReopenWindow();
  mStation.TakeOut(camera);
  Linger(100);
  faults.Return();
  mStation.TakeIn(camera);
  mRecords.EndTrouble();
}

/// For a while no register answers.
void SoakHand::SilenceCamera() {
  LabCamera& camera = mStation.GetCamera(SoakStation::kCameras[static_cast<std::size_t>(mDice.Draw(0, 2))]);
  mRecords.BeginTrouble(camera.GetNames());
  camera.FallSilent();
  Linger(300);
  if (mDice.HasLuck(2))
    ReopenWindow();
  camera.Answer();
  mRecords.EndTrouble();
}

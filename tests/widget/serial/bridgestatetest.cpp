// The serial bridge manager over time: devices set, settings loaded and saved, counters, rates and the state's line.

#include "bridgefixture.h"

#include <QEvent>

#include <functional>
#include <map>
#include <vector>

namespace krgui {

namespace {

using krtest::BridgeHost;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class State : public BridgeTest {
protected:
  /// Links Serial1 with COM3, of a device that tells its rates.
  void OpenLinked() {
    SetRates({"9600", "115200"});
    OpenOnSerial1();
    Link(COM3);
  }
  /// Opens the window on a device whose first port, which tells its rates, is Serial1.
  void OpenLinkedFirst() {
    mDevice.lines.erase(0);
    SetRates({"9600"});
    Open();
  }
  /// Links that port with COM3, and lets bytes go.
  void LinkFirst() {
    ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
    ASSERT_THAT(Load({{"Serial1", "COMPort"}, {"Serial1Port", "COM3"}}), IsEmpty());
    PickPort(Serial0);
    ASSERT_EQ(GetSelected(id::kDevicePort), "Serial1");
    ASSERT_EQ(GetKind(), "Serial COM Port Link");
    mHost.Send(3, "abc");
    ASSERT_TRUE(WaitFor([&] { return GetText(id::kBytesSent) == "Bytes sent: 3"; }));
  }
  std::vector<std::function<void()>> GetWaysToEndTheBridges() {
    return {[this] { EXPECT_TRUE(mWindow->SetDevice(nullptr).IsOK()); },
            [this] { EXPECT_TRUE(mWindow->SetDevice(&mDevice).IsOK()); }, [this] { EXPECT_THAT(Load({}), IsEmpty()); }};
  }
  /// The bytes go to the device.
  [[nodiscard]] bool SendBytes(const std::string& aBytes) const {
    const std::string before = GetText(id::kBytesSent);
    mHost.Send(3, aBytes);
    return WaitFor([&] { return GetText(id::kBytesSent) != before; });
  }
};

/// Counts the events of widgets that make them be drawn anew.
class EventCounter : public QObject {
public:
  void Watch(QWidget& aWidget) { aWidget.installEventFilter(this); }
  int Count(const QWidget& aWidget) const {
    const auto found = mCounts.find(&aWidget);
    return found == mCounts.end() ? 0 : found->second;
  }

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override {
    const QEvent::Type type = aEvent->type();
    if (type == QEvent::FontChange || type == QEvent::EnabledChange || type == QEvent::Paint)
      ++mCounts[aWatched];
    return false;
  }

private:
  std::map<const QObject*, int> mCounts;
};

} // namespace

TEST_F(State, NewWindow_ShowsNoPortAndTheTemplatesTexts) {
  Open();

  EXPECT_EQ(Get<QComboBox>(id::kDevicePort).currentIndex(), -1);
  EXPECT_EQ(Get<QComboBox>(id::kCOMPort).currentIndex(), -1);
  EXPECT_THAT(GetEntries(Get<QComboBox>(id::kCOMPort)), ElementsAre("COM1", "COM3", "COM12"));
  EXPECT_EQ(GetText(id::kDescription), "No parity, 8 bits, 1 stop bit");
  EXPECT_EQ(GetText(id::kBytesSent), "Bytes sent: 0");
  EXPECT_EQ(GetText(id::kBytesReceived), "Bytes received: 0");
  EXPECT_EQ(GetRates(), "----------");
  EXPECT_EQ(GetText(id::kState), "Choose a port of the device.");
}

TEST_F(State, WindowWithoutADevice_SaysSo) {
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  EXPECT_EQ(GetText(id::kState), "There is no device.");
  EXPECT_EQ(Get<QComboBox>(id::kDevicePort).count(), 0);
}

TEST_F(State, DeviceWithoutPorts_IsSaid) {
  mDevice.lines.clear();

  Open();

  EXPECT_EQ(GetText(id::kState), "The device has no serial port.");
}

TEST_F(State, Counters_TellTheBytesOfTheSelectedPort) {
  OpenLinked();

  ASSERT_TRUE(SendBytes("hello"));
  EXPECT_TRUE(WaitFor([&] { return GetText(id::kBytesSent) == "Bytes sent: 5"; }));
  mLines[1]->Receive("world!");
  EXPECT_TRUE(WaitFor([&] { return GetText(id::kBytesReceived) == "Bytes received: 6"; }));
  EXPECT_TRUE(WaitFor([&] { return mHost.Receive(3) == "world!"; }));

  PickPort(Bulk0);
  EXPECT_EQ(GetText(id::kBytesSent), "Bytes sent: 0");
  EXPECT_EQ(GetText(id::kBytesReceived), "Bytes received: 0");
}

TEST_F(State, Reset_BeginsTheCountersAnew) {
  OpenLinked();
  ASSERT_TRUE(SendBytes("hello"));

  Click(id::kReset);

  EXPECT_TRUE(WaitFor([&] { return GetText(id::kBytesSent) == "Bytes sent: 0"; }));
}

TEST_F(State, WhatHasNotChanged_IsNotDrawnAnew) {
  OpenLinked();
  ASSERT_TRUE(SendBytes("first"));
  EventCounter counter;
  for (const int rate : id::kRates)
    counter.Watch(Get(rate));
  for (const int label : {id::kBytesSent, id::kBytesReceived, id::kState})
    counter.Watch(Get(label));

  // Each of these is told by another tick.
  for (const char* bytes : {"a", "b", "c"})
    ASSERT_TRUE(SendBytes(bytes));

  EXPECT_TRUE(WaitFor([&] { return counter.Count(Get(id::kBytesSent)) > 0; }));
  for (const int rate : id::kRates)
    EXPECT_EQ(counter.Count(Get(rate)), 0) << rate;
  EXPECT_EQ(counter.Count(Get(id::kBytesReceived)), 0);
  EXPECT_EQ(counter.Count(Get(id::kState)), 0);
}

TEST_F(State, Rates_AreThoseOfTheDeviceAndItsOwnIsBold) {
  OpenLinked();

  EXPECT_TRUE(WaitFor([&] { return GetRates() == "B-----e---"; })) << GetRates();
}

TEST_F(State, RateThatChanges_IsMarkedWithoutAClick) {
  OpenLinked();
  ASSERT_TRUE(WaitFor([&] { return GetRates() == "B-----e---"; }));

  ASSERT_THAT(Load({{"Serial1", "COMPort"}, {"Serial1Port", "COM3"}, {"Serial1COMPortBaudRate", "115200"}}), IsEmpty());

  EXPECT_TRUE(WaitFor([&] { return GetRates() == "e-----B---"; })) << GetRates();
}

TEST_F(State, RatesAfterAKindOfTheFirstPort_AreNoOnes) {
  mDevice.enumerations["Uart0BaudRate"] = {{"9600"}, "9600"};
  Open();
  PickPort(Serial0);

  Click(id::kCameraLink);

  EXPECT_TRUE(WaitFor([&] { return GetRates() == "----------"; })) << "no port is selected";
}

TEST_F(State, DeviceThatIsLost_IsToldInTheStatesLine) {
  OpenLinked();
  ASSERT_EQ(GetText(id::kState), "");

  mLines[1]->Lose();

  EXPECT_TRUE(WaitFor([&] { return !GetText(id::kState).empty(); }));
}

TEST_F(State, COMPortThatGoesAndComesBack_IsToldInTheStatesLine) {
  OpenLinked();

  mHost.RemovePort(3);
  EXPECT_TRUE(WaitFor([&] { return !GetText(id::kState).empty(); }));
  mHost.AddPort(3);

  EXPECT_TRUE(WaitFor([&] { return GetText(id::kState).empty(); }));
}

TEST_F(State, AnotherDevice_EndsTheBridgesAndShowsItsPorts) {
  OpenLinked();
  krtest::SerialAdapter other;
  other.AddLine(1);
  other.AddLine(5);

  EXPECT_TRUE(mWindow->SetDevice(&other).IsOK());

  EXPECT_FALSE(mLines[1]->IsOpen());
  EXPECT_THAT(GetEntries(Get<QComboBox>(id::kDevicePort)), ElementsAre("Serial1", "Bulk3"));
  EXPECT_EQ(GetSelected(id::kDevicePort), "Serial1") << "it was not the first one";
  EXPECT_EQ(GetKind(), "None");
  EXPECT_EQ(GetText(id::kDescription), "Not selected");
  EXPECT_FALSE(IsEnabled(id::kCOMPort));
  mWindow.reset();
}

TEST_F(State, BridgesMadeAnewWithTheFirstPortSelected_LeaveWhatWasShownButCountersAndRates) {
  OpenLinkedFirst();
  for (const auto& makeAnew : GetWaysToEndTheBridges()) {
    LinkFirst();

    makeAnew();

    EXPECT_EQ(Get<QComboBox>(id::kDevicePort).currentIndex(), -1);
    EXPECT_FALSE(mLines[1]->IsOpen());
    EXPECT_EQ(GetKind(), "Serial COM Port Link");
    EXPECT_EQ(GetSelected(id::kCOMPort), "COM3");
    EXPECT_TRUE(IsEnabled(id::kCOMPort));
    EXPECT_TRUE(IsEnabled(id::kConfigure));
    EXPECT_TRUE(IsEnabled(id::kReset));
    EXPECT_EQ(GetText(id::kDescription), "9600 baud, no parity, 8 bits, 1 stop bit");
    EXPECT_EQ(GetText(id::kBytesSent), "Bytes sent: 0");
    EXPECT_EQ(GetRates(), "----------");
  }
}

TEST_F(State, ClicksOnWhatIsLeftOfEndedBridges_DoNothing) {
  OpenLinkedFirst();
  for (const auto& makeAnew : GetWaysToEndTheBridges()) {
    LinkFirst();
    makeAnew();
    const int openings = mLines[1]->CountOpenings();

    for (const int button : {id::kReset, id::kConfigure, id::kCameraLink, id::kNone, id::kCOMPortLink})
      Click(button); // No dialog: it would wait for an answer for ever.
    Pick(Get<QComboBox>(id::kCOMPort), COM1);

    EXPECT_EQ(GetKind(), "Serial COM Port Link");
    EXPECT_EQ(GetSelected(id::kCOMPort), "COM3");
    EXPECT_THAT(Save(), IsEmpty());
    EXPECT_THAT(BridgeHost::GetPublished(), IsEmpty());
    EXPECT_EQ(mLines[1]->CountOpenings(), openings);
  }
}

TEST_F(State, BridgesMadeAnewWhileTheRateOfTheFirstPortIsAskedFor_LeaveTheKindThatWasShown) {
  Open();
  PickPort(Serial0);
  DuringNextModalLoop([this](QWidget& aDialog) {
    EXPECT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  Click(id::kCameraLink);

  EXPECT_EQ(Get<QComboBox>(id::kDevicePort).currentIndex(), -1);
  EXPECT_EQ(GetKind(), "None");
  EXPECT_EQ(GetText(id::kCameraLinkName), "Inactive");
  EXPECT_THAT(Save(), IsEmpty());
}

TEST_F(State, DeviceTakenOut_EndsAllBridgesAtOnce) {
  OpenLinked();
  PickPort(Bulk0);
  AnswerBoxes(1);
  Link(COM1);
  ASSERT_TRUE(mLines[2]->IsOpen());

  EXPECT_TRUE(mWindow->SetDevice(nullptr).IsOK());

  EXPECT_FALSE(mLines[1]->IsOpen());
  EXPECT_FALSE(mLines[2]->IsOpen());
  EXPECT_EQ(GetText(id::kState), "There is no device.");
  EXPECT_EQ(Get<QComboBox>(id::kDevicePort).count(), 0);
  EXPECT_THAT(Save(), IsEmpty());
}

TEST_F(State, SettingsLoadedBeforeTheWindowIsOpen_AreShownInIt) {
  ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
  EXPECT_THAT(Load({{"Serial1", "COMPort"}, {"Serial1Port", "COM3"}, {"Serial1COMPortParity", "Even"}}), IsEmpty());
  EXPECT_TRUE(mLines[1]->IsOpen());

  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  PickPort(Serial1);

  EXPECT_EQ(GetKind(), "Serial COM Port Link");
  EXPECT_EQ(GetSelected(id::kCOMPort), "COM3");
  EXPECT_EQ(GetText(id::kDescription), "9600 baud, even parity, 8 bits, 1 stop bit");
}

TEST_F(State, SettingsLoadedIntoTheOpenWindow_AreShownAtOnce) {
  OpenOnSerial1();
  ASSERT_EQ(GetKind(), "None");

  EXPECT_THAT(Load({{"Serial1", "COMPort"}, {"Serial1Port", "COM12"}}), IsEmpty());

  EXPECT_EQ(GetSelected(id::kDevicePort), "Serial1");
  EXPECT_EQ(GetKind(), "Serial COM Port Link");
  EXPECT_EQ(GetSelected(id::kCOMPort), "COM12");
  EXPECT_TRUE(IsEnabled(id::kConfigure));
  EXPECT_TRUE(IsEnabled(id::kReset));
}

TEST_F(State, SettingsOfNothingLoaded_EndTheBridges) {
  OpenLinked();

  EXPECT_THAT(Load({}), IsEmpty());

  EXPECT_EQ(GetKind(), "None");
  EXPECT_FALSE(mLines[1]->IsOpen());
}

TEST_F(State, SettingsWithMistakes_AreToldAndTheRestIsLoaded) {
  OpenOnSerial1();

  EXPECT_THAT(Load({{"Bulk3", "COMPort"},
                    {"Serial0", "Serial"},
                    {"Serial1", "COMPort"},
                    {"Serial1Port", "COM3"},
                    {"Bulk0", "CLDLL"},
                    {"Bulk0CLDLLBaudRate", "57600"}}),
              ElementsAre("Serial bridge manager: Unexpected bridge type, Serial on Serial0.",
                          "Serial bridge manager: Port Bulk3 found in persistence file, not supported by device."));

  EXPECT_EQ(GetSelected(id::kCOMPort), "COM3");
  EXPECT_THAT(BridgeHost::GetPublished(), ElementsAre("Model X 00:11:22:33:44:55-Bulk0"));
}

TEST_F(State, SetupOfNone_SavesAnEmptyList) {
  EXPECT_THAT(Save(), IsEmpty());
  Open();
  EXPECT_THAT(Save(), IsEmpty());
}

TEST_F(State, SavedSetup_ComesBack) {
  OpenLinked();
  const Settings saved = Save();
  ASSERT_THAT(saved, ElementsAre(Pair("Serial1", "COMPort"), Pair("Serial1Port", "COM3"),
                                 Pair("Serial1COMPortBaudRate", "9600"), Pair("Serial1COMPortParity", "None"),
                                 Pair("Serial1COMPortBitCount", "8"), Pair("Serial1COMPortStopBits", "1")));
  Click(id::kNone);

  EXPECT_THAT(Load(saved), IsEmpty());

  EXPECT_EQ(GetSelected(id::kCOMPort), "COM3");
  EXPECT_EQ(Save(), saved);
}

TEST_F(State, Recover_IsNotOfferedWhateverTheState) {
  const KrResult closed = mWindow->Recover();
  EXPECT_EQ(closed.GetCodeNumber(), 1540U);
  EXPECT_EQ(closed.GetDescription(), "The serial bridge manager offers no recovery of its bridges.");
  OpenLinked();
  EXPECT_EQ(mWindow->Recover().GetCodeNumber(), 1540U);
  EXPECT_TRUE(mLines[1]->IsOpen()) << "it does nothing";
  ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());
  EXPECT_EQ(mWindow->Recover().GetCodeNumber(), 1540U);
}

} // namespace krgui

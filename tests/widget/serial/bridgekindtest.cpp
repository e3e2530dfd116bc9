// The serial bridge manager's three kinds: what choosing one does to the port and to what is shown.

#include "bridgefixture.h"
#include "controlhands.h"

#include <QGuiApplication>
#include <QThread>

namespace krgui {

namespace {

using krtest::BridgeHost;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::SizeIs;
using testing::StartsWith;

/// The cursor over the application, as often as it is looked at.
struct CursorRecord {
  void Look() {
    if (QThread::currentThread() != QCoreApplication::instance()->thread())
      return; // Of a thread that works for the bridge.
    const QCursor* const cursor = QGuiApplication::overrideCursor();
    shapes.push_back(cursor ? cursor->shape() : Qt::ArrowCursor);
  }
  std::vector<Qt::CursorShape> shapes;
};

/// A line that looks at the cursor whenever it is opened or closed.
struct WatchedLine : krtest::SerialLine {
  KrResult Open() override {
    record.Look();
    return SerialLine::Open();
  }
  void Close() override {
    record.Look();
    SerialLine::Close();
  }
  CursorRecord record;
};

class Kinds : public BridgeTest {
protected:
  /// Publishes the selected port; the dialog that asks for its rate is answered by a key.
  void Publish(Qt::Key aAnswer) {
    DuringNextModalLoop([this, aAnswer](QWidget& aDialog) {
      mDialogs.push_back(aDialog.windowTitle().toStdString());
      QTest::keyClick(&aDialog, aAnswer);
    });
    Click(id::kCameraLink);
  }

  std::vector<std::string> mDialogs;
};

} // namespace

TEST_F(Kinds, ChoosingAny_ShowsTheWaitCursorMeanwhile) {
  const auto line = std::make_shared<WatchedLine>();
  mDevice.lines[1] = line;
  SetRates({"9600"});
  OpenOnSerial1();
  const auto waited = AllOf(Not(IsEmpty()), Each(Qt::WaitCursor));

  line->record.shapes.clear();
  Click(id::kCameraLink);
  EXPECT_THAT(line->record.shapes, waited) << "while the port is published";
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);

  line->record.shapes.clear();
  Click(id::kCameraLink);
  EXPECT_THAT(line->record.shapes, waited) << "while a second click ends that";
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);

  CursorRecord filling;
  QObject::connect(Get<QComboBox>(id::kCOMPort).model(), &QAbstractItemModel::rowsInserted, &Get(id::kCOMPort),
                   [&] { filling.Look(); });
  Click(id::kCOMPortLink);
  EXPECT_THAT(filling.shapes, waited) << "while the host's ports are listed";
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);

  Pick(Get<QComboBox>(id::kCOMPort), COM3);
  line->record.shapes.clear();
  Click(id::kNone);
  EXPECT_THAT(line->record.shapes, waited) << "while the link ends";
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
  mWindow.reset(); // Before what it fills is recorded no more.
}

TEST_F(Kinds, DeviceSet_LeavesEveryPortAtNone) {
  Open();

  EXPECT_THAT(GetEntries(Get<QComboBox>(id::kDevicePort)), ElementsAre("Serial0", "Serial1", "Bulk0"));
  for (const Port port : {Serial0, Serial1, Bulk0}) {
    PickPort(port);

    EXPECT_EQ(GetKind(), "None");
    EXPECT_EQ(GetText(id::kCameraLinkName), "Inactive");
    EXPECT_EQ(GetText(id::kDescription), "Not selected");
  }
  EXPECT_THAT(Save(), IsEmpty());
  EXPECT_THAT(BridgeHost::GetPublished(), IsEmpty());
}

TEST_F(Kinds, CheckedByAssistiveTechnology_IsChosen) {
  SetRates({"9600"});
  OpenOnSerial1();

  krtest::ToggleAccessibly(Get<QRadioButton>(id::kCameraLink));
  EXPECT_EQ(GetKind(), "Camera Link DLL");
  EXPECT_THAT(BridgeHost::GetPublished(), SizeIs(1));

  krtest::ToggleAccessibly(Get<QRadioButton>(id::kNone));
  EXPECT_EQ(GetKind(), "None");
  EXPECT_THAT(BridgeHost::GetPublished(), IsEmpty());

  krtest::ToggleAccessibly(Get<QRadioButton>(id::kCOMPortLink));
  EXPECT_THAT(Save(), ElementsAre(Pair("Serial1", "COMPort")));
}

TEST_F(Kinds, KindOfTheFirstPort_LosesTheSelection) {
  Open();
  PickPort(Serial0);

  Click(id::kCOMPortLink);

  EXPECT_EQ(Get<QComboBox>(id::kDevicePort).currentIndex(), -1);
  EXPECT_EQ(GetKind(), "Serial COM Port Link");
  EXPECT_TRUE(IsEnabled(id::kCOMPort)) << "what is shown stays";
  EXPECT_EQ(GetText(id::kState), "Choose a port of the device.");
  EXPECT_THAT(Save(), ElementsAre(Pair("Serial0", "COMPort")));
}

TEST_F(Kinds, KindOfAnotherPort_KeepsTheSelection) {
  Open();
  for (const Port port : {Serial1, Bulk0}) {
    PickPort(port);

    Click(id::kCOMPortLink);

    EXPECT_EQ(Get<QComboBox>(id::kDevicePort).currentIndex(), port);
  }
}

TEST_F(Kinds, KindThatIsTheSame_KeepsTheSelectionOfTheFirstPort) {
  Open();
  PickPort(Serial0);

  Click(id::kNone);

  EXPECT_EQ(GetSelected(id::kDevicePort), "Serial0");
}

TEST_F(Kinds, KindWithoutASelectedPort_GoesBackToWhatWasShown) {
  Open();

  Click(id::kCOMPortLink);

  EXPECT_EQ(GetKind(), "None");
  EXPECT_THAT(Save(), IsEmpty());
}

TEST_F(Kinds, COMPortLink_ListsTheHostsPortsAnewAndSelectsNone) {
  OpenOnSerial1();
  EXPECT_THAT(GetEntries(Get<QComboBox>(id::kCOMPort)), ElementsAre("COM1", "COM3", "COM12"));
  mHost.AddPort(2);
  mHost.AddPort(123);

  Click(id::kCOMPortLink);

  EXPECT_THAT(GetEntries(Get<QComboBox>(id::kCOMPort)), ElementsAre("COM1", "COM2", "COM3", "COM12"));
  EXPECT_EQ(Get<QComboBox>(id::kCOMPort).currentIndex(), -1);
  EXPECT_EQ(GetText(id::kDescription), "Not selected");
  EXPECT_EQ(GetText(id::kCameraLinkName), "Inactive");
  EXPECT_EQ(GetText(id::kState), "Choose a COM port.");
}

TEST_F(Kinds, COMPortLinkOfALinkThatRuns_ListsThePortsAnewAndSelectsNoneWhileTheLinkGoesOn) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);
  const std::string description = GetText(id::kDescription);
  mHost.AddPort(2);

  Click(id::kCOMPortLink);

  EXPECT_EQ(GetKind(), "Serial COM Port Link");
  EXPECT_EQ(GetSelected(id::kDevicePort), "Serial1");
  EXPECT_THAT(GetEntries(Get<QComboBox>(id::kCOMPort)), ElementsAre("COM1", "COM2", "COM3", "COM12"));
  EXPECT_EQ(Get<QComboBox>(id::kCOMPort).currentIndex(), -1);
  EXPECT_EQ(GetText(id::kDescription), "Not selected");
  EXPECT_FALSE(IsEnabled(id::kConfigure));
  mHost.Send(3, "hello");
  EXPECT_TRUE(WaitFor([&] { return mLines[1]->GetSent() == "hello"; })) << "the link goes on";

  // Its port, chosen there, is shown again.
  Pick(Get<QComboBox>(id::kCOMPort), 2);
  EXPECT_EQ(GetSelected(id::kCOMPort), "COM3");
  EXPECT_EQ(GetText(id::kDescription), description);
  EXPECT_TRUE(IsEnabled(id::kConfigure));
  EXPECT_EQ(mLines[1]->CountOpenings(), 1) << "and not started anew";
}

TEST_F(Kinds, COMPortLinkOfTheFirstPortsLink_KeepsTheSelection) {
  mDevice.enumerations["Uart0BaudRate"] = {{"9600"}, "9600"};
  Open();
  ASSERT_THAT(Load({{"Serial0", "COMPort"}, {"Serial0Port", "COM3"}}), IsEmpty());
  PickPort(Serial0);

  Click(id::kCOMPortLink);

  EXPECT_EQ(GetSelected(id::kDevicePort), "Serial0") << "its kind is the same";
  EXPECT_EQ(Get<QComboBox>(id::kCOMPort).currentIndex(), -1);
}

TEST_F(Kinds, None_EndsTheLink) {
  OpenOnSerial1();
  AnswerBoxes(1);
  Link(COM3);

  Click(id::kNone);

  EXPECT_FALSE(mLines[1]->IsOpen());
  EXPECT_EQ(Get<QComboBox>(id::kCOMPort).currentIndex(), -1);
  EXPECT_EQ(GetText(id::kDescription), "Not selected");
  EXPECT_THAT(Save(), IsEmpty());
}

TEST_F(Kinds, CameraLinkWithKnownRates_IsPublishedAtOnce) {
  SetRates({"9600", "19200"});
  OpenOnSerial1();

  Click(id::kCameraLink);

  EXPECT_EQ(GetKind(), "Camera Link DLL");
  EXPECT_EQ(GetText(id::kCameraLinkName), "Model X 00:11:22:33:44:55-Serial1");
  EXPECT_THAT(BridgeHost::GetPublished(), ElementsAre("Model X 00:11:22:33:44:55-Serial1"));
  EXPECT_TRUE(mLines[1]->IsOpen());
  EXPECT_EQ(GetText(id::kDescription), "Not selected");
}

TEST_F(Kinds, CameraLinkClickedTwice_IsNone) {
  SetRates({"9600", "19200"});
  OpenOnSerial1();
  Click(id::kCameraLink);

  Click(id::kCameraLink);

  EXPECT_EQ(GetKind(), "None");
  EXPECT_EQ(GetText(id::kCameraLinkName), "Inactive");
  EXPECT_THAT(BridgeHost::GetPublished(), IsEmpty());
  EXPECT_THAT(Save(), IsEmpty());
}

TEST_F(Kinds, CameraLinkWithUnknownRates_AsksAndTakesTheAnswer) {
  OpenOnSerial1();

  Publish(Qt::Key_Return);

  EXPECT_THAT(mDialogs, ElementsAre("Device Serial Port Baud Rate"));
  EXPECT_EQ(GetKind(), "Camera Link DLL");
  EXPECT_EQ(GetRates(), "B---------");
  EXPECT_THAT(Save(), ElementsAre(Pair("Serial1", "CLDLL"), Pair("Serial1CLDLLBaudRate", "9600")));
}

TEST_F(Kinds, CameraLinkWhoseRateIsNotSaid_IsNone) {
  OpenOnSerial1();

  Publish(Qt::Key_Escape);

  EXPECT_EQ(mDialogs.size(), 1U);
  EXPECT_EQ(GetKind(), "None");
  EXPECT_EQ(GetText(id::kCameraLinkName), "Inactive");
  EXPECT_FALSE(mLines[1]->IsOpen());
  EXPECT_THAT(BridgeHost::GetPublished(), IsEmpty());
}

TEST_F(Kinds, CameraLinkThatCannotStart_IsToldAndNone) {
  OpenOnSerial1();
  mLines[1]->FailOpening({KrResult::Code::Busy, "line.cpp:12 Somebody has it."});
  AnswerBoxes(1);

  Click(id::kCameraLink);

  ASSERT_EQ(mBoxes.size(), 1U);
  EXPECT_THAT(mBoxes[0], StartsWith("Serial Communication Bridge: Unable to start Camera Link DLL bridge.\nBusy: "));
  EXPECT_THAT(mPictures, ElementsAre("Warning"));
  EXPECT_EQ(GetKind(), "None");
  EXPECT_EQ(GetText(id::kCameraLinkName), "Inactive");
  EXPECT_THAT(Save(), IsEmpty());
}

TEST_F(Kinds, CameraLinkOfTheFirstPortThatCannotStart_LosesTheSelection) {
  Open();
  PickPort(Serial0);
  mLines[0]->FailOpening(KrResult::Code::Busy);
  AnswerBoxes(1);

  Click(id::kCameraLink);

  EXPECT_EQ(Get<QComboBox>(id::kDevicePort).currentIndex(), -1);
  EXPECT_EQ(GetKind(), "None");
}

TEST_F(Kinds, OtherKindOfAPublishedPort_EndsThePublication) {
  SetRates({"9600"});
  OpenOnSerial1();
  for (const auto& [button, kind] : {std::pair{id::kNone, "None"}, {id::kCOMPortLink, "Serial COM Port Link"}}) {
    Click(id::kCameraLink);
    ASSERT_THAT(BridgeHost::GetPublished(), ElementsAre(HasSubstr("-Serial1")));

    Click(button);

    EXPECT_EQ(GetKind(), kind);
    EXPECT_EQ(GetText(id::kCameraLinkName), "Inactive");
    EXPECT_EQ(GetText(id::kDescription), "Not selected");
    EXPECT_THAT(BridgeHost::GetPublished(), IsEmpty());
    EXPECT_FALSE(mLines[1]->IsOpen());
  }
}

TEST_F(Kinds, CameraLinkOnALinkedPort_TakesThePlaceOfTheLink) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);

  Click(id::kCameraLink);

  EXPECT_EQ(Get<QComboBox>(id::kCOMPort).currentIndex(), -1);
  EXPECT_THAT(Save(), ElementsAre(Pair("Serial1", "CLDLL"), Pair("Serial1CLDLLBaudRate", "0")));
}

TEST_F(Kinds, PortsOfDifferentKinds_AreShownWhenTheyAreSelected) {
  SetRates({"9600"});
  OpenOnSerial1();
  Click(id::kCameraLink);
  PickPort(Bulk0);
  AnswerBoxes(1);
  Link(COM12);

  PickPort(Serial1);
  EXPECT_EQ(GetKind(), "Camera Link DLL");
  EXPECT_EQ(Get<QComboBox>(id::kCOMPort).currentIndex(), -1);
  EXPECT_EQ(GetText(id::kDescription), "Not selected");
  EXPECT_THAT(GetText(id::kCameraLinkName), HasSubstr("-Serial1"));

  PickPort(Bulk0);
  EXPECT_EQ(GetKind(), "Serial COM Port Link");
  EXPECT_EQ(GetSelected(id::kCOMPort), "COM12");
  EXPECT_EQ(GetText(id::kDescription), "9600 baud, no parity, 8 bits, 1 stop bit");
  EXPECT_EQ(GetText(id::kCameraLinkName), "Inactive");

  PickPort(Serial0);
  EXPECT_EQ(GetKind(), "None");
  EXPECT_EQ(GetText(id::kDescription), "Not selected");
  EXPECT_EQ(GetText(id::kCameraLinkName), "Inactive");
}

TEST_F(Kinds, DescriptionOfALinkWithoutAPort_IsTheLastOnes) {
  OpenOnSerial1();
  AnswerBoxes(1);
  Link(COM3);
  PickPort(Bulk0);
  Click(id::kCOMPortLink);
  PickPort(Serial1);

  PickPort(Bulk0);

  EXPECT_EQ(GetKind(), "Serial COM Port Link");
  EXPECT_EQ(Get<QComboBox>(id::kCOMPort).currentIndex(), -1);
  EXPECT_EQ(GetText(id::kDescription), "9600 baud, no parity, 8 bits, 1 stop bit");
}

TEST_F(Kinds, Controls_AreEnabledByTheKind) {
  SetRates({"9600"});
  OpenOnSerial1();
  const std::vector<int> controls = {id::kCOMPortLabel,   id::kCOMPort,   id::kDescription,   id::kConfigure,
                                     id::kCameraLinkName, id::kBytesSent, id::kBytesReceived, id::kReset};
  const auto enabled = [&] {
    std::string text;
    for (const int control : controls)
      text += IsEnabled(control) ? 'e' : '-';
    return text;
  };
  EXPECT_EQ(enabled(), "--------");

  Click(id::kCOMPortLink);
  EXPECT_EQ(enabled(), "eee--eee");
  Pick(Get<QComboBox>(id::kCOMPort), COM3);
  EXPECT_EQ(enabled(), "eeee-eee");
  Click(id::kCameraLink);
  EXPECT_EQ(enabled(), "----eeee");
  Click(id::kNone);
  EXPECT_EQ(enabled(), "--------");
}

} // namespace krgui

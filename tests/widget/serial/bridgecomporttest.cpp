// The serial bridge manager's COM ports: choosing one, configuring it, and what the list does by itself.

#include "bridgefixture.h"
#include "controlhands.h"
#include "temporaryfolder.h"

#include <QAbstractItemView>

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

class COMPorts : public BridgeTest {
protected:
  QComboBox& GetList() const { return Get<QComboBox>(id::kCOMPort); }

  /// Opens the configuration dialog and does something there.
  void Configure(std::function<void(QWidget&)> aAction) {
    DuringNextModalLoop(std::move(aAction));
    Click(id::kConfigure);
  }
  static QComboBox& GetIn(QWidget& aDialog, int aID) {
    return *aDialog.findChild<QComboBox*>(QStringLiteral("control%1").arg(aID));
  }
};

} // namespace

TEST_F(COMPorts, ChosenPort_IsLinkedAndDescribed) {
  SetRates({"9600", "115200"});
  OpenOnSerial1();

  Link(COM3);

  EXPECT_EQ(GetSelected(id::kCOMPort), "COM3");
  EXPECT_EQ(GetText(id::kDescription), "9600 baud, no parity, 8 bits, 1 stop bit");
  EXPECT_EQ(GetText(id::kState), "");
  mHost.Send(3, "hello");
  EXPECT_TRUE(WaitFor([&] { return mLines[1]->GetSent() == "hello"; }));
}

TEST_F(COMPorts, ChosenPortOfUnknownRates_IsToldOnce) {
  OpenOnSerial1();
  AnswerBoxes(1);

  Link(COM3);
  Pick(GetList(), COM1);

  EXPECT_THAT(mBoxes,
              ElementsAre("Device Serial Port Baud Rate: The baud rate of the device serial port cannot be accessed "
                          "through its GenICam interface.\n\nConfigure the serial COM port baud rate to match the "
                          "hard-coded device serial port baud rate."));
  EXPECT_THAT(mPictures, ElementsAre("Information"));
  EXPECT_EQ(GetSelected(id::kCOMPort), "COM1");
}

TEST_F(COMPorts, PortThatCannotBeOpened_IsToldAndNotSelected) {
  mHost.AddLink("com2", "/dev/null");
  OpenOnSerial1();
  AnswerBoxes(1);

  Click(id::kCOMPortLink);
  Pick(GetList(), 1);

  ASSERT_EQ(mBoxes.size(), 1U);
  EXPECT_THAT(mBoxes[0], StartsWith("Serial Communication Bridge: Error opening serial COM port.\n"));
  EXPECT_THAT(mPictures, ElementsAre("Warning"));
  EXPECT_EQ(GetList().currentIndex(), -1);
  EXPECT_EQ(GetKind(), "Serial COM Port Link");
  EXPECT_FALSE(IsEnabled(id::kConfigure));
  EXPECT_THAT(Save(), ElementsAre(Pair("Serial1", "COMPort")));
}

TEST_F(COMPorts, AnotherPortThatCannotBeOpened_EndsTheLinkAndLeavesTheDescription) {
  mHost.AddLink("com2", "/dev/null");
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM1);
  AnswerBoxes(1);

  Pick(GetList(), 1);

  EXPECT_EQ(mBoxes.size(), 1U);
  EXPECT_EQ(GetList().currentIndex(), -1);
  EXPECT_EQ(GetText(id::kDescription), "9600 baud, no parity, 8 bits, 1 stop bit");
  EXPECT_FALSE(mLines[1]->IsOpen());
}

TEST_F(COMPorts, AnotherPort_KeepsTheConfiguration) {
  ASSERT_THAT(Load({}), IsEmpty());
  OpenOnSerial1();
  ASSERT_THAT(Load({{"Serial1", "COMPort"}, {"Serial1Port", "COM3"}, {"Serial1COMPortBaudRate", "57600"}}), IsEmpty());
  PickPort(Serial1);

  Pick(GetList(), COM12);

  EXPECT_EQ(GetText(id::kDescription), "57600 baud, no parity, 8 bits, 1 stop bit");
  EXPECT_EQ(mLines[1]->CountOpenings(), 2);
}

TEST_F(COMPorts, PortThatRunsAlready_IsNotStartedAnew) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);

  Pick(GetList(), COM3);

  EXPECT_EQ(mLines[1]->CountOpenings(), 1);
  EXPECT_EQ(GetSelected(id::kCOMPort), "COM3");
}

TEST_F(COMPorts, PortWithoutASelectedDevicePort_GoesBackToWhatWasShown) {
  Open();
  PickPort(Serial0);
  Click(id::kCOMPortLink);

  Pick(GetList(), COM3);

  EXPECT_EQ(GetList().currentIndex(), -1);
  EXPECT_EQ(mLines[0]->CountOpenings(), 0);
}

TEST_F(COMPorts, PortOfAnotherLink_IsBusy) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);
  PickPort(Bulk0);
  AnswerBoxes(1);

  Link(COM3);

  ASSERT_EQ(mBoxes.size(), 1U);
  EXPECT_THAT(mBoxes[0], StartsWith("Serial Communication Bridge: Error opening serial COM port.\nBusy: "));
}

TEST_F(COMPorts, HostWithoutPorts_IsSaid) {
  for (const int number : {1, 3, 12})
    mHost.RemovePort(number);
  OpenOnSerial1();

  Click(id::kCOMPortLink);

  EXPECT_EQ(GetList().count(), 0);
  EXPECT_EQ(GetText(id::kState), "The host has no COM port.");
}

TEST_F(COMPorts, Wheel_ChoosesNothingInEitherList) {
  OpenOnSerial1();
  Click(id::kCOMPortLink);

  for (QComboBox* list : {&GetList(), &Get<QComboBox>(id::kDevicePort)}) {
    list->setFocus();
    EXPECT_FALSE(krtest::TurnWheel(*list, false));
    EXPECT_FALSE(krtest::TurnWheel(*list, true));
  }

  EXPECT_EQ(GetList().currentIndex(), -1);
  EXPECT_EQ(mLines[1]->CountOpenings(), 0);
  EXPECT_EQ(GetSelected(id::kDevicePort), "Serial1");
}

TEST_F(COMPorts, KeysInTheClosedList_OpenItAndLeaveTheLink) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);
  GetList().setFocus();

  for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End, Qt::Key_PageUp, Qt::Key_PageDown,
                            Qt::Key_C, Qt::Key_Space}) {
    QTest::keyClick(&GetList(), key);

    ASSERT_TRUE(WaitFor([&] { return GetList().view()->isVisible(); })) << key;
    EXPECT_EQ(GetList().view()->currentIndex().row(), COM3) << key;
    QTest::keyClick(GetList().view(), Qt::Key_Up);
    QTest::keyClick(GetList().view(), Qt::Key_Escape);
    ASSERT_TRUE(WaitFor([&] { return !GetList().view()->isVisible(); })) << key;
    EXPECT_EQ(GetSelected(id::kCOMPort), "COM3") << key;
  }

  EXPECT_EQ(mLines[1]->CountOpenings(), 1);
  EXPECT_TRUE(mLines[1]->IsOpen());
}

TEST_F(COMPorts, EnterInTheOpenList_TakesTheMarkedPort) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);
  GetList().setFocus();
  QTest::keyClick(&GetList(), Qt::Key_Up);
  ASSERT_TRUE(WaitFor([&] { return GetList().view()->isVisible(); }));

  QTest::keyClick(GetList().view(), Qt::Key_Up);
  EXPECT_EQ(mLines[1]->CountOpenings(), 1);
  QTest::keyClick(GetList().view(), Qt::Key_Return);

  EXPECT_EQ(GetSelected(id::kCOMPort), "COM1");
  EXPECT_EQ(mLines[1]->CountOpenings(), 2);
}

TEST_F(COMPorts, ListsOpenedWithoutASelection_MarkTheirFirstEntry) {
  Open();
  auto& ports = Get<QComboBox>(id::kDevicePort);
  ports.setFocus();
  QTest::keyClick(&ports, Qt::Key_Space);
  ASSERT_TRUE(WaitFor([&] { return ports.view()->isVisible(); }));
  EXPECT_EQ(ports.view()->selectionModel()->selectedIndexes().value(0).row(), Serial0);
  QTest::keyClick(ports.view(), Qt::Key_Down);
  QTest::keyClick(ports.view(), Qt::Key_Return);
  EXPECT_EQ(GetSelected(id::kDevicePort), "Serial1");

  Click(id::kCOMPortLink);
  GetList().setFocus();
  QTest::keyClick(&GetList(), Qt::Key_Down);
  ASSERT_TRUE(WaitFor([&] { return GetList().view()->isVisible(); }));
  EXPECT_EQ(GetList().view()->currentIndex().row(), COM1);
  QTest::keyClick(GetList().view(), Qt::Key_Escape);
  EXPECT_EQ(mLines[1]->CountOpenings(), 0);
}

TEST_F(COMPorts, ListThatIsOpened_HasTheHostsPortsOfNowAndKeepsTheSelection) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);
  mHost.AddPort(2);
  mHost.RemovePort(1);

  QTest::mouseClick(&GetList(), Qt::LeftButton);

  ASSERT_TRUE(WaitFor([&] { return GetList().view()->isVisible(); }));
  EXPECT_THAT(GetEntries(GetList()), ElementsAre("COM2", "COM3", "COM12"));
  EXPECT_EQ(GetSelected(id::kCOMPort), "COM3");
  EXPECT_EQ(mLines[1]->CountOpenings(), 1);
  GetList().hidePopup();
}

TEST_F(COMPorts, ListOpenedByTheKeyboard_HasTheHostsPortsOfNow) {
  OpenOnSerial1();
  Click(id::kCOMPortLink);
  mHost.AddPort(2);
  GetList().setFocus();

  QTest::keyClick(&GetList(), Qt::Key_F4);

  ASSERT_TRUE(WaitFor([&] { return GetList().view()->isVisible(); }));
  EXPECT_THAT(GetEntries(GetList()), ElementsAre("COM1", "COM2", "COM3", "COM12"));
  GetList().hidePopup();
}

TEST_F(COMPorts, Creating_OffersThePortThatTheHostLacks) {
  mWindow->SetCreatingPorts(true);
  SetRates({"9600"});
  OpenOnSerial1();
  Click(id::kCOMPortLink);
  ASSERT_THAT(GetEntries(GetList()), ElementsAre("COM1", "COM2", "COM3", "COM12"));

  Pick(GetList(), 1);

  EXPECT_EQ(GetSelected(id::kCOMPort), "COM2");
  KrHostSerialPort port;
  EXPECT_TRUE(KrHostSerialPorts::Find("COM2", port).IsOK());
  mWindow->SetCreatingPorts(false);
  EXPECT_EQ(GetSelected(id::kCOMPort), "COM2") << "it is there now";
}

TEST_F(COMPorts, Creating_OffersNoNumberOfAPortThatIsAway) {
  mWindow->SetCreatingPorts(true);
  mHost.AddLink("com2", "/nowhere/an-adapter");
  TemporaryFolder::WriteFile(KrHostSerialPorts::GetFolders().numbers.ToUtf8(),
                             "krgui serial port numbers 1\n4 usb-an-adapter-that-was-pulled\n");
  OpenOnSerial1();

  Click(id::kCOMPortLink);

  EXPECT_THAT(GetEntries(GetList()), ElementsAre("COM1", "COM3", "COM5", "COM12"));
}

TEST_F(COMPorts, Creating_OffersNoNumberForWhichABridgeWaits) {
  mWindow->SetCreatingPorts(true);
  SetRates({"9600"});
  OpenOnSerial1();
  Click(id::kCOMPortLink);
  Pick(GetList(), COM1);
  ASSERT_EQ(GetSelected(id::kCOMPort), "COM1");
  mHost.RemovePort(1);

  PickPort(Bulk0);
  Click(id::kCOMPortLink);

  EXPECT_THAT(GetEntries(GetList()), ElementsAre("COM2", "COM3", "COM12"));
}

TEST_F(COMPorts, PortThatHasGone_IsNotSelectedUntilItIsBack) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);
  ASSERT_TRUE(IsEnabled(id::kConfigure));
  mHost.RemovePort(3);
  GetList().setFocus();

  QTest::keyClick(&GetList(), Qt::Key_F4);
  ASSERT_TRUE(WaitFor([&] { return GetList().view()->isVisible(); }));
  GetList().hidePopup();
  EXPECT_EQ(GetList().currentIndex(), -1);
  EXPECT_FALSE(IsEnabled(id::kConfigure));

  mHost.AddPort(3);
  mWindow->SetCreatingPorts(true);
  EXPECT_EQ(GetSelected(id::kCOMPort), "COM3");
  EXPECT_TRUE(IsEnabled(id::kConfigure));
}

TEST_F(COMPorts, CreatingSetWhileTheWindowIsOpen_ChangesTheList) {
  OpenOnSerial1();
  Click(id::kCOMPortLink);

  mWindow->SetCreatingPorts(true);
  EXPECT_EQ(GetList().count(), 4);
  mWindow->SetCreatingPorts(false);
  EXPECT_EQ(GetList().count(), 3);
}

TEST_F(COMPorts, Entries_SayWhatThePortIs) {
  Open();

  for (int index = 0; index < GetList().count(); ++index)
    EXPECT_NE(GetList().itemData(index, Qt::ToolTipRole).toString(), "") << index;
}

TEST_F(COMPorts, ConfigurationDialog_ShowsWhatIsSet) {
  SetRates({"9600", "19200", "250000"});
  OpenOnSerial1();
  Link(COM3);
  std::vector<std::vector<std::string>> entries;
  std::vector<std::string> selected;
  std::string title;

  Configure([&](QWidget& aDialog) {
    title = aDialog.windowTitle().toStdString();
    for (const int list : {id::kBaudRate, id::kParity, id::kByteSize, id::kStopBits}) {
      entries.push_back(GetEntries(GetIn(aDialog, list)));
      selected.push_back(GetIn(aDialog, list).currentText().toStdString());
    }
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(title, "Serial COM Port Configuration");
  EXPECT_THAT(entries,
              ElementsAre(ElementsAre("9600 baud", "19200 baud", "250000 baud"), ElementsAre("None", "Even", "Odd"),
                          ElementsAre("7 bits", "8 bits"), ElementsAre("1 bit", "2 bits")));
  EXPECT_THAT(selected, ElementsAre("9600 baud", "None", "8 bits", "1 bit"));
}

TEST_F(COMPorts, ConfigurationDialogOfUnknownRates_OffersTheUsualTen) {
  OpenOnSerial1();
  AnswerBoxes(1);
  Link(COM3);
  std::vector<std::string> entries;

  Configure([&](QWidget& aDialog) {
    entries = GetEntries(GetIn(aDialog, id::kBaudRate));
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  EXPECT_THAT(entries, ElementsAre("9600 baud", "14400 baud", "19200 baud", "28800 baud", "38400 baud", "57600 baud",
                                   "115200 baud", "230400 baud", "460800 baud", "921600 baud"));
}

TEST_F(COMPorts, ConfigurationThatIsChosen_IsApplied) {
  OpenOnSerial1();
  AnswerBoxes(1);
  Link(COM3);

  Configure([&](QWidget& aDialog) {
    GetIn(aDialog, id::kBaudRate).setCurrentText("115200 baud");
    GetIn(aDialog, id::kParity).setCurrentText("Even");
    GetIn(aDialog, id::kStopBits).setCurrentText("2 bits");
    QTest::keyClick(&aDialog, Qt::Key_Return);
  });

  EXPECT_EQ(GetText(id::kDescription), "115200 baud, even parity, 8 bits, 2 stop bits");
  EXPECT_EQ(GetSelected(id::kCOMPort), "COM3");
  EXPECT_EQ(mBoxes.size(), 1U);
}

TEST_F(COMPorts, ConfigurationThatIsChosen_IsSelectedWhenTheDialogIsOpenedAgain) {
  OpenOnSerial1();
  AnswerBoxes(1);
  Link(COM3);
  Configure([&](QWidget& aDialog) {
    GetIn(aDialog, id::kBaudRate).setCurrentText("19200 baud");
    GetIn(aDialog, id::kParity).setCurrentText("Odd");
    GetIn(aDialog, id::kByteSize).setCurrentText("7 bits");
    GetIn(aDialog, id::kStopBits).setCurrentText("2 bits");
    QTest::keyClick(&aDialog, Qt::Key_Return);
  });
  std::vector<std::string> selected;

  Configure([&](QWidget& aDialog) {
    for (const int list : {id::kBaudRate, id::kParity, id::kByteSize, id::kStopBits})
      selected.push_back(GetIn(aDialog, list).currentText().toStdString());
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(GetText(id::kDescription), "19200 baud, odd parity, 7 bits, 2 stop bits");
  EXPECT_THAT(selected, ElementsAre("19200 baud", "Odd", "7 bits", "2 bits"));
}

TEST_F(COMPorts, ConfigurationThatIsCancelled_ChangesNothing) {
  OpenOnSerial1();
  AnswerBoxes(1);
  Link(COM3);

  Configure([&](QWidget& aDialog) {
    GetIn(aDialog, id::kBaudRate).setCurrentText("115200 baud");
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(GetText(id::kDescription), "9600 baud, no parity, 8 bits, 1 stop bit");
}

TEST_F(COMPorts, ListWithoutASelection_CannotBeAppliedAndThatIsTold) {
  SetRates({"9600", "19200"});
  OpenOnSerial1();
  ASSERT_THAT(Load({{"Serial1", "COMPort"}, {"Serial1Port", "COM3"}, {"Serial1COMPortBaudRate", "57600"}}), IsEmpty());
  PickPort(Serial1);
  int selected = 0;

  Configure([&](QWidget& aDialog) {
    selected = GetIn(aDialog, id::kBaudRate).currentIndex();
    AnswerBoxes(1);
    QTest::keyClick(&aDialog, Qt::Key_Return);
  });

  EXPECT_EQ(selected, -1);
  ASSERT_EQ(mBoxes.size(), 1U);
  EXPECT_THAT(
      mBoxes[0],
      StartsWith("Serial Communication Bridge: Unable to change serial COM port configuration.\nInvalidInput: "));
  EXPECT_THAT(mPictures, ElementsAre("Warning"));
  EXPECT_EQ(GetText(id::kDescription), "57600 baud, no parity, 8 bits, 1 stop bit");
}

} // namespace krgui

// The serial terminal's ports: which are listed, and what opening and closing them does to the controls.

#include "await.h"
#include "terminalfixture.h"

#include <QAbstractItemView>
#include <QGroupBox>

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Ports : public TerminalTest {
protected:
  KrResult::Code SetDevice(krtest::SerialAdapter* aDevice) { return mWindow->SetDevice(aDevice).GetCode(); }
  KrResult::Code SetPort(KrDeviceSerial aPort) { return mWindow->SetSerialPort(aPort).GetCode(); }
};

/// Whatever the user can use or read, but for what has rules of its own.
std::vector<int> GetPortDependents() {
  return {id::kSendASCII, id::kSendHexadecimal, id::kData,       id::kSend,   id::kCR,       id::kLF,
          id::kNull,      id::kOther,           id::kFile,       id::kBrowse, id::kSendFile, id::kValidation,
          id::kShowASCII, id::kShowHexadecimal, id::kShowHybrid, id::kEcho,   id::kClear,    id::kTranscript};
}

} // namespace

TEST_F(Ports, DeviceWithSerial0AndBulk0_ListsTheseTwoInThisOrder) {
  Open();

  EXPECT_THAT(GetEntries(id::kPort), ElementsAre("Serial0", "Bulk0"));
  EXPECT_EQ(Get<QComboBox>(id::kPort).currentText(), "Serial0");
}

TEST_F(Ports, DeviceWithAllPorts_ListsThemInTheOrderOfTheirNumbers) {
  for (std::uint32_t number = 0; number < 10; ++number)
    mDevice.AddLine(number);

  Open();

  EXPECT_THAT(GetEntries(id::kPort), ElementsAre("Serial0", "Serial1", "Bulk0", "Bulk1", "Bulk2", "Bulk3", "Bulk4",
                                                 "Bulk5", "Bulk6", "Bulk7"));
}

TEST_F(Ports, PortThatTheDeviceLacks_IsNotSupportedAndLeavesSerial0) {
  Open();

  EXPECT_EQ(SetPort(KrDeviceSerial::Bulk5), KrResult::Code::NotSupported);
  EXPECT_EQ(static_cast<int>(KrResult::Code::NotSupported), 26);

  EXPECT_EQ(mWindow->GetSerialPort(), KrDeviceSerial::Serial0);
  EXPECT_EQ(Get<QComboBox>(id::kPort).currentText(), "Serial0");
  EXPECT_EQ(mLine->CountOpenings(), 1);
}

TEST_F(Ports, PortSetWithoutADevice_IsStoredAsItIs) {
  EXPECT_EQ(SetPort(KrDeviceSerial::Bulk7), KrResult::Code::OK);

  EXPECT_EQ(mWindow->GetSerialPort(), KrDeviceSerial::Bulk7);
}

TEST_F(Ports, PortSetBeforeTheWindowIsOpen_IsAskedOfTheDeviceAndOpenedLater) {
  ASSERT_EQ(SetDevice(&mDevice), KrResult::Code::OK);

  EXPECT_EQ(SetPort(KrDeviceSerial::Bulk5), KrResult::Code::NotSupported);
  EXPECT_EQ(SetPort(KrDeviceSerial::Bulk0), KrResult::Code::OK);
  EXPECT_EQ(mBulk->CountOpenings(), 0);

  Open();
  EXPECT_TRUE(mBulk->IsOpen());
  EXPECT_FALSE(mLine->IsOpen());
  EXPECT_EQ(Get<QComboBox>(id::kPort).currentText(), "Bulk0");
}

TEST_F(Ports, StoredPortThatTheDeviceLacks_FirstOneIsOpenedInstead) {
  ASSERT_EQ(SetPort(KrDeviceSerial::Bulk7), KrResult::Code::OK);

  Open();

  EXPECT_EQ(mWindow->GetSerialPort(), KrDeviceSerial::Serial0);
  EXPECT_TRUE(mLine->IsOpen());
}

TEST_F(Ports, OtherDeviceThatLacksTheOpenPort_ItsFirstOneIsOpenedInstead) {
  krtest::SerialAdapter other;
  const std::shared_ptr<krtest::SerialLine> line = other.AddLine(5);
  other.AddLine(9);
  Open();

  EXPECT_EQ(SetDevice(&other), KrResult::Code::OK);

  EXPECT_THAT(GetEntries(id::kPort), ElementsAre("Bulk3", "Bulk7"));
  EXPECT_EQ(Get<QComboBox>(id::kPort).currentText(), "Bulk3");
  EXPECT_EQ(mWindow->GetSerialPort(), KrDeviceSerial::Bulk3);
  EXPECT_TRUE(line->IsOpen());
  EXPECT_FALSE(mLine->IsOpen());
  mWindow.reset();
}

TEST_F(Ports, PortSetWhileAnotherOneIsOpen_IsSelectedAndTakesItsPlace) {
  Open();

  EXPECT_EQ(SetPort(KrDeviceSerial::Bulk0), KrResult::Code::OK);

  EXPECT_EQ(Get<QComboBox>(id::kPort).currentText(), "Bulk0");
  EXPECT_EQ(mWindow->GetSerialPort(), KrDeviceSerial::Bulk0);
  EXPECT_FALSE(mLine->IsOpen());
  EXPECT_TRUE(mBulk->IsOpen());
}

TEST_F(Ports, DeviceWithoutPorts_IsOnlyStoredBeforeTheWindowIsOpen) {
  mDevice.lines.clear();

  EXPECT_EQ(SetDevice(&mDevice), KrResult::Code::OK);
}

TEST_F(Ports, DeviceWithoutPortsInAnOpenWindow_IsNotSupportedAndForgotten) {
  krtest::SerialAdapter bare;
  Open();

  EXPECT_EQ(SetDevice(&bare), KrResult::Code::NotSupported);

  EXPECT_THAT(GetEntries(id::kPort), IsEmpty());
  EXPECT_FALSE(mLine->IsOpen());
  EXPECT_FALSE(Get(id::kSend).isEnabled());
  EXPECT_EQ(GetTranscript().GetHint(), "The device has no serial port.");
  EXPECT_EQ(SetPort(KrDeviceSerial::Bulk7), KrResult::Code::OK) << "without a device a port is only stored";
}

TEST_F(Ports, NoDeviceWhileAPortIsOpen_ClosesItAndSaysSo) {
  Open();

  EXPECT_EQ(SetDevice(nullptr), KrResult::Code::OK);

  EXPECT_THAT(GetEntries(id::kPort), IsEmpty());
  EXPECT_FALSE(mLine->IsOpen());
  EXPECT_FALSE(Get(id::kData).isEnabled());
  EXPECT_EQ(GetStatus(), "No device");
  EXPECT_EQ(GetTranscript().GetHint(), "There is no device to talk to.");
  EXPECT_EQ(GetTranscript().GetText(), u"");
}

TEST_F(Ports, DeviceGivenBackAfterNone_IsOpenedAgain) {
  Open();
  ASSERT_EQ(SetDevice(nullptr), KrResult::Code::OK);

  EXPECT_EQ(SetDevice(&mDevice), KrResult::Code::OK);

  EXPECT_EQ(mLine->CountOpenings(), 2);
  EXPECT_TRUE(Get(id::kData).isEnabled());
  EXPECT_EQ(GetTranscript().GetHint(), "");
}

TEST_F(Ports, EveryControlButListLabelAndFrames_IsEnabledExactlyWhileAPortIsOpen) {
  Open();
  for (const int control : GetPortDependents())
    EXPECT_TRUE(Get(control).isEnabled()) << control;

  ASSERT_EQ(SetDevice(nullptr), KrResult::Code::OK);

  for (const int control : GetPortDependents())
    EXPECT_FALSE(Get(control).isEnabled()) << control;
  for (const int control : {id::kPort, id::kPortLabel, id::kStatus, id::kTranscriptBox})
    EXPECT_TRUE(Get(control).isEnabled()) << control;
  for (const QGroupBox* box : mWindow->GetWidget()->findChildren<QGroupBox*>())
    EXPECT_TRUE(box->isEnabled()) << box->title().toStdString();
}

TEST_F(Ports, OtherFieldAndHexLabel_AreEnabledOnlyWithOther) {
  Open();
  EXPECT_FALSE(Get(id::kOtherField).isEnabled());
  EXPECT_FALSE(Get(id::kHexLabel).isEnabled());

  Click(id::kOther);
  EXPECT_TRUE(Get(id::kOtherField).isEnabled());
  EXPECT_TRUE(Get(id::kHexLabel).isEnabled());

  ASSERT_EQ(SetDevice(nullptr), KrResult::Code::OK);
  EXPECT_FALSE(Get(id::kOtherField).isEnabled());
}

TEST_F(Ports, PortThatCannotBeOpened_IsToldWithTheWindowsTitleAndLeavesControlsDisabled) {
  mLine->FailOpening(KrResult(KrResult::Code::Busy, "line.cpp:12 Somebody has it."));
  ASSERT_EQ(SetDevice(&mDevice), KrResult::Code::OK);
  AnswerBoxes(1);

  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  ASSERT_EQ(mBoxes.size(), 1U);
  EXPECT_THAT(mBoxes[0], HasSubstr("Device Serial Communication: Unable to open port.\n"));
  EXPECT_EQ(mPictures[0], "Warning");
  EXPECT_THAT(mBoxes[0], HasSubstr(": Somebody has it."));
  EXPECT_FALSE(Get(id::kSend).isEnabled());
  EXPECT_TRUE(Get(id::kPort).isEnabled());
  EXPECT_EQ(GetStatus(), "Not open");
}

TEST_F(Ports, PortThatCannotBeOpened_IsToldWithTheTitleThatTheApplicationGave) {
  Open();
  mWindow->SetTitle("My line");
  mBulk->FailOpening(KrResult::Code::Busy);
  AnswerBoxes(1);

  EXPECT_EQ(SetPort(KrDeviceSerial::Bulk0), KrResult::Code::OK);

  EXPECT_THAT(mBoxes, ElementsAre(testing::StartsWith("My line: Unable to open port.\nBusy: ")));
}

TEST_F(Ports, PortThatCannotBeOpened_IsOKForWhoeverSetsIt) {
  Open();
  mBulk->FailOpening(KrResult::Code::Busy);
  AnswerBoxes(1);

  EXPECT_EQ(SetPort(KrDeviceSerial::Bulk0), KrResult::Code::OK);

  EXPECT_EQ(mBoxes.size(), 1U);
  EXPECT_EQ(mWindow->GetSerialPort(), KrDeviceSerial::Bulk0);
  EXPECT_FALSE(mLine->IsOpen());
  EXPECT_FALSE(Get(id::kSend).isEnabled());
}

TEST_F(Ports, PortChosenOnceMoreAfterAFailure_IsOpened) {
  Open();
  mBulk->FailOpening(KrResult::Code::Busy);
  AnswerBoxes(1);
  Pick(Get<QComboBox>(id::kPort), 1);
  mBulk->FailOpening({});

  Pick(Get<QComboBox>(id::kPort), 1);

  EXPECT_TRUE(mBulk->IsOpen());
  EXPECT_TRUE(Get(id::kSend).isEnabled());
  EXPECT_EQ(GetStatus(), "Open");
}

TEST_F(Ports, TwoWindowsOnOnePort_SecondTellsThatItIsBusyAndOpensItLater) {
  Open();
  KrSerialTerminalWnd second;
  ASSERT_TRUE(second.SetDevice(&mDevice).IsOK());
  AnswerBoxes(1);
  ASSERT_TRUE(second.ShowModeless(0).IsOK());
  ASSERT_EQ(mBoxes.size(), 1U);
  EXPECT_THAT(mBoxes[0], HasSubstr(KrResult(KrResult::Code::Busy).GetCodeString().ToUtf8()));

  ASSERT_TRUE(mWindow->Close().IsOK());
  Pick(Get<QComboBox>(second, id::kPort), 0);

  EXPECT_TRUE(Get(second, id::kSend).isEnabled());
}

TEST_F(Ports, EntryPicked_IsOpenedInPlaceOfTheOther) {
  Open();

  Pick(Get<QComboBox>(id::kPort), 1);

  EXPECT_EQ(mWindow->GetSerialPort(), KrDeviceSerial::Bulk0);
  EXPECT_FALSE(mLine->IsOpen());
  EXPECT_TRUE(mBulk->IsOpen());
}

TEST_F(Ports, NothingPicked_CurrentPortIsOpenedAnew) {
  Open();

  Pick(Get<QComboBox>(id::kPort), -1);

  EXPECT_EQ(mWindow->GetSerialPort(), KrDeviceSerial::Serial0);
  EXPECT_EQ(mLine->CountOpenings(), 2);
  EXPECT_TRUE(mLine->IsOpen());
}

TEST_F(Ports, DeviceWithoutPortsInANewWindow_IsSaidThere) {
  mDevice.lines.clear();
  ASSERT_EQ(SetDevice(&mDevice), KrResult::Code::OK);

  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  EXPECT_EQ(GetStatus(), "No serial port");
  EXPECT_EQ(GetTranscript().GetHint(), "The device has no serial port.");
  for (const int control : GetPortDependents())
    EXPECT_FALSE(Get(control).isEnabled()) << control;
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(Ports, ReadingThatFailsForAWhile_ShowsNothingAndGoesOn) {
  Open();
  mLine->FailReading(KrResult::Code::Failed);
  const int reads = mLine->CountReads();
  ASSERT_TRUE(WaitFor([&] { return mLine->CountReads() > reads + 1; }));
  EXPECT_EQ(GetStatus(), "Open");
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);

  mLine->FailReading({});
  mLine->Receive("A");

  EXPECT_TRUE(AwaitText(u"A"));
}

TEST_F(Ports, DeviceThatVanishes_IsToldInTheWindowWithoutABox) {
  Open();

  mLine->Lose();

  EXPECT_TRUE(WaitFor([&] { return GetStatus() == "Connection lost"; }));
  EXPECT_TRUE(Get(id::kSend).isEnabled()) << "the port is still open";
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(Ports, LastBytesBeforeTheDeviceIsTakenOut_AreShownUnderIt) {
  for (const int format : {id::kShowASCII, id::kShowHexadecimal, id::kShowHybrid}) {
    Open();
    Click(format);
    mLine->Receive("tail");
    // Read, and rendered before the next read; the loop of the window has not run since.
    EXPECT_TRUE(krtest::Await([&] { return mLine->CountWaiting() == 0; }));

    ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());

    EXPECT_TRUE(GetText() == u"tail" || GetText() == u"74 61 69 6C " || GetText().ends_with(u"tail            "))
        << QString::fromStdU16String(GetText()).toStdString();
    EXPECT_TRUE(IsShown());
    ASSERT_TRUE(mWindow->Close().IsOK());
  }
}

TEST_F(Ports, ListThatIsOpenWhenTheDeviceGoes_Closes) {
  Open();
  auto& list = Get<QComboBox>(id::kPort);
  list.showPopup();
  ASSERT_TRUE(WaitFor([&] { return list.view()->isVisible(); }));

  ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());

  EXPECT_FALSE(list.view()->isVisible());
}

TEST_F(Ports, LastBytesBeforeAnotherPort_AreShownBeforeItsOwn) {
  Open();
  mBulk->FailOpening(KrResult::Code::Busy);
  Type(id::kData, "typed");
  Click(id::kSend);
  std::u16string whileFailing;
  DuringNextModalLoop([&](QWidget& aBox) {
    whileFailing = GetText();
    QTest::keyClick(&aBox, Qt::Key_Escape);
  });

  EXPECT_EQ(SetPort(KrDeviceSerial::Bulk0), KrResult::Code::OK);

  EXPECT_EQ(whileFailing, u"typed\r\n");
}

TEST_F(Ports, PortSetWhileTyping_LeavesTheFocusWhereItIs) {
  Open();
  Get(id::kData).setFocus();

  ASSERT_EQ(SetPort(KrDeviceSerial::Bulk0), KrResult::Code::OK);

  EXPECT_EQ(QApplication::focusWidget(), &Get(id::kData));
}

TEST_F(Ports, WindowClosedFromTheBoxOfAPort_EndsTheBoxAndTouchesNothing) {
  Open();
  mBulk->FailOpening(KrResult::Code::Busy);
  DuringNextModalLoop([this](QWidget&) { mWindow.reset(); });

  EXPECT_EQ(SetPort(KrDeviceSerial::Bulk0), KrResult::Code::OK);

  EXPECT_EQ(mWindow, nullptr);
}

} // namespace krgui

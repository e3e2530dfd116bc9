// What the serial terminal reads from and writes to the device's parameters: the bulk port's selector, speed and
// loopback.

#include "controlhands.h"
#include "terminalfixture.h"

#include <stdexcept>

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A line that notes what the device was told before it is opened.
struct NotingLine : krtest::SerialLine {
  explicit NotingLine(const krtest::SerialAdapter& aDevice) : device(aDevice) {}
  KrResult Open() override {
    toldBefore = device.written;
    return SerialLine::Open();
  }
  const krtest::SerialAdapter& device;
  std::vector<std::string> toldBefore;
};

/// A device of an application's that cannot be asked for its parameters, once it says so.
struct ThrowingDevice : krtest::SerialAdapter {
  bool HasParameter(const KrString& aName) override {
    if (throws)
      throw std::runtime_error("no parameters");
    return SerialAdapter::HasParameter(aName);
  }
  bool throws = false;
};

class Settings : public TerminalTest {};

} // namespace

TEST_F(Settings, BulkPortPicked_SelectorIsSetFirstWhereTheDeviceHasIt) {
  mDevice.enumerations["BulkSelector"] = {{"Bulk0", "Bulk1"}, "Bulk1"};
  Open();

  Pick(Get<QComboBox>(id::kPort), 1);
  EXPECT_THAT(mDevice.written, ElementsAre("BulkSelector=Bulk0"));

  Pick(Get<QComboBox>(id::kPort), 0);
  EXPECT_THAT(mDevice.written, ElementsAre("BulkSelector=Bulk0"));
}

TEST_F(Settings, BulkPortPicked_IsOpenedAfterItsSelectorIsSet) {
  mDevice.enumerations["BulkSelector"] = {{"Bulk0", "Bulk1"}, "Bulk1"};
  const auto line = std::make_shared<NotingLine>(mDevice);
  mDevice.lines[2] = line;
  Open();

  Pick(Get<QComboBox>(id::kPort), 1);

  EXPECT_TRUE(line->IsOpen());
  EXPECT_THAT(line->toldBefore, ElementsAre("BulkSelector=Bulk0"));
}

TEST_F(Settings, BulkPortSetByTheApplication_SetsTheSelectorToo) {
  mDevice.enumerations["BulkSelector"] = {{"Bulk0", "Bulk1"}, "Bulk1"};
  Open();

  EXPECT_EQ(mWindow->SetSerialPort(KrDeviceSerial::Bulk0).GetCode(), KrResult::Code::OK);

  EXPECT_THAT(mDevice.written, ElementsAre("BulkSelector=Bulk0"));
}

TEST_F(Settings, WindowOpenedOnABulkPort_SetsTheSelector) {
  mDevice.enumerations["BulkSelector"] = {{"Bulk0", "Bulk1"}, "Bulk1"};
  ASSERT_TRUE(mWindow->SetSerialPort(KrDeviceSerial::Bulk0).IsOK());

  Open();

  EXPECT_THAT(mDevice.written, ElementsAre("BulkSelector=Bulk0"));
}

TEST_F(Settings, SelectorMovedBySomebodyElse_IsSetAgainBeforeAnythingIsWrittenOrRead) {
  mDevice.enumerations["BulkSelector"] = {{"Bulk0", "Bulk1"}, "Bulk0"};
  mDevice.enumerations["BulkBaudRate"] = {{"300", "600"}, "300"};
  mDevice.booleans["BulkLoopback"] = false;
  Open();
  Pick(Get<QComboBox>(id::kPort), 1);
  const auto moveSelector = [&] {
    mDevice.enumerations["BulkSelector"].value = "Bulk1";
    mDevice.written.clear();
  };

  moveSelector();
  Pick(Get<QComboBox>(id::kSpeed), 1);
  EXPECT_THAT(mDevice.written, ElementsAre("BulkSelector=Bulk0", "BulkBaudRate=600"));

  moveSelector();
  Click(id::kLoopback);
  EXPECT_THAT(mDevice.written, ElementsAre("BulkSelector=Bulk0", "BulkLoopback=true"));

  moveSelector();
  Click(id::kOther); // Refreshes the two.
  EXPECT_THAT(mDevice.written, ElementsAre("BulkSelector=Bulk0"));
}

TEST_F(Settings, SerialPortWithoutParameters_HasNoSpeedAndLeavesTheLoopbackAsItIs) {
  mDevice.AddLine(1);
  Open();
  for (const bool isOn : {true, false}) {
    mDevice.booleans["Uart0Loopback"] = isOn;
    Pick(Get<QComboBox>(id::kPort), 0);
    ASSERT_EQ(Get<QCheckBox>(id::kLoopback).isChecked(), isOn);

    Pick(Get<QComboBox>(id::kPort), 1);

    EXPECT_FALSE(Get(id::kSpeed).isEnabled());
    EXPECT_THAT(GetEntries(id::kSpeed), IsEmpty());
    EXPECT_FALSE(Get(id::kLoopback).isEnabled());
    EXPECT_EQ(Get<QCheckBox>(id::kLoopback).isChecked(), isOn);
  }
  EXPECT_THAT(mDevice.written, IsEmpty());
}

TEST_F(Settings, Speed_ListsTheEntriesAndSelectsTheCurrentOne) {
  Open();

  EXPECT_TRUE(Get(id::kSpeed).isEnabled());
  EXPECT_THAT(GetEntries(id::kSpeed), ElementsAre("9600", "115200", "921600"));
  EXPECT_EQ(Get<QComboBox>(id::kSpeed).currentText(), "115200");
}

TEST_F(Settings, SpeedThatCannotBeRead_LeavesTheListWithoutSelection) {
  mDevice.readFailure = KrResult::Code::TimeLimitExceeded;

  Open();

  EXPECT_EQ(GetEntries(id::kSpeed).size(), 3U);
  EXPECT_EQ(Get<QComboBox>(id::kSpeed).currentIndex(), -1);
}

TEST_F(Settings, SpeedPicked_IsWritten) {
  Open();

  Pick(Get<QComboBox>(id::kSpeed), 2);

  EXPECT_THAT(mDevice.written, ElementsAre("Uart0BaudRate=921600"));
}

TEST_F(Settings, SpeedsOfAnyName_AreOneLineOfALimitedLengthAndWrittenAsTheDeviceHasThem) {
  const std::string longName(5000, 'x');
  mDevice.enumerations["Uart0BaudRate"] = {{"Baud 9600", "Baud\n9600", longName}, "Baud\n9600"};
  Open();
  auto& list = Get<QComboBox>(id::kSpeed);

  EXPECT_THAT(GetEntries(id::kSpeed), ElementsAre("Baud 9600", "Baud 9600", std::string(1023, 'x')));
  EXPECT_EQ(list.currentIndex(), 1);
  for (const int speed : {0, 1, 2})
    Pick(list, speed);

  EXPECT_THAT(mDevice.written,
              ElementsAre("Uart0BaudRate=Baud 9600", "Uart0BaudRate=Baud\n9600", "Uart0BaudRate=" + longName));
}

TEST_F(Settings, BulkPortWithoutParameters_HasNeitherSpeedNorLoopback) {
  Open();

  Pick(Get<QComboBox>(id::kPort), 1);

  EXPECT_FALSE(Get(id::kSpeed).isEnabled());
  EXPECT_THAT(GetEntries(id::kSpeed), IsEmpty());
  EXPECT_FALSE(Get(id::kLoopback).isEnabled());
}

TEST_F(Settings, BulkPortWithClockDivider_HasItAsItsSpeed) {
  mDevice.enumerations["BulkSystemClockDivider"] = {{"By4", "By8"}, "By8"};
  Open();

  Pick(Get<QComboBox>(id::kPort), 1);

  EXPECT_EQ(Get<QComboBox>(id::kSpeed).currentText(), "By8");
}

TEST_F(Settings, Loopback_ShowsTheParameterAndWritesIt) {
  mDevice.booleans["Uart0Loopback"] = true;
  Open();
  EXPECT_TRUE(Get(id::kLoopback).isEnabled());
  EXPECT_TRUE(Get<QCheckBox>(id::kLoopback).isChecked());

  Click(id::kLoopback);
  Click(id::kLoopback);

  EXPECT_THAT(mDevice.written, ElementsAre("Uart0Loopback=false", "Uart0Loopback=true"));
}

TEST_F(Settings, LoopbackThatCannotBeRead_LeavesTheBoxAsItIs) {
  mDevice.booleans["Uart0Loopback"] = true;
  Open();
  mDevice.booleans["Uart0Loopback"] = false;
  mDevice.readFailure = KrResult::Code::TimeLimitExceeded;

  Click(id::kOther); // Refreshes the two.

  EXPECT_TRUE(Get<QCheckBox>(id::kLoopback).isEnabled());
  EXPECT_TRUE(Get<QCheckBox>(id::kLoopback).isChecked());
}

TEST_F(Settings, NoPortOpen_SpeedAndLoopbackAreDisabled) {
  Open();

  ASSERT_EQ(mWindow->SetDevice(nullptr).GetCode(), KrResult::Code::OK);

  EXPECT_FALSE(Get(id::kSpeed).isEnabled());
  EXPECT_THAT(GetEntries(id::kSpeed), IsEmpty());
  EXPECT_FALSE(Get(id::kLoopback).isEnabled());
}

TEST_F(Settings, WhatTheDeviceRefuses_IsNotTold) {
  mDevice.enumerations["BulkSelector"] = {{"Bulk0"}, "Bulk0"};
  mDevice.writeFailure = KrResult::Code::Failed;
  Open();

  Pick(Get<QComboBox>(id::kSpeed), 0);
  Click(id::kLoopback);
  Pick(Get<QComboBox>(id::kPort), 1);

  EXPECT_THAT(mDevice.written, ElementsAre("Uart0BaudRate=9600", "Uart0Loopback=true", "BulkSelector=Bulk0"));
  EXPECT_TRUE(mBulk->IsOpen()) << "the port is opened all the same";
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(Settings, SpeedThatIsNoEntry_LeavesTheListWithoutSelection) {
  mDevice.enumerations["Uart0BaudRate"].value = "300";

  Open();

  EXPECT_EQ(Get<QComboBox>(id::kSpeed).currentIndex(), -1);
}

TEST_F(Settings, EachPort_HasItsOwnParameters) {
  mDevice.AddLine(1);
  mDevice.enumerations["Uart1BaudRate"] = {{"300"}, "300"};
  mDevice.enumerations["BulkBaudRate"] = {{"1000000"}, "1000000"};
  mDevice.enumerations["BulkSystemClockDivider"] = {{"By4"}, "By4"};
  mDevice.booleans["Uart1Loopback"] = true;
  mDevice.booleans["BulkLoopback"] = true;
  Open();
  const std::pair<const char*, const char*> expected[] = {
      {"115200", "Uart0Loopback=true"}, {"300", "Uart1Loopback=false"}, {"1000000", "BulkLoopback=false"}};

  for (int port = 0; port < 3; ++port) {
    mDevice.written.clear();
    Pick(Get<QComboBox>(id::kPort), port);
    EXPECT_EQ(Get<QComboBox>(id::kSpeed).currentText(), expected[port].first);
    Click(id::kLoopback);
    EXPECT_THAT(mDevice.written, ElementsAre(expected[port].second));
  }
}

TEST_F(Settings, Wheel_ChoosesNeitherPortNorSpeed) {
  Open();

  for (const int list : {id::kPort, id::kSpeed}) {
    Get(list).setFocus();
    EXPECT_FALSE(krtest::TurnWheel(Get(list), false)) << list;
    EXPECT_FALSE(krtest::TurnWheel(Get(list), true)) << list;
  }

  EXPECT_EQ(Get<QComboBox>(id::kPort).currentText(), "Serial0");
  EXPECT_EQ(mLine->CountOpenings(), 1);
  EXPECT_THAT(mDevice.written, IsEmpty());
}

TEST_F(Settings, LoopbackToggledByAssistiveTechnology_IsWritten) {
  Open();

  krtest::ToggleAccessibly(Get(id::kLoopback));

  EXPECT_THAT(mDevice.written, ElementsAre("Uart0Loopback=true"));
}

TEST_F(Settings, OfADeviceThatThrows_CannotBeUsedAndThePortIsOpen) {
  ThrowingDevice device;
  const auto line = device.AddLine(0);
  device.enumerations["Uart0BaudRate"] = {{"9600", "115200"}, "115200"};
  device.booleans["Uart0Loopback"] = false;
  ASSERT_TRUE(mWindow->SetDevice(&device).IsOK());
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  ASSERT_TRUE(Get(id::kSpeed).isEnabled());

  device.throws = true;
  Pick(Get<QComboBox>(id::kSpeed), 0);
  Click(id::kLoopback);
  Pick(Get<QComboBox>(id::kPort), 0);

  EXPECT_FALSE(Get(id::kSpeed).isEnabled());
  EXPECT_FALSE(Get(id::kLoopback).isEnabled());
  EXPECT_EQ(line->CountOpenings(), 2);
  EXPECT_THAT(device.written, IsEmpty());
  mWindow.reset(); // Before its device.
}

} // namespace krgui

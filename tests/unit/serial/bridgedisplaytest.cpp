// What the serial bridge manager shows of a bridge: rates, counters, names, and what is missing.

#include "logic/serial/bridgedisplay.h"
#include "await.h"
#include "serialbridgefixture.h"

namespace krgui {

namespace {

class BridgeDisplay : public SerialBridgeTest {
protected:
  BridgeDisplay() { mBridge.SetPort(KrDeviceSerial::Serial0); }

  void Link() {
    mBridge.SetKind(BridgeKind::COMPort);
    ASSERT_TRUE(mBridge.StartCOMPort("COM3").IsOK());
  }
  std::string GetState(const BridgeSituation& aSituation = {true, true, true}) const {
    return GetBridgeStateText(&mBridge, aSituation).ToUtf8();
  }

  SerialBridge mBridge{&mDevice};
};

std::string Draw(const BaudRateLabels& aLabels) {
  std::string text;
  for (const BaudRateLabel& label : aLabels)
    text += label.isBold ? (label.isEnabled ? 'B' : '?') : (label.isEnabled ? 'e' : '-');
  return text;
}

} // namespace

TEST_F(BridgeDisplay, NoBridge_AllRatesAreDisabledAndNormal) {
  EXPECT_EQ(Draw(GetBaudRateLabels(nullptr)), "----------");
  EXPECT_EQ(Draw(GetBaudRateLabels(&mBridge)), "----------") << "of no kind";
}

TEST_F(BridgeDisplay, RatesOfTheDevice_AreEnabledAndItsOwnIsBold) {
  SetRates({"115200", "9600", "921600", "250000"});
  Link();
  ASSERT_TRUE(mBridge.SetConfiguration({115200, 0, 8, 1}).IsOK());

  EXPECT_TRUE(krtest::Await([&] { return Draw(GetBaudRateLabels(&mBridge)) == "e-----B--e"; }))
      << Draw(GetBaudRateLabels(&mBridge));
}

TEST_F(BridgeDisplay, HardCodedRate_IsEnabledAndBoldThoughNoneIsTold) {
  mBridge.SetKind(BridgeKind::CameraLinkDLL);
  ASSERT_TRUE(mBridge.StartCLDLL("Model X-Serial0", false).IsOK());
  ASSERT_TRUE(mBridge.SetHardCodedBaudRate(28800).IsOK());

  EXPECT_EQ(Draw(GetBaudRateLabels(&mBridge)), "---B------");
}

TEST(BridgeEnablings, Kinds_EnableTheirControls) {
  const struct {
    BridgeKind kind;
    bool isSelected;
    bool comPort, configure, name, statistics;
  } rows[] = {{BridgeKind::None, false, false, false, false, false},
              {BridgeKind::None, true, false, false, false, false},
              {BridgeKind::COMPort, false, true, false, false, true},
              {BridgeKind::COMPort, true, true, true, false, true},
              {BridgeKind::CameraLinkDLL, true, false, false, true, true}};
  for (const auto& row : rows) {
    const BridgeEnabling enabling = GetBridgeEnabling(row.kind, row.isSelected);

    EXPECT_EQ(enabling.comPort, row.comPort);
    EXPECT_EQ(enabling.configure, row.configure);
    EXPECT_EQ(enabling.cameraLinkName, row.name);
    EXPECT_EQ(enabling.statistics, row.statistics);
  }
}

TEST_F(BridgeDisplay, NoBridge_HasMovedNothing) {
  EXPECT_STREQ(FormatBytesSent(nullptr).CStr(), "Bytes sent: 0");
  EXPECT_STREQ(FormatBytesReceived(&mBridge).CStr(), "Bytes received: 0");
}

TEST_F(BridgeDisplay, CameraLinkText_IsTheNameOfAPublishedBridgeAlone) {
  EXPECT_STREQ(GetCameraLinkText(mBridge).CStr(), "Inactive");
  Link();
  EXPECT_STREQ(GetCameraLinkText(mBridge).CStr(), "Inactive");

  mBridge.SetKind(BridgeKind::CameraLinkDLL);
  EXPECT_STREQ(GetCameraLinkText(mBridge).CStr(), "");
  ASSERT_TRUE(mBridge.StartCLDLL("Model X-Serial0", false).IsOK());
  EXPECT_STREQ(GetCameraLinkText(mBridge).CStr(), "Model X-Serial0");
}

TEST_F(BridgeDisplay, WhatIsMissing_IsTold) {
  EXPECT_EQ(GetState({false, false, false}), "There is no device.");
  EXPECT_EQ(GetState({true, false, true}), "The device has no serial port.");
  EXPECT_STREQ(GetBridgeStateText(nullptr, {true, true, true}).CStr(), "Choose a port of the device.");
  EXPECT_EQ(GetState(), "");
  mBridge.SetKind(BridgeKind::COMPort);
  EXPECT_EQ(GetState({true, true, false}), "The host has no COM port.");
  EXPECT_EQ(GetState(), "Choose a COM port.");
  Link();
  EXPECT_EQ(GetState(), "");
}

TEST_F(BridgeDisplay, DeviceThatIsLost_IsToldAsTheBridgeSaysIt) {
  Link();

  mLine->Lose();

  EXPECT_TRUE(krtest::Await([&] { return !GetState().empty(); }));
  EXPECT_EQ(GetState(), mBridge.GetBridge()->GetStateText().ToUtf8());
}

TEST(BaudRates, Rate_IsToldInBaud) {
  EXPECT_STREQ(FormatBaudRate(921600).CStr(), "921600 baud");
}

} // namespace krgui

#include "bridges/keptbridges.h"

#include "propertypairs.h"

#include <gtest/gtest.h>

using krviewer::KeptBridges;
using krviewer::kSerialBridgeRules;

namespace {

const Properties kLinkOfSerial0 = {{"Serial0", "COMPort"}, {"Serial0Port", "COM3"}, {"Serial0COMPortBaudRate", "9600"}};
const Properties kCameraLinkOfBulk1 = {{"Bulk1", "CLDLL"}, {"Bulk1CLDLLBaudRate", "115200"}};

/// Of the device.
const KeptBridges::Ports kPorts = {KrDeviceSerial::Serial0, KrDeviceSerial::Bulk1};

Properties operator+(Properties aFirst, const Properties& aSecond) {
  aFirst.insert(aFirst.end(), aSecond.begin(), aSecond.end());
  return aFirst;
}

} // namespace

TEST(KeptBridges, AtFirst_NothingIsWanted) {
  EXPECT_TRUE(KeptBridges(kSerialBridgeRules).GetWanted().IsEmpty());
}

TEST(KeptBridges, WhatWasSetUpWhenTheDeviceWent_IsWantedWholeAndInOrder) {
  KeptBridges bridges(kSerialBridgeRules);

  bridges.Keep(MakeList(kLinkOfSerial0 + kCameraLinkOfBulk1));

  EXPECT_EQ(ToProperties(bridges.GetWanted()), kLinkOfSerial0 + kCameraLinkOfBulk1);
}

TEST(KeptBridges, LinkWithoutAPortOfTheHost_IsNotWanted) {
  KeptBridges bridges(kSerialBridgeRules);

  bridges.Keep(MakeList(Properties{{"Serial0", "COMPort"}} + kCameraLinkOfBulk1));

  EXPECT_EQ(ToProperties(bridges.GetWanted()), kCameraLinkOfBulk1);
}

TEST(KeptBridges, BridgeThatStarted_IsForgottenWhenTheUserTurnsItOff) {
  KeptBridges bridges(kSerialBridgeRules);
  bridges.Keep(MakeList(kLinkOfSerial0));
  bridges.NoteStart(MakeList(kLinkOfSerial0), kPorts);

  bridges.Keep(MakeList({}));

  EXPECT_TRUE(bridges.GetWanted().IsEmpty());
}

TEST(KeptBridges, BridgeThatDidNotStart_IsWantedAgainEachTimeBesideTheOthers) {
  KeptBridges bridges(kSerialBridgeRules);
  bridges.Keep(MakeList(kLinkOfSerial0 + kCameraLinkOfBulk1));
  for (int round = 0; round < 3; ++round) {
    bridges.NoteStart(MakeList(kCameraLinkOfBulk1), kPorts);
    bridges.NoteChange(MakeList(kCameraLinkOfBulk1));

    bridges.Keep(MakeList(kCameraLinkOfBulk1));

    EXPECT_EQ(ToProperties(bridges.GetWanted()), kLinkOfSerial0 + kCameraLinkOfBulk1) << round;
  }
}

TEST(KeptBridges, BridgeThatDidNotStart_GivesWayToWhatTheUserSetsUp) {
  KeptBridges bridges(kSerialBridgeRules);
  bridges.Keep(MakeList(kLinkOfSerial0));
  bridges.NoteStart(MakeList({}), kPorts);

  const Properties own = {{"Serial0", "CLDLL"}, {"Serial0CLDLLBaudRate", "9600"}};
  bridges.Keep(MakeList(own));

  EXPECT_EQ(ToProperties(bridges.GetWanted()), own);
}

TEST(KeptBridges, BridgeThatDidNotStart_IsForgottenWhenTheUserSetsThePortUpAndTurnsItOff) {
  for (const Properties& own : {Properties{{"Serial0", "COMPort"}}, kLinkOfSerial0}) {
    KeptBridges bridges(kSerialBridgeRules);
    bridges.Keep(MakeList(kLinkOfSerial0));
    bridges.NoteStart(MakeList({}), kPorts);

    bridges.NoteChange(MakeList(own));
    bridges.NoteChange(MakeList({}));
    bridges.Keep(MakeList({}));

    EXPECT_TRUE(bridges.GetWanted().IsEmpty());
    EXPECT_FALSE(bridges.HasFailed());
  }
}

TEST(KeptBridges, BridgeThatDidNotStart_IsWantedAgainAfterATryOfTheUserThatFailed) {
  KeptBridges bridges(kSerialBridgeRules);
  bridges.Keep(MakeList(kLinkOfSerial0));
  bridges.NoteStart(MakeList({}), kPorts);

  for (int look = 0; look < 3; ++look)
    bridges.NoteChange(MakeList({{"Serial0", "COMPort"}}));
  bridges.Keep(MakeList({{"Serial0", "COMPort"}}));

  EXPECT_EQ(ToProperties(bridges.GetWanted()), kLinkOfSerial0);
}

TEST(KeptBridges, BridgeThatCanNeverStart_IsNotWantedAgain) {
  const Properties never[] = {
      {{"Bulk3", "COMPort"}, {"Bulk3Port", "COM3"}}, {{"Serial0", "Serial"}}, {{"Serial0", "COMPort"}}};
  for (const Properties& one : never) {
    KeptBridges bridges(kSerialBridgeRules);
    bridges.Want(MakeList(one + kCameraLinkOfBulk1));
    EXPECT_EQ(ToProperties(bridges.GetWanted()), one + kCameraLinkOfBulk1) << "so that it is told once";

    bridges.NoteStart(MakeList(kCameraLinkOfBulk1), kPorts);
    EXPECT_FALSE(bridges.HasFailed());
    bridges.Keep(MakeList(kCameraLinkOfBulk1));

    EXPECT_EQ(ToProperties(bridges.GetWanted()), kCameraLinkOfBulk1);
  }
}

TEST(KeptBridges, BridgesOfADeviceThatDidNotAnswer_AreWantedAgain) {
  KeptBridges bridges(kSerialBridgeRules);
  bridges.Keep(MakeList(kLinkOfSerial0));

  bridges.NoteStart(MakeList({}), {});
  bridges.Keep(MakeList({}));

  EXPECT_EQ(ToProperties(bridges.GetWanted()), kLinkOfSerial0);
}

TEST(KeptBridges, Setup_HasWhatIsSetUpNowAndWhatDidNotStart) {
  KeptBridges bridges(kSerialBridgeRules);
  bridges.Keep(MakeList(kLinkOfSerial0 + kCameraLinkOfBulk1));
  bridges.NoteStart(MakeList({}), kPorts);
  const Properties own = {{"Bulk1", "COMPort"}};
  EXPECT_EQ(ToProperties(bridges.GetSetup(MakeList({}))), kLinkOfSerial0 + kCameraLinkOfBulk1);

  bridges.NoteChange(MakeList({{"Bulk1", "CLDLL"}}));

  EXPECT_EQ(ToProperties(bridges.GetSetup(MakeList(own))), kLinkOfSerial0 + own);
}

TEST(KeptBridges, AnotherSetup_TakesThePlaceOfTheOneBefore) {
  KeptBridges bridges(kSerialBridgeRules);
  bridges.Keep(MakeList(kLinkOfSerial0));
  bridges.NoteStart(MakeList({}), kPorts);

  bridges.Want(MakeList(kCameraLinkOfBulk1));
  bridges.NoteStart(MakeList(kCameraLinkOfBulk1), kPorts);
  bridges.Keep(MakeList(kCameraLinkOfBulk1));

  EXPECT_EQ(ToProperties(bridges.GetWanted()), kCameraLinkOfBulk1);
}

TEST(KeptBridges, CameraThatWasNotConnected_IsWantedAgainBesideTheOthersUntilTheUserConnectsOne) {
  const Properties first = {{"Serial0", "Camera"}, {"Serial0/Way", "GenCP"}};
  const Properties second = {{"Bulk1", "Camera"}, {"Bulk1/Way", "TolvanCameraFile"}};
  const Properties own = {{"Serial0", "Camera"}, {"Serial0/Way", "TolvanCameraFile"}};
  KeptBridges bridges(krviewer::kCameraBridgeRules);
  bridges.Keep(MakeList(first + second));
  bridges.NoteStart(MakeList(second), kPorts);

  bridges.Keep(MakeList(second));
  EXPECT_EQ(ToProperties(bridges.GetWanted()), first + second);

  bridges.NoteStart(MakeList(second), kPorts);
  bridges.Keep(MakeList(own + second));
  EXPECT_EQ(ToProperties(bridges.GetWanted()), own + second);
}

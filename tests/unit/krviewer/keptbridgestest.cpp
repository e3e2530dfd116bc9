#include "keptbridges.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using krviewer::KeptBridges;

namespace {

using Properties = std::vector<std::pair<std::string, std::string>>;

KrPropertyList MakeList(const Properties& aProperties) {
  KrPropertyList list;
  for (const auto& [name, value] : aProperties)
    list.Add({KrString(name), KrString(value)});
  return list;
}

Properties ToProperties(const KrPropertyList& aList) {
  Properties properties;
  for (const KrProperty& property : aList)
    properties.emplace_back(property.GetName().ToUtf8(), property.GetValue().ToUtf8());
  return properties;
}

const Properties kLinkOfSerial0 = {{"Serial0", "COMPort"}, {"Serial0Port", "COM3"}, {"Serial0COMPortBaudRate", "9600"}};
const Properties kCameraLinkOfBulk1 = {{"Bulk1", "CLDLL"}, {"Bulk1CLDLLBaudRate", "115200"}};

Properties operator+(Properties aFirst, const Properties& aSecond) {
  aFirst.insert(aFirst.end(), aSecond.begin(), aSecond.end());
  return aFirst;
}

} // namespace

TEST(KeptBridges, AtFirst_NothingIsWanted) {
  EXPECT_TRUE(KeptBridges().GetWanted().IsEmpty());
}

TEST(KeptBridges, WhatWasSetUpWhenTheDeviceWent_IsWantedWholeAndInOrder) {
  KeptBridges bridges;

  bridges.Keep(MakeList(kLinkOfSerial0 + kCameraLinkOfBulk1));

  EXPECT_EQ(ToProperties(bridges.GetWanted()), kLinkOfSerial0 + kCameraLinkOfBulk1);
}

TEST(KeptBridges, LinkWithoutAPortOfTheHost_IsNotWanted) {
  KeptBridges bridges;

  bridges.Keep(MakeList(Properties{{"Serial0", "COMPort"}} + kCameraLinkOfBulk1));

  EXPECT_EQ(ToProperties(bridges.GetWanted()), kCameraLinkOfBulk1);
}

TEST(KeptBridges, BridgeThatStarted_IsForgottenWhenTheUserTurnsItOff) {
  KeptBridges bridges;
  bridges.Keep(MakeList(kLinkOfSerial0));
  bridges.NoteStart(MakeList(kLinkOfSerial0));

  bridges.Keep(MakeList({}));

  EXPECT_TRUE(bridges.GetWanted().IsEmpty());
}

TEST(KeptBridges, BridgeThatDidNotStart_IsWantedAgainEachTimeBesideTheOthers) {
  KeptBridges bridges;
  bridges.Keep(MakeList(kLinkOfSerial0 + kCameraLinkOfBulk1));
  for (int round = 0; round < 3; ++round) {
    bridges.NoteStart(MakeList(kCameraLinkOfBulk1));
    bridges.NoteChange(MakeList(kCameraLinkOfBulk1));

    bridges.Keep(MakeList(kCameraLinkOfBulk1));

    EXPECT_EQ(ToProperties(bridges.GetWanted()), kLinkOfSerial0 + kCameraLinkOfBulk1) << round;
  }
}

TEST(KeptBridges, BridgeThatDidNotStart_GivesWayToWhatTheUserSetsUp) {
  KeptBridges bridges;
  bridges.Keep(MakeList(kLinkOfSerial0));
  bridges.NoteStart(MakeList({}));

  const Properties own = {{"Serial0", "CLDLL"}, {"Serial0CLDLLBaudRate", "9600"}};
  bridges.Keep(MakeList(own));

  EXPECT_EQ(ToProperties(bridges.GetWanted()), own);
}

TEST(KeptBridges, BridgeThatDidNotStart_IsForgottenWhenTheUserSetsThePortUpAndTurnsItOff) {
  KeptBridges bridges;
  bridges.Keep(MakeList(kLinkOfSerial0));
  bridges.NoteStart(MakeList({}));

  bridges.NoteChange(MakeList({{"Serial0", "COMPort"}}));
  bridges.Keep(MakeList({}));

  EXPECT_TRUE(bridges.GetWanted().IsEmpty());
}

TEST(KeptBridges, AnotherSetup_TakesThePlaceOfTheOneBefore) {
  KeptBridges bridges;
  bridges.Keep(MakeList(kLinkOfSerial0));
  bridges.NoteStart(MakeList({}));

  bridges.Want(MakeList(kCameraLinkOfBulk1));
  bridges.NoteStart(MakeList(kCameraLinkOfBulk1));
  bridges.Keep(MakeList(kCameraLinkOfBulk1));

  EXPECT_EQ(ToProperties(bridges.GetWanted()), kCameraLinkOfBulk1);
}

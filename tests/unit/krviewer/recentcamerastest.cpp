#include "window/recentcameras.h"

#include <gtest/gtest.h>

using krviewer::RecentCamera;
using krviewer::RecentCameras;

namespace {

QStringList GetIDs(const RecentCameras& aCameras) {
  QStringList ids;
  for (const RecentCamera& camera : aCameras.GetAll())
    ids += camera.id;
  return ids;
}

} // namespace

TEST(RecentCameras, CameraShown_ComesFirst) {
  RecentCameras cameras;

  cameras.Add({"a", "Camera A"});
  cameras.Add({"b", "Camera B"});

  EXPECT_EQ(GetIDs(cameras), (QStringList{"b", "a"}));
}

TEST(RecentCameras, CameraShownAgain_IsListedOnceWithItsNameOfNow) {
  RecentCameras cameras;
  cameras.Add({"a", "Camera (192.168.1.2)"});
  cameras.Add({"b", "Camera B"});

  cameras.Add({"a", "Camera (192.168.1.7)"});

  EXPECT_EQ(GetIDs(cameras), (QStringList{"a", "b"}));
  EXPECT_EQ(cameras.GetAll().constFirst().name, "Camera (192.168.1.7)");
}

TEST(RecentCameras, NinthCamera_DisplacesTheOldest) {
  RecentCameras cameras;

  for (int number = 1; number <= 9; ++number)
    cameras.Add({QString::number(number), "Camera"});

  EXPECT_EQ(GetIDs(cameras), (QStringList{"9", "8", "7", "6", "5", "4", "3", "2"}));
}

TEST(RecentCameras, WhatIsNoCamera_IsNotTaken) {
  RecentCameras cameras;

  cameras.Add({"", "Nobody"});
  cameras.Add({QString(RecentCameras::kMostLetters + 1, 'x'), "Long"});
  cameras.Add({"a", QString(RecentCameras::kMostLetters + 1, 'x')});

  EXPECT_TRUE(cameras.GetAll().isEmpty());
}

TEST(RecentCameras, CameraKnownOtherwise_StaysWhereItStood) {
  RecentCameras cameras;
  cameras.Add({"a", "Camera (192.168.1.7)"});
  cameras.Add({"b", "Other"});

  cameras.Replace("a", {"a", "Camera (192.168.1.8)"});

  EXPECT_EQ(GetIDs(cameras), (QStringList{"b", "a"}));
  EXPECT_EQ(cameras.GetAll().constLast().name, "Camera (192.168.1.8)");
}

TEST(RecentCameras, CameraKnownByTheIDOfAnother_IsThereOnce) {
  RecentCameras cameras;
  cameras.Add({"a", "Camera"});
  cameras.Add({"b", "Other"});

  cameras.Replace("a", {"b", "Camera"});
  cameras.Replace("c", {"d", "Nobody"});

  EXPECT_EQ(GetIDs(cameras), QStringList{"b"});
  EXPECT_EQ(cameras.GetAll().constFirst().name, "Camera");
}

TEST(RecentCameras, Cleared_AreNone) {
  RecentCameras cameras;
  cameras.Add({"a", "Camera"});

  cameras.Clear();

  EXPECT_TRUE(cameras.GetAll().isEmpty());
}

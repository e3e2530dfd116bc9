#include "recording/filenames.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace krviewer;

TEST(PlainName, LettersThatAFileSystemMayRefuse_BecomeHyphens) {
  EXPECT_EQ(MakePlainName("Simulated Mono Camera (02:4b) 192.168.77.10"), "Simulated-Mono-Camera-02-4b-192.168.77.10");
  EXPECT_EQ(MakePlainName("../../etc/passwd"), "etc-passwd");
  EXPECT_EQ(MakePlainName("-rf *"), "rf");
  EXPECT_EQ(MakePlainName("Kamera für Prüfung"), "Kamera-f-r-Pr-fung");
}

TEST(PlainName, NothingLeft_IsACamera) {
  EXPECT_EQ(MakePlainName(""), "camera");
  EXPECT_EQ(MakePlainName("\n\t..--"), "camera");
}

TEST(PlainName, LongText_IsCut) {
  EXPECT_EQ(MakePlainName(std::string(500, 'a')), std::string(60, 'a'));
  EXPECT_EQ(MakePlainName(std::string(59, 'a') + "-bcd"), std::string(59, 'a'));
}

TEST(FrameName, IsTheCamerasWithTheFramesNumber) {
  EXPECT_EQ(MakeFrameName("sim mono", 18446744073709551615U), "sim-mono-18446744073709551615");
}

TEST(RecordingName, IsTheCamerasWithTheLocalTime) {
  ::setenv("TZ", "UTC-2", 1);
  ::tzset();

  EXPECT_EQ(MakeRecordingName("sim-mono", 1'700'000'000), "sim-mono-20231115-001320"); // 22:13:20 UTC the day before.

  ::unsetenv("TZ");
  ::tzset();
}
